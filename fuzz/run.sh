#!/usr/bin/env bash
# Fuzzes every codec, as many at once as there are processors: fuzz/run.sh [seconds per codec] [codec ...]
# Seeds are the sample pictures beside the project. Findings and the grown corpus stay in build/fuzz/.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
samples=${TESSARA_SAMPLES:-$root/../shared/samples}
seconds=${1:-600}
shift || true

cd "$root"
[[ -f build/fuzz/build.ninja ]] || cmake --preset fuzz
cmake --build --preset fuzz
work=build/fuzz/work
mkdir -p "$work"

fuzz_one() {
    local codec=$1 extension
    shift
    local corpus=$work/$codec/corpus seeds=$work/$codec/seeds log=$work/$codec/log
    mkdir -p "$corpus" "$seeds"
    for extension in "$codec" "$@"; do
        [[ -d $samples/$extension ]] && cp -f "$samples/$extension"/* "$seeds"
    done
    [[ -n $(ls -A "$seeds") ]] || { echo "$codec: no seeds" >&2; return 1; }
    QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0 "build/fuzz/bin/tessara_fuzz_$codec" \
        -max_total_time="$seconds" -timeout=10 -rss_limit_mb=3000 -max_len=300000 -artifact_prefix="$work/$codec/" \
        -print_final_stats=1 "$corpus" "$seeds" >"$log" 2>&1 || true
    printf '%-5s executions %9s  findings %s\n' "$codec" \
        "$(sed -n 's/^stat::number_of_executed_units: //p' "$log")" \
        "$(find "$work/$codec" -maxdepth 1 -name '*-*' | wc -l)"
}

export -f fuzz_one
export work samples seconds
build/fuzz/bin/tessara_fuzz_list | while read -r codec extensions; do
    [[ -x build/fuzz/bin/tessara_fuzz_$codec ]] || { echo "$codec: no fuzz target" >&2; exit 1; }
    [[ $# -eq 0 || " $* " == *" $codec "* ]] || continue
    echo "$codec $extensions"
done | xargs -P "$(nproc)" -I{} bash -c 'fuzz_one {}'
