#!/usr/bin/env bash
# Brings translations/*.ts up to date with the texts the sources mark for translation: new texts
# are added (unfinished in the languages), removed ones dropped. Translators then fill in the
# language files, with Qt Linguist or by hand; the build compiles them.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
lupdate=${LUPDATE:-/usr/lib/qt6/bin/lupdate}
cd "$root"
for ts in translations/vextiltoolkit.ts translations/vextiltoolkit_*.ts; do
  language=$(basename "$ts" .ts | sed -n 's/^vextiltoolkit_//p')
  "$lupdate" src include -I src -I include -extensions cpp,h,qml -locations none -no-obsolete \
    -source-language en ${language:+-target-language "$language"} -ts "$ts"
done
