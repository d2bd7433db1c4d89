#!/usr/bin/env bash
# Regenerates the screen pictures of docs/ with the screenshot tool (offscreen, both sizes) and
# builds the API reference with Doxygen into build/docs/html.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/build.sh" "$root/build"
shots="$root/build/tools/screenshots/vextil_screenshots"
QT_QPA_PLATFORM=offscreen "$shots" --out "$root/docs/images"
# The translated screens, at the phone size only: the text-heavy tutorial and review.
languages=$(mktemp -d)
trap 'rm -rf "$languages"' EXIT
for locale in de es pt_BR; do
  QT_QPA_PLATFORM=offscreen "$shots" --locale "$locale" --out "$languages"
  cp "$languages/tutorial-390x844-$locale.png" "$languages/review-390x844-$locale.png" "$root/docs/images/"
done
# The QML screens, from an unattended run of the QML demo host at both sizes.
"$root/scripts/qml-screenshots.sh" "$root/build" "$root/docs/images"
cmake --build "$root/build" --target docs
echo "API reference: $root/build/docs/html/index.html"
