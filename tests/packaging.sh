#!/usr/bin/env bash
# Checks what desktop, man and bash are given: packaging.sh CHECK SOURCE-FOLDER TESSARA
# Ends with 77 where the tool of the check is not installed.
set -euo pipefail
check=$1 source=$2 tessara=$3
packaging=$source/packaging
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

needs() { command -v "$1" >/dev/null || { echo "Skipped: $1 is not installed."; exit 77; }; }
fail() { echo "$*" >&2; exit 1; }
same() { [[ $2 == "$3" ]] || fail "$1: expected $2, got $3"; } # same WHAT EXPECTED GOT

check_desktop-entry() {
    needs desktop-file-validate
    same "desktop-file-validate" "" "$(desktop-file-validate "$packaging/tessara.desktop" 2>&1)"
    # The window is known by the name that the program gives to the desktop.
    grep -q 'setDesktopFileName(QStringLiteral("tessara"))' "$source/src/mainwindow/module/DesktopMain.cpp"
}

check_metainfo() {
    needs appstreamcli
    appstreamcli validate --no-net "$packaging"/*.metainfo.xml
}

check_man-page() {
    needs mandoc
    mandoc -T lint -W warning "$packaging/tessara.1"
}

check_scripts() {
    local script count=0
    while IFS= read -r -d '' script; do
        bash -n "$script"
        count=$((count + 1))
    done < <(find "$source" -name build -prune -o -name .git -prune -o \
        \( -name '*.sh' -o -name '*.bash-completion' -o -name run -o -name test \) -type f -print0)
    [[ $count -ge 9 ]] || fail "only $count scripts were found"
}

check_flatpak() {
    needs flatpak-builder
    flatpak-builder --show-manifest "$packaging"/flatpak/*.yml >manifest
    grep -q '"command" : "tessara"' manifest
}

# The lists of extensions that completion and man page hold are those of the program.
check_formats() {
    source "$packaging/tessara.bash-completion" 2>/dev/null
    local extension imports exports
    read -ra imports <<<"$_tessara_imports"
    read -ra exports <<<"$_tessara_exports"
    same "import formats" 25 "$(printf '%s\n' "${imports[@]}" | sort -u | wc -l)"
    same "export formats" 10 "$(printf '%s\n' "${exports[@]}" | sort -u | wc -l)"
    for extension in "${imports[@]}"; do
        echo junk >"in.$extension"
        "$tessara" "in.$extension,out.png"
    done
    for extension in "${exports[@]}"; do "$tessara" "in.bmp,out.$extension"; done
    same "formats refused" "" "$(find . -name '*.err.txt')"

    listed() { sed -n "/$1/,/^\.RE/p" "$packaging/tessara.1" | grep -oE '\b[A-Z]{3,4}\b' | tr '[:upper:]\n' '[:lower:] '; }
    same "the man page's import formats" "${imports[*]} " "$(listed '^Read are')"
    same "the man page's export formats" "${exports[*]} " "$(listed '^and written are')"
}

# completes EXPECTED WORD...: the last word is being typed; what is expected stands one behind the other
completes() {
    local expected=$1
    COMP_WORDS=(tessara "${@:2}")
    COMP_CWORD=$(($# - 1)) COMP_LINE=${COMP_WORDS[*]} COMP_POINT=${#COMP_LINE}
    COMPREPLY=()
    _tessara
    same "$COMP_LINE" "${expected% }" "${COMPREPLY[*]}"
}

check_completion() {
    local library=/usr/share/bash-completion/bash_completion
    [[ -f $library ]] || { echo "Skipped: bash-completion is not installed."; exit 77; }
    set +eu
    source "$library"
    source "$packaging/tessara.bash-completion"
    mkdir out "in d"
    touch lake.TIF "my lake.psd" lake.txt out/old.jpg 10:30.gif

    completes "10:30.gif in d/ lake.TIF my lake.psd out/" ""
    completes "$(printf 'lake.TIF,lake.%s ' $_tessara_exports)$(printf 'lake.TIF,%s ' 10:30.gif 'in d/' lake.TIF out/)" -O lak
    completes "in d/" '"in'
    completes "lake.TIF,lake.jpg" lake.TIF,lake.j
    completes "lake.TIF,out/" lake.TIF,ou
    completes "lake.TIF,out/lake.jpg" lake.TIF,out/lake.j
    completes "lake.TIF,out/old.jpg" lake.TIF,out/ol
    completes "lake.TIF,new.tga lake.TIF,new.tif" lake.TIF,new.t
    completes "new.gif" -O lake.TIF, new.g
    completes "my lake.psd,my lake.emf" '"my lake.psd,my lake.e'
    completes "my lake.psd,my lake.emf" 'my\ lake.psd,my\ lake.e'
    completes "30.ico" 10 : 30.gif,10 : 30.i
    completes "" lake.txt
}

"check_$check"
