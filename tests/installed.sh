#!/usr/bin/env bash
# Installs a build into a folder of its own and uses it from there: installed.sh CMAKE BUILD-FOLDER
set -euo pipefail
cmake=$1 build=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$cmake" --install "$build" --prefix "$folder" >/dev/null
cd "$folder"
unset DISPLAY WAYLAND_DISPLAY

# A bitmap of a red and a blue pixel, by way of a metafile: the program, its module, and no display.
printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x02\0\0\0\x01\0\0\0\x01\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\xff\xff\0\0\0\0' >in.bmp
[[ -z $(bin/tessara in.bmp,a.emf) ]]
bin/tessara a.emf,b.wmf
bin/tessara b.wmf,out.bmp
cmp <(tail -c 8 in.bmp) <(tail -c 8 out.bmp)
[[ $(ls) == $'a.emf\nb.wmf\nbin\nin.bmp\nlib\nout.bmp\nshare' ]] || { ls; exit 1; }
[[ -f share/tessara/help/1-1.htm ]]
# A conversion loads no toolkit.
! ldd bin/tessara | grep -q Qt
