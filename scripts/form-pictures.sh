#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the pictures of docs/forms.md: each example of the page, and the form of mray, as the Render Options window
# of the program shows them. What it makes is kept in the repository, so only those who change the page or the form's
# window run this. Needs the packages of the tests, and imagemagick.
set -euo pipefail
cd "$(dirname "$0")/.."
for tool in import convert xdotool; do
  command -v "$tool" >/dev/null || { echo "form-pictures: $tool is missing; install imagemagick and xdotool" >&2; exit 1; }
done
if [ "${1:-}" != on-display ]; then
  scripts/build.sh release tavrin >/dev/null
  exec tests/ui/under-display.sh "$0" on-display
fi

pictures=docs/pictures/forms
work=$(mktemp -d)
trap 'kill "${program:-}" 2>/dev/null || true; rm -rf "$work"' EXIT
mkdir -p "$pictures" "$work/lib/menu"

# The visible window of that name of the program that runs.
window() {
  local found=
  for _ in $(seq 300); do
    found=$(xdotool search --all --onlyvisible --pid "$program" --name "$1" 2>/dev/null | tail -1) || true
    [ -n "$found" ] && { echo "$found"; return; }
    kill -0 "$program" 2>/dev/null || break
    sleep 0.1
  done
  echo "form-pictures: no window \"$1\" came up" >&2
  return 1
}

# Two pictures that are the same: what is seen has come to rest.
picture_of() {
  local before=none now
  for _ in $(seq 100); do
    import -window "$1" "$2"
    now=$(identify -format '%#' "$2")
    [ "$now" = "$before" ] && return
    before=$now
    sleep 0.2
  done
  echo "form-pictures: the window does not come to rest" >&2
  return 1
}

# The form is there from the start, beside the main window, where nothing covers it.
mkdir -p "$XDG_CONFIG_HOME/Orlane"
cat >"$XDG_CONFIG_HOME/Orlane/Tavrin.ini" <<'END'
[Settings]
MainFrame.x=0
MainFrame.y=0
MainFrame.width=800
MainFrame.height=600
RenderOptionsEditor.x=1150
RenderOptionsEditor.y=50
RenderOptionsEditor.visible=1
END

make_picture() {
  local name=$1 form
  TAVRN_DIR=$(dirname "$2") TAVRN_LIB=$2 TAVRN_TMPDIR=$work build/release/bin/tavrin >"$work/said" 2>&1 &
  program=$!
  form=$(window 'Render Options')
  picture_of "$form" "$work/$name.png"
  kill "$program"
  wait "$program" 2>/dev/null || true
}

# NAME, and the text of each example, in a file of its own.
WORK=$work perl -ne '
  if (/^```roe (\w+)$/) { open $out, ">", "$ENV{WORK}/$1.def" or die $!; next }
  undef $out if /^```/;
  print $out $_ if $out' docs/forms.md

for example in "$work"/*.def; do
  name=$(basename "$example" .def)
  cp "$example" "$work/lib/tavrn.def"
  make_picture "$name" "$work/lib"
done
make_picture mray "$PWD/installation/mray"
for picture in "$work"/*.png; do
  convert "$picture" -strip -define png:exclude-chunks=date,time "$pictures/$(basename "$picture")"
done
echo "form-pictures: $(ls "$pictures" | wc -l) pictures in $pictures"
