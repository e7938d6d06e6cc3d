#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Sets up, builds and runs every test. With --sanitize the same with the address and undefined-behaviour
# sanitizers; with --all both, one after the other.
set -euo pipefail
cd "$(dirname "$0")/.."

case "${1:-}" in
  "") presets=(release) ;;
  --sanitize) presets=(sanitize) ;;
  --all) presets=(release sanitize) ;;
  *) echo "usage: scripts/test.sh [--sanitize | --all]" >&2; exit 2 ;;
esac

scripts/setup.sh
for preset in "${presets[@]}"; do
  scripts/build.sh "$preset"
  if ! ctest --preset "$preset" --no-tests=error -j "$(nproc)"; then
    echo "test: FAILED ($preset build); see the output above"
    exit 1
  fi
done
echo "test: every test passed (${presets[*]})"
