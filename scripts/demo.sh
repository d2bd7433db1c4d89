#!/usr/bin/env bash
# The main job: installs what is missing, builds, starts the reference upload server on
# loopback, and runs the demo host unattended over the sample selfie clip through capture,
# review and upload; then says what the server answered, where it stored the upload and where
# the screenshots are. Extra arguments go to the demo host (for example --locale de); with --qml
# first, the QML demo host runs the same flow.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
demo_host=examples/demo-host/vextil_demo_host
if [ "${1:-}" = --qml ]; then
  demo_host=examples/qml-demo-host/vextil_qml_demo_host
  shift
fi
"$root/scripts/build.sh" "$root/build"

out=$root/out
rm -rf "$out/uploads" "$out/screenshots"
mkdir -p "$out"
key=demo-key
source "$root/scripts/reference-server.sh"
trap 'kill "${server:-}" 2>/dev/null || true' EXIT
start_reference_server "$root/build" "$out/server.log" "$key" --storage "$out/uploads"
echo "reference upload server on https://$host/file"

# The demo host sets the upload host and the server's authority in code, as a host does.
QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$root/build/$demo_host" \
  --unattended --key "$key" --upload-host "$host" --upload-ca "$authority" --screenshots "$out/screenshots" "$@"

echo "the server stored the upload in: $(ls -d "$out"/uploads/*/ | head -1)"
ls "$(ls -d "$out"/uploads/*/ | head -1)"
echo "screenshots: $out/screenshots"
