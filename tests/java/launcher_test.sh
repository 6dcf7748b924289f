#!/bin/bash
# launcher_test.sh LAUNCHER SAMPLES WORK_DIR
#
# The launcher through a link, from another folder, with blanks in the names; its environment.
set -eu
source "${BASH_SOURCE[0]%/*}/../checks.sh"

zoren=$1 samples=$2 launcher="./a link" input=/dev/null
rm -rf "$3"
mkdir -p "$3/my phone/proc/net/xt_qtaguid" "$3/bin" "$3/my java" "$3/pipe/system/etc" "$3/a:b/bin"
cd "$3"
unset ZOREN_JAVA ZOREN_DEVICE_ROOT ZOREN_LOG_FILE
java_home=$(readlink -f "$(command -v java)")
ln -s "${java_home%/bin/java}/"* "my java"
ln -s "$(command -v readlink)" bin
ln -s "$zoren" "a link"
printf '%s 0x0 7 0 %s\n' "2 lo" "1 2 3 4" "3 --device-root" "5 6 7 8" \
    >"my phone/proc/net/xt_qtaguid/stats"
for name in -p.png @p p; do cp "$samples/photo.jpg" ./$name; done

mkfifo pipe/system/etc/jpsp
mkdir -p zero/system/etc && ln -s /dev/zero zero/system/etc/jpsp
cp "$zoren" a:b/bin
cp p $'\xff\xfe.jpg'

# expect STATUS FIRST_LINE [VARIABLE=VALUE...] ARGUMENT...: of the launcher's output
expect() {
    local status=0 output wanted=$1 line=$2 variables=()
    shift 2
    while [[ ${1:-} == [A-Z]*=* ]]; do variables+=("$1") && shift; done
    output=$(timeout 60 env "${variables[@]}" /bin/bash "$launcher" "$@" 2>&1 <"$input") ||
        status=$?
    equal "$* prints $output" "$wanted $line" "$status ${output%%$'\n'*}"
}

rx=(traffic lo 7 --counter rx-bytes)
none="is not there (install openjdk-17-jre-headless)"
expect 0 "zoren [0-9]*.[0-9]*.[0-9]*" ZOREN_JAVA=" " JAVA_HOME= --version
expect 0 "zoren [0-9]*" ZOREN_JAVA="env  java" JAVA_HOME=/none --version
expect 0 "zoren [0-9]*" JAVA_HOME="my java" PATH="$PWD/bin" --version
expect 1 "zoren: no Java: java $none" JAVA_HOME= PATH="$PWD/bin" --version
expect 1 "zoren: no Java: none $none" ZOREN_JAVA="none x" --version
expect 0 1 "${rx[@]}" --device-root "my phone"
expect 0 1 ZOREN_DEVICE_ROOT=elsewhere "${rx[@]}" --device-root="my phone"
expect 0 5 traffic --counter rx-bytes --device-root="my phone" -- --device-root 7
expect 1 "zoren: elsewhere: the device root is not a folder" "${rx[@]}" --device-root=elsewhere
expect 2 "zoren: option '--device-root'*once*" "${rx[@]}" --device-root=bin --device-root "my phone"
expect 2 "zoren: *--counter*--device-root*" traffic lo 7 --counter --device-root "my phone"
expect 2 "zoren: *a path cannot be empty*" ZOREN_DEVICE_ROOT=bin "${rx[@]}" --device-root=
expect 0 $'[0-9]*\t@p' gray @p p
expect 0 $'[0-9]*\t-p.png' gray -- -p.png
expect 1 "zoren: é: no such file" LC_ALL=C gray é
expect 1 "zoren: *" ZOREN_LOG_FILE=log config --device-root bin
[[ -s log ]] # as root or not: it is refused, and that is logged
expect 1 "[!z]*" ZOREN_LOG_FILE= config --device-root bin
expect 1 "zoren: *" config --device-root bin
expect 1 "zoren: pipe/system/etc/jpsp: is not a regular file" config --device-root pipe
expect 1 "zoren: zero/system/etc/jpsp: is not a regular file" config --device-root zero
expect 0 $'[0-9]*\t\\\\xff\\\\xfe.jpg' gray $'\xff\xfe.jpg'
expect 1 "zoren: \\\\xfe\\\\x1b[[]2J: no such file" gray $'\xfe\e[2J'
expect 0 "zoren: 2 blurred" blur -r 1 $'\xff\xfe.jpg' p made/folder
[[ -s made/folder/$'\xff\xfe.jpg' && -s made/folder/p.jpg ]]
input=p
expect 0 $'[0-9]*\t-' gray -
expect 0 $'*\tp' ZOREN_JAVA="java -Xmx96m" cast --explain {p,p,p,p,p,p,p,p}
expect 0 $'\x89PNG*' blur -r 1 --format=png - -
expect 0 $'\xff\xd8\xff*' blur -r 1 - /dev/stdout
input=/dev/zero
expect 1 "zoren: -: is not a picture*" gray -
input=/dev/null launcher=a:b/bin/zoren
expect 1 "zoren: cannot run from */a:b: *:*;*" --version

# Samples go through in strips: pictures of 48 MB in a heap that holds no whole one.
launcher="./a link" java="java -Xmx24m"
{
    printf 'BM%b' '\x36\x51\x25\x02\0\0\0\0\x36\0\0\0\x28\0\0\0\xa0\x0f\0\0\xb8\x0b\0\0\x01\0\x18\0'
    head -c 18000000 /dev/zero
    head -c 18000000 /dev/zero | tr '\0' '\377'
} >large
for step in "large large.png" "large.png large.jpg" "large.jpg copy.jpg"; do
    expect 0 "" ZOREN_JAVA="$java" blur -r 0 $step
done
expect 0 $'12[78]\tcopy.jpg' gray copy.jpg
expect 0 "" blur -r 0 -q 10 copy.jpg small.jpg
(($(stat -c %s small.jpg) < $(stat -c %s copy.jpg)))
expect 1 "zoren: large.png: 4000 x 3000 pixels are more*" gray --max-pixels=11999999 large.png
if [[ -f ${zoren%/*/*}/lib/zoren.jsa ]]; then # it is not there with sanitizers
    expect 0 "zoren*" ZOREN_JAVA="java -Xlog:class+load:file=loaded" --version
    grep -q "zoren.cli.Zoren source: shared objects file (top)" loaded
fi
echo "$checks checks passed, 0 failed"
