#!/bin/bash
# disk_test.sh LAUNCHER SAMPLES WORK_DIR
#
# What only a process of its own can show: full disks, folders without permission, interruptions.
set -eu

zoren=$1 samples=$2 checks=0
rm -rf "$3"
mkdir -p "$3/in" "$3/shut"
cd "$3"

# check WHAT CONDITION...
check() {
    local what=$1
    shift
    if ! "$@"; then
        echo "failed: $what" >&2
        cat err >&2
        exit 1
    fi
    checks=$((checks + 1))
}

# A root without these capabilities meets a folder's permissions as anybody does.
plain=()
if [[ $(id -u) == 0 ]]; then
    caps=-dac_override,-dac_read_search
    plain=(setpriv --bounding-set=$caps --inh-caps=$caps)
fi

# one_line STATUS LINE: what the last run, with its output in out and err, must have come to
one_line() { [[ $status == "$1" && $(cat err) == "$2" ]]; }

# run COMMAND...
run() {
    status=0
    "$@" >out 2>err </dev/null || status=$?
}

# limited BLOCKS COMMAND...: files of more than so many KiB meet an error, as on a full disk
limited() (
    ulimit -f "$1"
    shift
    exec "$@"
)

for target in old.png old.jpg; do
    echo "as it was" >$target
    # As much as the virtual machine needs for itself, and less than the picture does.
    run limited 40 "$zoren" blur "$samples/photo.jpg" $target --radius 0
    check "a full disk, $target" one_line 1 "zoren: cannot write $target: File too large"
    check "the old $target stays" [ "$(cat $target)" = "as it was" ]
done
printf %2000s >in/a.xml # less than a buffer: the error comes when the file is closed
run limited 1 "$zoren" seal in/a.xml old.png
check "a full disk at the end" one_line 1 "zoren: cannot write old.png: File too large"
check "the old file stays" [ "$(cat old.png)" = "as it was" ]
# The same on a disk that is really full, where the machine lets one be made.
if unshare -rm mount -t tmpfs none in 2>/dev/null; then
    run unshare -rm bash -c 'mount -t tmpfs -o size=64k none shut && cp old.png shut &&
        "$1" blur "$2/photo.jpg" shut/old.png --radius 0; status=$?
        ls -A shut; cat shut/old.png; exit $status' - "$zoren" "$samples"
    check "a full disk" one_line 1 "zoren: cannot write shut/old.png: No space left on device"
    check "the old file alone stays" [ "$(cat out)" = $'old.png\nas it was' ]
fi

run "$zoren" --version
"$zoren" --version >/dev/full 2>err && status=0 || status=$?
check "standard output is full" one_line 1 "zoren: standard output cannot be written"
"$zoren" gray --json "$samples/photo.jpg" >/dev/full 2>err && status=0 || status=$?
check "standard output is full" one_line 1 "zoren: standard output cannot be written"
mkdir -p phone/system/etc
run env ZOREN_LOG_FILE=/dev/full "$zoren" config --device-root phone
check "a full log is no matter" one_line 1 \
    "zoren: phone/system/etc/jpsp: there is no configuration file"

echo "as it was" >shut/old.png
chmod 555 shut
run "${plain[@]}" "$zoren" blur "$samples/photo.jpg" shut/old.png --radius 0
check "no new files in the folder" one_line 1 "zoren: cannot write shut/old.png: permission denied"
check "the old file stays" [ "$(cat shut/old.png)" = "as it was" ]
run "${plain[@]}" "$zoren" seal in/a.xml shut/new/a
check "no new folders" one_line 1 "zoren: cannot make the folder shut/new: permission denied"
cp "$samples/photo.jpg" in/locked.jpg
chmod 0 in/locked.jpg
run "${plain[@]}" "$zoren" gray in/locked.jpg
check "a picture for others' eyes" one_line 1 "zoren: in/locked.jpg: permission denied"
rm in/locked.jpg

# Interrupted while it writes, again and again, it leaves the old file and nothing else.
mkdir held
echo "as it was" >held/old.png
seen=0
for ((try = 0; try < 20 && seen < 2; ++try)); do
    "$zoren" blur "$samples/photo.jpg" held/old.png --radius 200 >out 2>err &
    while kill -0 $! 2>/dev/null; do
        if compgen -G "held/.*.tmp" >/dev/null; then
            seen=$((seen + 1))
            break
        fi
    done
    kill $! 2>/dev/null || true
    wait $! || true
    check "nothing left" [ "$(ls -A held)" = "old.png" ]
done
check "interrupted while it wrote" [ $seen -gt 0 ]

echo "$checks checks passed, 0 failed"
