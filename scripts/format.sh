#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Lays out the C++ sources as .clang-format says. With --check nothing is written; it fails and names the places that
# would change. The version is pinned: another one lays out otherwise.
set -euo pipefail
cd "$(dirname "$0")/.."

formatter=$(command -v clang-format-14) || { echo "format: clang-format-14 is missing; scripts/setup.sh installs it" >&2; exit 1; }
mapfile -t sources < <(find src tests bench fuzz renderers \( -name '*.cpp' -o -name '*.h' \) | sort)
case "${1:-}" in
  "") "$formatter" -i "${sources[@]}" ;;
  --check) "$formatter" --dry-run --Werror "${sources[@]}" ;;
  *) echo "usage: scripts/format.sh [--check]" >&2; exit 2 ;;
esac
echo "format: ${#sources[@]} files are laid out"
