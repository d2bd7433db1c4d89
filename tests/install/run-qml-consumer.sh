#!/usr/bin/env bash
# run-qml-consumer.sh BUILD CONSUMER CLIP: runs the QML consumer over the clip against the
# build's reference upload server on loopback; fails unless the upload arrived whole.
set -euo pipefail
build=$1 consumer=$2 clip=$3
work=$(mktemp -d)
source "$(dirname "$0")/../../scripts/reference-server.sh"
trap 'kill "${server:-}" 2>/dev/null || true; rm -rf "$work"' EXIT
start_reference_server "$build" "$work/server.log" demo-key --storage "$work/uploads"
QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$consumer" "$clip" "$host" "$authority"
stored=$(ls "$work"/uploads/*/ | wc -l)
echo "the server stored $stored files"
[ "$stored" -eq 8 ]  # seven images and their metadata
