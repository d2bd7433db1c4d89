#!/usr/bin/env bash
# Puts the reference upload server under load on loopback: 100 uploads in a row, 8 clients in
# parallel, a stalled client and one that hangs up; checks every stored upload against what was
# sent. Runs from the build folder's programs; stops the server whatever happens.
#   scripts/load-test.sh [BUILD_DIR] [extra vextil_upload_load arguments]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
shift || true
work=$(mktemp -d)
source "$root/scripts/reference-server.sh"
trap 'kill "${server:-}" 2>/dev/null || true; rm -rf "$work"' EXIT
start_reference_server "$build" "$work/server.log" load-key --storage "$work/uploads" --read-timeout 1
if ! "$build/tools/upload-load/vextil_upload_load" --server "https://$host" --key load-key --ca "$authority" --storage "$work/uploads" "$@"; then
  echo "the server's log:" >&2
  tail -20 "$work/server.log" >&2
  exit 1
fi
# The server is still there and answering.
kill -0 "$server"
