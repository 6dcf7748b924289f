#!/usr/bin/env bash
# Looks through every object of a build for AVX-VNNI's own coding of instructions. Highway lets the
# compiler use it in the AVX-512 target, but a processor may have AVX-512 without it. The measured
# peak of the benchmarks must be one of 512-bit multiply-adds.
# Usage: objects_test.sh COMPILE_COMMANDS
set -u
export LC_ALL=C
commands=$1
seen=0 wrong=0

while read -r object; do
    [[ -e $object ]] || continue  # a program that is only built when asked for
    seen=$((seen + 1))
    found='objdump failed'
    if code=$(objdump -d "$object"); then found=$(grep -F -m 3 -e '{vex}' <<<"$code"); fi
    if [[ $object == */limits_bench.cpp.o ]] &&
        ! grep -q 'vp\(dpwssd\|maddwd\) .*%zmm' <<<"$code"; then
        found+=' no 512-bit multiply-add'
    fi
    if [[ -n $found ]]; then
        wrong=$((wrong + 1))
        printf '%s:\n%s\n' "$object" "$found"
    fi
done < <(cd "$(dirname "$commands")" &&
    sed -n "s|^ *\"command\":.* -o \([^ ]*\) -c .*|$PWD/\1|p" "${commands##*/}")
echo "$seen objects, $wrong wrong"
if [[ $seen -gt 0 && $wrong -eq 0 ]]; then
    echo "1 checks passed, 0 failed"
else
    echo "0 checks passed, 1 failed"
    exit 1
fi
