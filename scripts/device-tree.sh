#!/usr/bin/env bash
# Prepares a directory standing in for the scope's root file system (SCOPE_UI_ROOT), so the UI
# finds on a desktop what the board gives it:
#   usrdata/release/language.json        default language and the languages offered
#   usrdata/release/first_language.txt   first-start marker (the UI removes it)
#   usrdata/media/{Picture,Video,.thumbnails}  sample photos, videos and thumbnails
#   tmp/apps.version                     the device parts' versions; the UI appends its line
#   dev/rtc0                             a plain file: setting the clock writes the time here
#
# usage: scripts/device-tree.sh [--tmpfs] [--language NAME] [--no-first-start] <dir>
#   --tmpfs           put usrdata/media on a 1 GiB tmpfs first, so the card's figures are those of
#                     a small card (needs the right to mount: root, or a user namespace)
#   --language NAME   "DEFAULT LANGUAGE" of language.json (default English)
#   --no-first-start  no first_language.txt: the device's stored language applies
# SAMPLE_MEDIA names the sample_media program (default build/dev/tools/sample_media/sample_media);
# SCOPE_MEDIA its counts and options (default "12 6": two pages of photos; for example
# SCOPE_MEDIA="2000 1000 --broken" for a full card with the awkward cases).
set -euo pipefail

top=$(cd "$(dirname "$0")/.." && pwd)
tmpfs=0
language=English
first_start=1
while [ $# -gt 1 ]; do
  case "$1" in
    --tmpfs) tmpfs=1 ;;
    --language) language=$2; shift ;;
    --no-first-start) first_start=0 ;;
    *) echo "device-tree.sh: unknown option $1" >&2; exit 2 ;;
  esac
  shift
done
[ $# -eq 1 ] || { echo "usage: scripts/device-tree.sh [--tmpfs] [--language NAME] [--no-first-start] <dir>" >&2; exit 2; }
tree=$1
sample_media=${SAMPLE_MEDIA:-$top/build/dev/tools/sample_media/sample_media}

mkdir -p "$tree/usrdata/release" "$tree/usrdata/media" "$tree/tmp" "$tree/dev"

cat >"$tree/usrdata/release/language.json" <<JSON
{
  "DEFAULT LANGUAGE": "$language",
  "LANGUAGES": ["English", "Chinese", "Russian", "German", "French", "Spanish", "Italian"]
}
JSON
if [ "$first_start" -eq 1 ]; then
  echo "first start" >"$tree/usrdata/release/first_language.txt"
fi

# Identification of the device's parts, as the device application writes it at boot.
printf '%s\n' \
  "PN:	 [ZVT35-6401]" \
  "SN:	 [25061417]" \
  "FPA1:	 [IRD640-12U-0417]" \
  "FPA2:	 [VIS1080-P2]" \
  "SW:	 [V3.1.4.0]" \
  "APP:	 <device_app>	 (Jun 14 2025,09:30:12) [a41c2e9] on {release}" \
  >"$tree/tmp/apps.version"

: >"$tree/dev/rtc0"

if [ "$tmpfs" -eq 1 ]; then
  if mount -t tmpfs -o size=1g,mode=0755 scope-media "$tree/usrdata/media" 2>/dev/null; then
    echo "device tree: usrdata/media is a 1 GiB tmpfs"
  else
    echo "device tree: cannot mount a tmpfs on usrdata/media; the card figures are the host disk's"
  fi
fi

if [ -x "$sample_media" ]; then
  # shellcheck disable=SC2086 # counts and options, split on purpose
  "$sample_media" "$tree/usrdata/media" ${SCOPE_MEDIA:-12 6}
else
  echo "device tree: $sample_media not built; no sample media" >&2
  mkdir -p "$tree/usrdata/media/Picture" "$tree/usrdata/media/Video" "$tree/usrdata/media/.thumbnails"
fi
