#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job: the face capture model over the
# sample selfie clip, printing every step and saving the images it stored.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/build.sh" "$root/build"
out=$root/out/capture-spine
rm -rf "$out"
"$root/build/examples/capture-spine/vextil_capture_spine" --out "$out"
