#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the benchmarks on the release build. Each line is a figure: medians of several runs, with their floor
# of the same run. Quote figures from an idle machine.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh release >/dev/null
for bench in Expansion Generation Documents DeskModel Layout Undo; do build/release/bench/bench_$bench; done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for bench in Opening Search; do build/release/bench/bench_$bench "$PWD/installation/mray" "$work"; done
for bench in ArgumentEditor Check ColorPicker Compare DeskPaint Forms Live LogWindow SearchPopup Sliders Source Start View; do tests/ui/under-display.sh build/release/bench/bench_$bench; done
perl bench/pipeline.pl build/release/bin/tavrin-batch
perl bench/live.pl build/release/bin/tavrin-batch
echo "bench: done"
