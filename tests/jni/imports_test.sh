#!/usr/bin/env bash
# Compares what a built 64-bit ARM libzoren_runtime.so imports with jni/imports.txt.
# Usage: imports_test.sh LIBRARY
set -u
export LC_ALL=C
list=$(dirname "$0")/../../jni/imports.txt
passed=0 failed=0

# judge LIST: a sentence for each of the names on standard input that a phone may lack
judge() {
    awk 'FNR == NR && /^    / { level[$1] = $2; if (NF > 2) level[$3] = $2; next } FNR == NR { next }
        !($1 in level) {
            print $1 ": not in jni/imports.txt. If the NDK has it for API level 28 or before, or the" \
                " platform, list it there with its level; else do without it."
            next
        }
        level[$1] > 28 { print $1 ": since API level " level[$1] ", the library is for 28: do without it." }
    ' "$1" -
}

# check WHAT EXPECTED ACTUAL
check() {
    if [[ $3 == $2 ]]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        printf '%s:\n%s\n' "$1" "$3"
    fi
}

names=$(readelf --dyn-syms -W "$1" | awk '$7 == "UND" && NF > 7 { sub("@.*", "", $8); print $8 }')
check 'imports' '' "$(judge "$list" <<<"$names")"
count=$(wc -w <<<"$names")
check 'their number' yes "$([[ $count -gt 20 ]] && echo yes)"
later=$({ cat "$list"; echo '    getloadavg 29'; } | judge /dev/fd/3 3<&0 <<<getloadavg)
check 'a later one that is listed' 'getloadavg: since API level 29*' "$later"
for planted in getloadavg gnu_get_libc_version; do  # API level 29, and none
    sentence=$(judge "$list" <<<"$planted")
    check "planted" "$planted: not in jni/imports.txt*do without it." "$sentence"
    echo "[   DEVICE ] planted import: $sentence"
done
echo "[   DEVICE ] imports: $count of the 64-bit ARM library, each a phone's at API level 28"
echo "$passed checks passed, $failed failed"
[[ $failed -eq 0 ]]
