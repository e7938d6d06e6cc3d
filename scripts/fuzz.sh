#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Fuzzes a reader with libFuzzer: scripts/fuzz.sh TARGET [SECONDS]. Targets: Document, DocumentForm,
# Definition, Template, SiteFile, Form, Script, SgiImage. What it finds lies in build/fuzz/; put what is worth keeping into
# fuzz/corpus/, from where every build replays it. Needs the packages clang and libclang-rt-14-dev.
set -euo pipefail
cd "$(dirname "$0")/.."
declare -A corpora=([Document]=document [DocumentForm]=document [Definition]=definition [Template]=template [SiteFile]=site
  [Form]=form [Script]=script [SgiImage]=image)
target=${1:-}
seconds=${2:-600}
if [ -z "${corpora[$target]:-}" ]; then
  echo "usage: scripts/fuzz.sh ${!corpora[*]} [SECONDS]" >&2
  exit 2
fi
command -v clang++ >/dev/null || { echo "fuzz: install clang and libclang-rt-14-dev first" >&2; exit 1; }

flags=(-std=c++20 -O1 -g1 -fsanitize=address,undefined -fno-sanitize-recover=undefined -Isrc -I.)
objects=build/fuzz/objects
mkdir -p "$objects"
for room in base text images codegen site library forms document desk render app; do
  for source in src/$room/*.cpp; do
    case $source in *_test.cpp) continue ;; esac
    object=$objects/${source//\//_}.o
    [ "$object" -nt "$source" ] || clang++ "${flags[@]}" -fsanitize=fuzzer-no-link -c "$source" -o "$object"
  done
done
clang++ "${flags[@]}" -fsanitize=fuzzer "fuzz/$target.cpp" "$objects"/*.o -o "build/fuzz/$target" -lpthread

work=build/fuzz/${corpora[$target]}
mkdir -p "$work"
cp -n "fuzz/corpus/${corpora[$target]}"/* "$work/"
"build/fuzz/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2000 -max_len=20000 \
  -artifact_prefix="build/fuzz/$target-" -print_final_stats=1 "$work"
echo "fuzz: $target found nothing in $seconds seconds"
