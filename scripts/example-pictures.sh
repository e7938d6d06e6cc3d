#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the picture beside each document of examples/, as File > Examples shows it: rendered by the program itself, at
# twice the size that it is seen in, for dense screens. What it makes is kept in the repository, so only those who
# change an example or the renderer run this. Needs imagemagick besides the packages of the tests.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v convert >/dev/null || { echo "example-pictures: convert is missing; install imagemagick" >&2; exit 1; }
scripts/build.sh release tavrin-batch >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for document in examples/*.tvn; do
  name=$(basename "$document" .tvn)
  build/release/bin/tavrin-batch --quiet --set MRAY_SIZE=448,336 --set MRAY_SAMPLES=16 \
    --render --picture "$work/$name.png" "$document"
  convert "$work/$name.png" -strip -quality 88 -sampling-factor 4:4:4 "examples/$name.jpg"
done
ls -l examples/*.jpg
