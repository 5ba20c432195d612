# Sourced by ./run and ./test: installs the missing Debian packages and builds a preset.

install_packages() {
    local missing=()
    local package
    while read -r package; do
        [[ -z $package || $package == \#* ]] && continue
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done <"$root/packaging/debian-packages"
    [[ ${#missing[@]} -eq 0 ]] && return
    local as_root=()
    [[ $EUID -eq 0 ]] || as_root=(sudo)
    echo "Installing: ${missing[*]}" >&2
    "${as_root[@]}" apt-get update -q >&2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
}

# build PRESET [TARGET]: quiet unless something is built or fails
build() {
    local preset=$1 log
    log=$(mktemp)
    if ! (cd "$root" && { [[ -f build/$preset/build.ninja ]] || cmake --preset "$preset"; }) >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
    if ninja -C "$root/build/$preset" -n "${@:2}" 2>/dev/null | grep -q 'no work to do'; then
        return
    fi
    ninja -C "$root/build/$preset" "${@:2}" >&2
}
