#!/usr/bin/env bash
# What is made while building is made with the same bytes every time, whatever the surroundings.
# usage: sameBytes.sh PYTHON RASTERISE LRELEASE SOURCES BUILT ROBOTO OPEN_SANS QUICKSAND LENSFUN COUNTRIES
set -euo pipefail
python=$1
rasterise=$2
lrelease=$3
sources=$4
built=$5
fonts=("${@:6:3}")
lensfun=$9
countries=${10}
again=$PWD/again

export PYTHONHASHSEED=4711 TZ=Asia/Tokyo LC_ALL=C.UTF-8
mkdir -p "$again"/{caf,translations}
"$python" "$sources/drawings/drawIcons.py" --qrc "$sources/vek.qrc" --out "$again"
"$rasterise" "$again/rasterise.list"
"$python" "$sources/fonts/renameFonts.py" "${fonts[@]}" "$again/fonts"
for file in C35830a_001 C36841a_000; do
    "$python" "$sources/data/makeCaf.py" "$again/caf/$file.caf"
done
"$python" "$sources/data/makeCatalogue.py" "$lensfun" "$again/caf/CAFList1010.db"
"$python" "$sources/data/makeCountries.py" "$countries" \
    "$again/translations/countries.en.txt"

status=0
count=0
while read -r file; do
    case $file in
    qss/* | other/*) continue ;; # as they are in the sources
    esac
    count=$((count + 1))
    cmp "$built/vek/$file" "$again/$file" || status=1
done < <(sed -n 's/.*<file>\(.*\)<\/file>.*/\1/p' "$sources/vek.qrc")
if [ "$count" -ne 367 ]; then
    echo "$count files are made, not 367"
    status=1
fi
for language in de en fr ja; do
    "$lrelease" -silent "$sources/translations/vek_$language.ts" -qm "$again/vek_$language.qm"
    cmp "$built/vek_$language.qm" "$again/vek_$language.qm" || status=1
done
exit "$status"
