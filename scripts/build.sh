#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Configures and builds one of the presets: release (the default), dev or sanitize; the whole of it, or the targets
# that are named behind it.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}
targets=("${@:2}")
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" ${targets[0]:+--target "${targets[@]}"}
