#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs what Tavrin is built from and runs with. Needs root or sudo for packages that are missing;
# does nothing where all are there. The README gives the reason for each.
set -euo pipefail

packages=(
  g++ cmake ninja-build
  perl perl-modules-5.36
  glslang-tools
  libegl-dev libgl1-mesa-dri libegl-mesa0 libpng-dev
  qt6-base-dev libqt6opengl6-dev libqt6svg6-dev libgl-dev libglu1-mesa-dev fonts-liberation fonts-dejavu-core xdg-utils
  xvfb xauth openbox x11-utils xdotool
  libgtest-dev libgmock-dev locales clang-format-14
)

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: every package is there"
  exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "setup: run this as root, or install sudo; missing: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
echo "setup: installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
echo "setup: done"
