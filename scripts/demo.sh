#!/usr/bin/env bash
# The main job: installs what is missing, builds, starts the reference upload server on
# loopback, and runs the demo host unattended over the sample selfie clip through capture,
# review and upload; then says what the server answered, where it stored the upload and where
# the screenshots are.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/build.sh" "$root/build"

out=$root/out
rm -rf "$out/uploads" "$out/screenshots"
mkdir -p "$out"
key=demo-key
"$root/build/tools/upload-server/vextil_upload_server" --port 0 --key "$key" --storage "$out/uploads" >"$out/server.log" 2>&1 &
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
for _ in $(seq 100); do
  grep -q "listening on" "$out/server.log" && break
  sleep 0.1
done
port=$(grep -o 'https://127.0.0.1:[0-9]*' "$out/server.log" | head -1 | cut -d: -f3)
if [ -z "$port" ]; then
  echo "the reference upload server did not start:" >&2
  cat "$out/server.log" >&2
  exit 1
fi
authority=$(sed -n 's/^certificate authority: //p' "$out/server.log")
echo "reference upload server on https://127.0.0.1:$port/file"

# The demo host sets the upload host and the server's authority in code, as a host does.
QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$root/build/examples/demo-host/vextil_demo_host" \
  --unattended --key "$key" --upload-host "127.0.0.1:$port" --upload-ca "$authority" --screenshots "$out/screenshots"

echo "the server stored the upload in: $(ls -d "$out"/uploads/*/ | head -1)"
ls "$(ls -d "$out"/uploads/*/ | head -1)"
echo "screenshots: $out/screenshots"
