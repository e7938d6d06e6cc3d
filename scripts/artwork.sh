#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the icons of the operators and the wallpapers from their drawings in artwork/. What it makes is kept in
# the repository, so only those who change a drawing run this. artwork/README.md tells how drawings are made.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v rsvg-convert >/dev/null; then
  echo "artwork: rsvg-convert is missing; install the Debian package librsvg2-bin" >&2
  exit 1
fi

library=installation/mray
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Everything is made before anything is put in its place: a drawing that fails leaves all pictures as they were.
make_folder() {
  local drawings=$1 pictures=$2 drawing name count=0
  mkdir -p "$work/$pictures" "$pictures"
  for drawing in "$drawings"/*.svg; do
    name=$(basename "$drawing" .svg)
    rsvg-convert --output "$work/picture.png" "$drawing"
    perl artwork/png-to-sgi.pl "$drawing" <"$work/picture.png" >"$work/$pictures/$name.sgi"
    count=$((count + 1))
  done
  echo "artwork: $count pictures for $pictures"
}

make_folder artwork/operators "$library/icons"
make_folder artwork/wallpapers "$library/wallpapers"
for pictures in "$library/icons" "$library/wallpapers"; do
  rm -f "$pictures"/*.sgi
  cp "$work/$pictures"/*.sgi "$pictures"
done
