#!/usr/bin/env bash
# Installs the build in $1 below a temporary DESTDIR with prefix /usr and checks what a
# desktop needs to list, start and theme Scrivlet.
set -euo pipefail

build_dir=$1
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT

fail() { echo "install_layout: $*" >&2; exit 1; }

DESTDIR="$stage" cmake --install "$build_dir" --prefix /usr >/dev/null

for program in scrivlet scrivlet-cli; do
  [ -x "$stage/usr/bin/$program" ] || fail "usr/bin/$program is missing or not executable"
done

# The installed command line must still run from its new place.
out=$(printf 'sum\n2\n3' | "$stage/usr/bin/scrivlet-cli" process) || fail "the installed scrivlet-cli doesn't run"
[ -n "$out" ] || fail "the installed scrivlet-cli wrote nothing"

desktop="$stage/usr/share/applications/scrivlet.desktop"
[ -f "$desktop" ] || fail "share/applications/scrivlet.desktop is missing"
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$desktop" || fail "the desktop entry doesn't validate"
fi
for line in 'Name=Scrivlet' 'Exec=scrivlet %u' 'Icon=scrivlet' 'Categories=Utility;TextEditor;' \
            'MimeType=x-scheme-handler/scrivlet;' 'StartupWMClass=Scrivlet'; do
  grep -qxF "$line" "$desktop" || fail "the desktop entry lacks '$line'"
done
# The entry starts the program by name, so that name must be the installed binary.
exec_name=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop")
[ -x "$stage/usr/bin/$exec_name" ] || fail "Exec names '$exec_name', which isn't installed"

icon="$stage/usr/share/icons/hicolor/scalable/apps/scrivlet.svg"
[ -f "$icon" ] || fail "the hicolor scalable icon is missing"
grep -q '<svg' "$icon" || fail "the icon isn't an SVG image"

echo "install_layout: ok"
