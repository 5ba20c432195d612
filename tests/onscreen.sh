#!/usr/bin/env bash
# Runs the tests that need a real screen, pointer and clipboard, on X servers of their own:
#
#     tests/onscreen.sh PATH-OF-TESSARA_ONSCREEN_TESTS [FOLDER-FOR-SCREENSHOTS]
#
# Ends with 77 (skipped) where the programs for that are missing.
set -euo pipefail
tests=$1 shots=${2-}
for program in Xvfb openbox xdotool xclip; do
    command -v "$program" >/dev/null || { echo "$program is not installed"; exit 77; }
done
home=$(mktemp -d)
mkfifo "$home/running"
trap 'rm -rf "$home"' EXIT
export HOME=$home XDG_RUNTIME_DIR=$home QT_QPA_PLATFORM=xcb

run_on() {
    local size=$1 number
    trap 'kill $(jobs -p) 2>/dev/null || true; wait' EXIT
    coproc Xvfb -displayfd 1 -screen 0 "${size}x24" -dpi 96 -nolisten tcp 2>/dev/null
    read -r -u "${COPROC[0]}" number
    export DISPLAY=:$number
    # What is shown before the window manager runs does not get the focus.
    openbox --startup "sh -c 'echo >$home/running'" &>/dev/null &
    read -r <"$home/running"
    [[ -z $shots ]] || mkdir -p "$shots/$size"
    "$tests" --gtest_brief=1 ${shots:+"$shots/$size"}
}

for size in 1366x768 1920x1080; do
    echo "$size"
    (run_on "$size")
done
