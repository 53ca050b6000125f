#!/usr/bin/env bash
# Installs the Debian packages the project needs, only those that are missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  clang libclang-rt-14-dev            # libFuzzer and the sanitizer runtimes
  libsdl2-dev libsdl2-image-dev libsdl2-ttf-dev
  libpugixml-dev libcjson-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  fonts-wqy-microhei                  # the font the build puts into res/: Latin, Cyrillic, Chinese
  librsvg2-bin                        # rsvg-convert, turns the SVG artwork into PNG
  clang-format
  ccache                              # compiler cache, used by the build when present
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "installing missing packages: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
"${sudo_cmd[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
