#!/usr/bin/env bash
# Turns the SVG artwork under art/ into the PNG images the toolkit loads (the board does not load
# SVG at run time). Every art/**/NAME.svg becomes res/assets/default/raw/images/x1/NAME.png at
# the size the SVG declares. The PNGs are committed, so res/ ships to the board as it is; run this
# after changing artwork and commit both.
#   scripts/art.sh            convert every SVG whose PNG is missing or older than the SVG
set -euo pipefail
cd "$(dirname "$0")/.."

out=res/assets/default/raw/images/x1
command -v rsvg-convert >/dev/null || { echo "rsvg-convert missing: run scripts/deps.sh"; exit 1; }
mkdir -p "$out"

while IFS= read -r -d '' svg; do
  name=$(basename "$svg" .svg)
  png="$out/$name.png"
  if [ ! -f "$png" ] || [ "$svg" -nt "$png" ]; then
    rsvg-convert --format=png --output="$png" "$svg"
    echo "wrote $png"
  fi
done < <(find art -name '*.svg' -print0 2>/dev/null)
