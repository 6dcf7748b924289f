#!/usr/bin/env bash
# Reads how a build compiles every source of the library: each given flag must be the last word of
# its kind there. Android.bp must have them, too, and the same sources; where the platform's own
# formatter is installed (scripts/test --device), that parses it and finds nothing to lay out.
# Usage: flags_test.sh COMPILE_COMMANDS FLAG...
set -u
export LC_ALL=C
commands=$1
shift
source "${0%/*}/checks.sh"

# SOURCE COMMAND, for each source
compiled=$(sed -n 's|^ *"command": "\(.*CMakeFiles/zoren_runtime\.dir/\(.*\)\.o -c .*\)",$|\2 \1|p' \
    "$commands")
# Of the sources for dot products each processor has its own.
everywhere() { grep -vE '^blur/dot_(absent|blur|processor)\.cpp$' | sort; }
check 'not compiled, or not in the tree' "$(diff <(cut -d ' ' -f 1 <<<"$compiled" | everywhere) \
    <(cd "$(dirname "$0")/../.." && printf '%s\n' {jni,blur,analysis,config,net}/*.cpp | everywhere))"
bp=$(dirname "$0")/../../Android.bp how=
listed=$(grep -oE '"(jni|blur|analysis|config|net)/[^"]*\.cpp"' "$bp" | tr -d '"')
check 'in one of Android.bp and the tree' "$(diff <(sort <<<"$listed") <(cd "${bp%/*}" &&
    printf '%s\n' {jni,blur,analysis,config,net}/*.cpp | grep -vx blur/dot_absent.cpp | sort))"
if command -v bpfmt >/dev/null; then
    check 'layout of Android.bp' "$(bpfmt -d "$bp" 2>&1)"
    how=', parsed and laid out as bpfmt does'
fi
echo "[   DEVICE ] Android.bp: $(wc -l <<<"$listed") sources compared with the tree's$how"
for flag; do
    grep -qE "\"$flag\"|${flag/#-fno-rtti/^    rtti: false,\$}" "$bp" || check 'not in Android.bp' "$flag"
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
finish
