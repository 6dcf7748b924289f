#!/usr/bin/env bash
# Reads how a build compiles every source of the library: each given flag must be the last word of
# its kind there.
# Usage: flags_test.sh COMPILE_COMMANDS FLAG...
set -u
export LC_ALL=C
commands=$1
shift
passed=0 failed=0

# check WHAT WRONG: the sources that are not so
check() {
    if [[ -z $2 ]]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "$1:"
        echo "$2"
    fi
}

# SOURCE COMMAND, for each source
compiled=$(sed -n 's|^ *"command": "\(.*CMakeFiles/zoren_runtime\.dir/\(.*\)\.o -c .*\)",$|\2 \1|p' \
    "$commands")
# Of the sources for dot products each processor has its own.
everywhere() { grep -vE '^blur/dot_(absent|blur|processor)\.cpp$' | sort; }
check 'not compiled, or not in the tree' "$(diff <(cut -d ' ' -f 1 <<<"$compiled" | everywhere) \
    <(cd "$(dirname "$0")/../.." && printf '%s\n' {jni,blur,analysis,config,net}/*.cpp | everywhere))"
for flag; do
    case $flag in  # what undoes it
        -ffp-contract=*) kind='(ffp-contract=.*|f(no-)?(fast-math|unsafe-math-optimizations)|Ofast)' ;;
        -fstack-protector*) kind='f(no-)?stack-protector(-.*)?' ;;
        -D_FORTIFY_SOURCE=*) kind='[DU]_FORTIFY_SOURCE(=.*)?' ;;
        *=*) kind="${flag:1}" kind="${kind%%=*}=.*" ;;
        -fno-*) kind="f(no-)?${flag#-fno-}" ;;
    esac
    check "without $flag" "$(awk -v flag="$flag" -v kind="^-$kind\$" '{
        last = "nothing of the kind"
        for (i = 2; i <= NF; ++i) if ($i ~ kind) last = $i
        if (last != flag) print "    " $1 ": " last
    }' <<<"$compiled")"
done
echo "$passed checks passed, $failed failed"
[[ $failed -eq 0 && $passed -gt 1 ]]
