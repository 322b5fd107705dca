#!/usr/bin/env bash
# Installs the Debian packages Tarvel needs, skipping those already present.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  qt6-base-dev qt6-multimedia-dev libgl-dev
  libgtest-dev libgmock-dev libbenchmark-dev nlohmann-json3-dev libssl-dev libpng-dev
  clang libclang-rt-14-dev
  xvfb xauth imagemagick python3 python3-pil sox fonts-dejavu-core
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  sudo_cmd=()
  if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
