#!/bin/bash
# disk_test.sh LAUNCHER SAMPLES WORK_DIR
#
# What only a process of its own can show: full disks, folders without permission, interruptions.
set -eu
source "${BASH_SOURCE[0]%/*}/../checks.sh"

zoren=$1 photo=$2/photo.jpg
rm -rf "$3"
mkdir -p "$3/shut" "$3/device/system/etc"
cd "$3"
printf %2000s >text # less than a buffer: an error comes when the file is closed
for old in old.png old.jpg shut/old.png; do echo "as it was" >$old; done
chmod 555 shut
cp "$photo" locked.jpg
chmod 0 locked.jpg

# fails LINE COMMAND...: with that line alone, and old files stay
fails() {
    local status=0 line=$1
    shift
    "$@" 2>err </dev/null || status=$?
    equal "$*" "1 zoren: $line, as it was" \
        "$status $(cat err), $(cat old.* shut/old.png | uniq)"
}

# limited KIB COMMAND...: a file that grows beyond meets an error, as on a full disk
limited() (ulimit -f "$1" && exec "${@:2}")

fails "cannot write old.png: File too large" limited 40 "$zoren" blur "$photo" old.png --radius 0
fails "cannot write old.jpg: File too large" limited 40 "$zoren" blur "$photo" old.jpg --radius 0
fails "cannot write old.png: File too large" limited 1 "$zoren" seal text old.png
fails "standard output cannot be written" "$zoren" gray --json "$photo" >/dev/full
# The configuration is for root; a root without these meets permissions as anybody does.
plain=() root=(unshare -r)
if [[ $(id -u) == 0 ]]; then
    caps=-dac_override,-dac_read_search
    plain=(setpriv --bounding-set=$caps --inh-caps=$caps) root=()
fi
fails "device/system/etc/jpsp: there is no configuration file" \
    env ZOREN_LOG_FILE=/dev/full "${root[@]}" "$zoren" config --device-root device
fails "cannot write shut/old.png: permission denied" \
    "${plain[@]}" "$zoren" blur "$photo" shut/old.png --radius 0
fails "cannot make the folder shut/new: permission denied" \
    "${plain[@]}" "$zoren" seal text shut/new/a
fails "locked.jpg: permission denied" "${plain[@]}" "$zoren" gray locked.jpg

# Interrupted while it writes, it leaves nothing.
for ((i = 0, seen = 0; i < 20 && seen < 2; ++i)); do
    "$zoren" blur "$photo" new.png --radius 0 &
    while kill -0 $! 2>/dev/null && ! compgen -G ".*.tmp" >/dev/null; do :; done
    if kill $! 2>/dev/null; then seen=$((seen + 1)); fi
    wait $! || true
    rm -f new.png # it was too late then
    if compgen -G ".*.tmp"; then exit 1; fi
done
equal "how often it was interrupted" "[12]" "$seen"
echo "$checks checks passed, 0 failed"
