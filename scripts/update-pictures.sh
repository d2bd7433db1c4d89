#!/usr/bin/env bash
# Renders every screen the picture tests compare and makes the renderings the reviewed pictures
# in tests/pictures, then lists what changed. Look at each changed picture before committing it
# (README: "Reviewed pictures").
#   scripts/update-pictures.sh [BUILD_DIR]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
"$root/scripts/build.sh" "$build"
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software VEXTIL_UPDATE_PICTURES=1
for binary in "$build"/tests/vextil_picture_tests "$build"/tests/vextil_quick_picture_tests; do
  [ -x "$binary" ] || continue
  "$binary" --gtest_brief=1
done
git -C "$root" status --short -- tests/pictures
