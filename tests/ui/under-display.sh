#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs a command on a virtual display of its own with a window manager, and ends both with it.
set -euo pipefail
home=$(mktemp -d)
export XDG_RUNTIME_DIR=$home/runtime
mkdir -m 700 "$XDG_RUNTIME_DIR"
# Pictures are shown to nobody, unless a test says so.
export TAVRN_VIEW=
# The user's directories: a test neither reads nor writes those of whoever runs it.
export HOME=$home XDG_CONFIG_HOME=$home/.config XDG_STATE_HOME=$home/.local/state
export QT_QPA_PLATFORM=xcb QT_QPA_PLATFORMTHEME= LIBGL_ALWAYS_SOFTWARE=1
unset TAVRN_DIR TAVRN_LIB TAVRN_TMPDIR TAVRN_EDITORCMD VISUAL EDITOR TERMINAL TAVRN_DEBUG TAVRN_QUIET
trap 'kill "${manager:-}" "${server:-}" 2>/dev/null; wait 2>/dev/null; rm -rf "$home"' EXIT
# A number of our own: left to choose, servers that start at the same moment may take the same one. A server
# that resets when its last client leaves would refuse whoever comes at that moment.
for _ in $(seq 20); do
  number=$((100 + (RANDOM * 32768 + RANDOM) % 30000))
  : >"$home/display"
  exec 5>"$home/display"
  Xvfb ":$number" -displayfd 5 -screen 0 1920x1200x24 -nolisten tcp -noreset >"$home/xvfb.log" 2>&1 &
  server=$!
  while kill -0 "$server" 2>/dev/null && [ ! -s "$home/display" ]; do sleep 0.02; done
  [ -s "$home/display" ] && break
done
[ -s "$home/display" ] || { echo "under-display: no display came up" >&2; cat "$home/xvfb.log" >&2; exit 1; }
export DISPLAY=:$number
openbox >"$home/openbox.log" 2>&1 &
manager=$!
is_managed() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 0x; }
for _ in $(seq 400); do
  is_managed && break
  sleep 0.05
done
is_managed || { echo "under-display: no window manager came up" >&2; cat "$home/openbox.log" >&2; exit 1; }
"$@"
