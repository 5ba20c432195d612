#!/usr/bin/env bash
# Installs the packages into a bare Debian, uses them there as several users, removes them and lists what is left:
#     packaging/try-deb.sh [FOLDER-OF-PACKAGES [SCREENSHOT]]
# Needs root, debootstrap, Xvfb and xwininfo; for the screenshot, import. The bare system stays in build/bare-debian
# for the next time.
set -euo pipefail
[[ ${TRY_DEB_ALONE-} ]] || TRY_DEB_ALONE=yes exec unshare --mount "$0" "$@" # what is mounted goes with the script

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
packages=${1:-$root/build/packages}
screenshot=${2-}
bare=$root/build/bare-debian
trial=$(mktemp -d)
processes=()
clean_up() {
    [[ ${#processes[@]} -eq 0 ]] || kill "${processes[@]}" 2>/dev/null || true
    umount -l "$trial"/{proc,dev,tmp} 2>/dev/null || true
    rm -rf --one-file-system "$trial" "$trial.log"
}
trap clean_up EXIT

fail() { echo "FAILED: $*" >&2; exit 1; }
inside() { chroot "$trial" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
# as USER COMMAND...: in the user's home folder
as() {
    local user=$1 home
    home=$(inside getent passwd "$user" | cut -d: -f6)
    chroot --userspec="$user:$user" "$trial" env -i --chdir="$home" HOME="$home" PATH=/usr/bin:/bin LC_ALL=C.UTF-8 \
        ${DISPLAY_INSIDE:+DISPLAY=$DISPLAY_INSIDE} "${@:2}"
}
quietly() { "$@" >"$trial.log" 2>&1 || { cat "$trial.log" >&2; fail "$*"; }; }
count_packages() { echo "$(inside dpkg -l | grep -c ^ii) packages"; }
# All but what apt keeps of its own doings.
listing() { inside find / -xdev ! -path '/var/*/apt/*' | sort; }
wait_for() { # wait_for WHAT COMMAND...: half a minute at most
    for ((i = 0; i < 150; ++i)); do "${@:2}" && return; sleep 0.2; done
    fail "$1"
}

echo "== a bare Debian 12"
[[ -d $bare/usr ]] || quietly debootstrap --variant=minbase bookworm "$bare"
cp -a "$bare/." "$trial"
mount -t proc proc "$trial/proc"
mount --bind /dev "$trial/dev"
mount -t tmpfs -o mode=1777 tmpfs "$trial/tmp"
cp /etc/resolv.conf "$trial/etc/resolv.conf"
printf '#!/bin/sh\nexit 101\n' >"$trial/usr/sbin/policy-rc.d"
chmod +x "$trial/usr/sbin/policy-rc.d"
quietly inside apt-get update
for user in anna bert carl; do inside useradd --create-home "$user"; done
count_packages
before=$(listing)
cp "$packages"/tessara-pro*.deb "$trial/tmp"

echo "== tessara-pro, with nothing that is only recommended"
quietly inside sh -c 'apt-get install -y --no-install-recommends /tmp/tessara-pro_*.deb'
count_packages
cp "$root/help/pictures/effects/original.jpg" "$trial/home/anna/lake.jpg"
# By way of the metafile's and the TIFF's module, and by neither.
for step in lake.jpg,a.png a.png,a.bmp lake.jpg,b.tif b.tif,b.emf b.emf,b.bmp; do as anna tessara $step; done
cmp --ignore-initial=54 "$trial"/home/anna/{a,b}.bmp || fail "the picture has changed on its way"
! ls "$trial"/home/anna/*.err.txt 2>/dev/null || fail "a conversion was refused"
[[ ! -e $trial/home/anna/.local ]] || fail "a conversion has left private files"
inside ls -l /home/anna
! as anna tessara || fail "there is no window to open yet"

echo "== tessara-pro-desktop, with nothing that is only recommended"
quietly inside sh -c 'apt-get install -y --no-install-recommends /tmp/tessara-pro-desktop_*.deb'
count_packages
touch "$trial/tmp/installed"
mkfifo "$trial/tmp/display"
Xvfb -displayfd 3 -screen 0 1280x900x24 -dpi 96 -nolisten tcp -ac 3<>"$trial/tmp/display" >"$trial/tmp/xvfb.log" 2>&1 &
processes+=($!)
read -r number <"$trial/tmp/display"
mkdir -p "$trial/tmp/.X11-unix"
mount --bind /tmp/.X11-unix "$trial/tmp/.X11-unix"
windows() { xwininfo -display ":$number" -root -tree | grep -c '"Tessara Pro [^"]*": ("tessara"' || true; }
open_windows() { [[ $(windows) -ge $1 ]]; }
opened=0
open_window() { # open_window USER PROGRAM
    DISPLAY_INSIDE=:$number as "$1" "$2" >"$trial/tmp/$1.log" 2>&1 &
    processes+=($!)
    opened=$((opened + 1))
    wait_for "the window of $1" open_windows $opened
}
open_window root tessara
open_window anna tessara
open_window bert tessara
# The same program in a folder that no package manager knows, and that carl cannot write.
mkdir "$trial/opt/tessara"
(cd "$trial/usr" && cp -a --parents bin/tessara lib/tessara share/tessara ../opt/tessara)
open_window carl /opt/tessara/bin/tessara
echo "$(windows) windows"
if [[ $screenshot ]]; then import -display ":$number" -window root "$screenshot"; fi
for home in root home/anna home/bert home/carl; do
    [[ -f $trial/$home/.local/share/tessara/ts40.cfg ]] || fail "no settings in $home"
    inside find "/$home/.local/share/tessara" -printf '%M %u %p\n'
    [[ $(stat -c %a "$trial/$home/.local/share/tessara") == 700 ]] || fail "others can read them"
done
rm -r "$trial/opt/tessara"
written=$(inside find /usr -newer /tmp/installed ! -path '*/cache/*')
[[ -z $written ]] || fail "written into the installation: $written"
kill "${processes[@]:1}"
wait "${processes[@]:1}" || true

echo "== removed"
quietly inside apt-get purge -y --auto-remove tessara-pro tessara-pro-desktop
left=$(comm -13 <(echo "$before") <(listing))
echo "$left"
others=$(grep -vE '^/(root|home/[a-z]+)/' <<<"$left") && fail "left by the installation: $others"
echo "Passed: only what the users made is left."
