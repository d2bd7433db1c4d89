#!/usr/bin/env bash
# Renders the QML screens as a user meets them: runs the QML demo host unattended over the sample
# clip, against the reference upload server, at a phone's size (390x844) and a large phone's
# (1080x1920), offscreen on Qt Quick's software renderer, and keeps each screen as
#   OUT/qml-<screen>-<size>.png   (tutorial, camera-collecting, camera-smile, review)
# and, in a 1280x800 desktop window over a laptop webcam's clip whose user starts too far,
#   OUT/qml-camera-move-closer-1280x800.png
#   qml-screenshots.sh BUILD_DIR OUT_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
out=$2
root=$(cd "$(dirname "$0")/.." && pwd)
mkdir -p "$out"
work=$(mktemp -d)
source "$root/scripts/reference-server.sh"
trap 'kill "${server:-}" 2>/dev/null || true; rm -rf "$work"' EXIT
start_reference_server "$build" "$work/server.log" demo-key --storage "$work/uploads"
for size in 390x844 1080x1920; do
  QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software "$build/examples/qml-demo-host/vextil_qml_demo_host" \
    --unattended --size "$size" --key demo-key --upload-host "$host" --upload-ca "$authority" \
    --screenshots "$work/$size" "${@:3}" >"$work/$size.log" 2>&1 || { cat "$work/$size.log" >&2; exit 1; }
  for shot in 1-tutorial 2-camera-collecting 3-camera-smile 4-review; do
    cp "$work/$size/$shot.png" "$out/qml-${shot#?-}-$size.png"
    echo "saved $out/qml-${shot#?-}-$size.png"
  done
done
# A desktop window, the user at first too far for the camera view.
QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software "$build/examples/qml-demo-host/vextil_qml_demo_host" \
  --unattended --size 1280x800 --key demo-key --upload-host "$host" --upload-ca "$authority" \
  --camera-file "$build/data/guided_closer_desktop.avi" --screenshots "$work/desktop" "${@:3}" \
  >"$work/desktop.log" 2>&1 || { cat "$work/desktop.log" >&2; exit 1; }
cp "$work/desktop/2-camera-move-closer.png" "$out/qml-camera-move-closer-1280x800.png"
echo "saved $out/qml-camera-move-closer-1280x800.png"
