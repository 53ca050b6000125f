#!/usr/bin/env bash
# Turns the SVG artwork under art/ into the PNG images the toolkit loads (the board does not load
# SVG at run time). Every art/**/NAME.svg becomes res/assets/default/raw/images/x1/NAME.png at
# the size the SVG declares. The PNGs are committed, so res/ ships to the board as it is; run this
# after changing artwork and commit both.
#   scripts/art.sh            convert every SVG whose PNG is missing or older
#   scripts/art.sh --check    exit 1 (naming the files) when a PNG is missing or older than its SVG
set -euo pipefail
cd "$(dirname "$0")/.."

out=res/assets/default/raw/images/x1
check=0
[ "${1:-}" = "--check" ] && check=1

command -v rsvg-convert >/dev/null || { echo "rsvg-convert missing: run scripts/deps.sh"; exit 1; }
mkdir -p "$out"

stale=0
while IFS= read -r -d '' svg; do
  name=$(basename "$svg" .svg)
  png="$out/$name.png"
  if [ ! -f "$png" ] || [ "$svg" -nt "$png" ]; then
    if [ "$check" -eq 1 ]; then
      echo "stale or missing: $png (from $svg)"
      stale=1
    else
      rsvg-convert --format=png --output="$png" "$svg"
      echo "wrote $png"
    fi
  fi
done < <(find art -name '*.svg' -print0 2>/dev/null)

exit "$stale"
