#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Sets up, builds, renders the example networks to pictures in demo-output/, and opens the program with one
# of them where there is a display.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/build.sh release tavrin tavrin-batch

output=demo-output
mkdir -p "$output"
pictures=()
failed=()
for document in examples/*.tvn; do
  name=$(basename "$document" .tvn)
  echo "demo: rendering $name"
  if build/release/bin/tavrin-batch --quiet --render --picture "$output/$name.png" "$document"; then
    pictures+=("$output/$name.png")
  else
    failed+=("$name")
  fi
done
for picture in "${pictures[@]}"; do echo "$PWD/$picture"; done
if [ ${#failed[@]} -gt 0 ]; then
  echo "demo: FAILED for ${failed[*]}"
  exit 1
fi
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  setsid build/release/bin/tavrin examples/marble.tvn >/dev/null 2>&1 &
  echo "demo: rendered ${#pictures[@]} example networks to $output/ and opened examples/marble.tvn in tavrin"
else
  echo "demo: rendered ${#pictures[@]} example networks to $output/; no display to open tavrin on"
fi
