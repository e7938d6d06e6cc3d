#!/usr/bin/env bash
# Configures and builds one of the presets: release (the default), dev or sanitize.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
