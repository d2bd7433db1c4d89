#!/usr/bin/env bash
# Builds a clip for every pairing of a clear neutral face with a clear smile of the labelled
# photos, in five kinds of light, and runs the capture benchmark over all of them:
#   scripts/pairing-clips.sh [OUT_DIR]      (default build/pairing-clips)
# Run scripts/build.sh first. The clips are kept, and reused when run again.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=${1:-$root/build/pairing-clips}
maker=$root/build/tools/selfie-clip/vextil_make_selfie_clip
bench=$root/build/bench/vextil_capture_bench
for tool in "$maker" "$bench"; do
  [ -x "$tool" ] || { echo "missing $tool: run scripts/build.sh first" >&2; exit 1; }
done
declare -A light=(
  [plain]=""
  [dim]="--brightness -35 --contrast 0.8 --noise 6"
  [bright]="--brightness 30 --contrast 1.15 --noise 4"
  [very-dim]="--brightness -50 --contrast 0.6 --noise 10"
  [side-lit]="--side-light 0.3"
)
faces=$root/tests/data/faces
clips=()
for kind in "${!light[@]}"; do
  mkdir -p "$out/$kind"
  for neutral in "$faces"/*-no.jpg; do
    for smile in "$faces"/*-yes.jpg; do
      clip=$out/$kind/$(basename "$neutral" .jpg)+$(basename "$smile" .jpg).avi
      # shellcheck disable=SC2086  # the light options are words
      [ -f "$clip" ] || "$maker" --neutral "$neutral" --smile "$smile" --output "$clip" ${light[$kind]} >/dev/null
      clips+=("$clip")
    done
  done
done
"$bench" "${clips[@]}"
