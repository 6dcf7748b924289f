#!/usr/bin/env bash
# Compares Android.bp with the tree and with the flags that the library is compiled with here; where
# the platform's own formatter is installed (scripts/test --device), that parses it and finds
# nothing to lay out.
# Usage: android_bp_test.sh FLAG...
set -u
export LC_ALL=C
cd "$(dirname "$0")/../.."
passed=0 failed=0

# check WHAT WRONG
check() {
    if [[ -z $2 ]]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        printf '%s:\n%s\n' "$1" "$2"
    fi
}

listed=$(grep -oE '"(jni|blur|analysis|config|net)/[^"]*\.cpp"' Android.bp | tr -d '"' | sort)
# What takes the place of dot products elsewhere is for no phone.
tree=$(printf '%s\n' {jni,blur,analysis,config,net}/*.cpp | grep -vx blur/dot_absent.cpp | sort)
check 'sources in one of Android.bp and the tree' "$(diff <(echo "$listed") <(echo "$tree"))"
for flag; do
    grep -qF "\"$flag\"" Android.bp || [[ $flag == -fno-rtti ]] || check 'not in Android.bp' "$flag"
done
check 'runtime types' "$(grep -qx '    rtti: false,' Android.bp || echo on)"
how=
if command -v bpfmt >/dev/null; then
    check 'layout' "$(bpfmt -d Android.bp 2>&1)"
    how=', parsed and laid out as bpfmt does'
fi
echo "[   DEVICE ] Android.bp: $(wc -l <<<"$listed") sources, all there are$how"
echo "$passed checks passed, $failed failed"
[[ $failed -eq 0 ]]
