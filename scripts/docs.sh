#!/usr/bin/env bash
# Regenerates the screen pictures of docs/ with the screenshot tool (offscreen, both sizes) and
# builds the API reference with Doxygen into build/docs/html.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/build.sh" "$root/build"
QT_QPA_PLATFORM=offscreen "$root/build/tools/screenshots/vextil_screenshots" --out "$root/docs/images"
cmake --build "$root/build" --target docs
echo "API reference: $root/build/docs/html/index.html"
