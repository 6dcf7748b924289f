#!/usr/bin/env bash
# Reads from a built libzoren_runtime.so that it is hardened. How its sources were compiled is in
# flags_test.sh.
# Usage: hardening_test.sh LIBRARY STRIP
set -u
export LC_ALL=C
library=$1
passed=0 failed=0

# check WHAT COMMAND...
check() {
    local what=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "Not so: $what"
    fi
}
has() { grep -qE -e "$2" <<<"$1"; }
lacks() { ! has "$@"; }

# Nothing is missing from what cannot be read.
if ! segments=$(readelf -lW "$library") || ! dynamic=$(readelf -dW "$library") ||
    ! symbols=$(readelf --dyn-syms -W "$library") || ! header=$(readelf -hW "$library"); then
    echo "0 checks passed, 1 failed"
    exit 1
fi
check 'the tables of addresses are read-only once bound' has "$segments" GNU_RELRO
check 'everything is bound at load' has "$dynamic" 'FLAGS_1.*NOW'
check 'the stack is not executable' has "$segments" 'GNU_STACK.* RW '
check 'no segment is writable and executable' lacks "$segments" 'LOAD.*RWE'
check 'the code is not relocated' lacks "$dynamic" TEXTREL
# What API level 28 reads: relocations one by one, and the newer of the hash tables.
check 'relocations are not packed' lacks "$dynamic" 'RELR|ANDROID'
check 'there is a GNU hash table' has "$dynamic" '\(GNU_HASH\)'
stripped=$(mktemp)
size=$("$2" -o "$stripped" "$library" && wc -c <"$stripped")
rm "$stripped"
echo "[   DEVICE ] stripped: $size bytes"
check 'stacks are protected' has "$symbols" ' __stack_chk_fail@'
if has "$header" AArch64; then
    check 'segments fit pages of 16 KiB' test "$(awk '$1 == "LOAD" { print $NF }' <<<"$segments" |
        sort -u)" = 0x4000
    check 'the stripped library takes 184 KiB at most' test "${size:-none}" -le $((184 << 10))
    # The compiler's runtime has a word in each; x86-64 has Highway's choice besides.
    data=$(size -A "$library" | awk '/^\.(data|bss) / { bytes += $2 } END { print bytes }')
    check 'the library holds no mutable data' test "${data:-none}" -le 16
    # The linker would let every file use one that is compiled for dot products.
    dots=$(readelf -sW "$(dirname "$library")/../CMakeFiles/zoren_runtime.dir/blur/dot_blur.cpp.o")
    check 'the file for dot products shares no function' lacks "${dots:- WEAK }" ' WEAK '
    # paciasp, autiasp and bti c as they stand in the code, in more functions than the runtime has.
    for code in '3f\x23\x03' 'bf\x23\x03' '5f\x24\x03'; do
        check "functions hold $code" \
            test "$(grep -oaP "\x$code\xd5" "$library" | wc -l)" -gt 20
    done
fi
echo "$passed checks passed, $failed failed"
[[ $failed -eq 0 ]]
