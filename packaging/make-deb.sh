#!/usr/bin/env bash
# Builds the release and makes the Debian packages of it: make-deb.sh [FOLDER], else in build/packages.
# Ends with 1 where lintian, if it is installed, finds an error.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$(realpath -m "${1:-$root/build/packages}")
source "$root/packaging/prepare.sh"
install_packages
build release tessara_installed
mkdir -p "$folder"
(cd "$root/build/release" && cpack -G DEB -B "$folder" >cpack.log 2>&1) || { cat "$root/build/release/cpack.log" >&2; exit 1; }
rm -rf "$folder/_CPack_Packages"
ls "$folder"/tessara-pro*.deb
if command -v lintian >/dev/null; then
    lintian --allow-root --fail-on error "$folder"/tessara-pro*.deb
else
    echo "Not checked: lintian is not installed."
fi
