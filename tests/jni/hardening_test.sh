#!/usr/bin/env bash
# Reads from a built libzoren_runtime.so that it is hardened. How its sources were compiled is in
# flags_test.sh.
# Usage: hardening_test.sh LIBRARY STRIP
set -u
export LC_ALL=C
library=$1
source "${0%/*}/checks.sh"

# What is wrong when a pattern is not in a text, or is.
has() { grep -qE -e "$2" <<<"$1" || echo "lacks $2"; }
lacks() { grep -E -e "$2" <<<"$1"; }
at_most() { [[ -n $2 && $2 -le $1 ]] || echo "not at most $1: ${2:-unknown}"; }

# Each has something that it must have, so none passes unread.
segments=$(readelf -lW "$library")
dynamic=$(readelf -dW "$library")
symbols=$(readelf --dyn-syms -W "$library")
check 'the tables of addresses are read-only once bound' "$(has "$segments" GNU_RELRO)"
check 'everything is bound at load' "$(has "$dynamic" 'FLAGS_1.*NOW')"
check 'the stack is not executable' "$(has "$segments" 'GNU_STACK.* RW ')"
check 'no segment is writable and executable' "$(lacks "$segments" 'LOAD.*RWE')"
check 'the code is not relocated' "$(lacks "$dynamic" TEXTREL)"
# What API level 28 reads: relocations one by one, and the newer of the hash tables.
check 'relocations are not packed' "$(lacks "$dynamic" 'RELR|ANDROID')"
check 'there is a GNU hash table' "$(has "$dynamic" '\(GNU_HASH\)')"
stripped=$(mktemp)
size=$("$2" -o "$stripped" "$library" && wc -c <"$stripped")
rm "$stripped"
echo "[   DEVICE ] stripped: $size bytes"
check 'stacks are protected' "$(has "$symbols" ' __stack_chk_fail@')"
if readelf -hW "$library" | grep -q AArch64; then
    check 'segments fit pages of 16 KiB' \
        "$(awk '$1 == "LOAD" && $NF != "0x4000"' <<<"$segments")$(has "$segments" LOAD)"
    check 'the stripped library takes 184 KiB at most' "$(at_most $((184 << 10)) "$size")"
    # The compiler's runtime has a word in each; x86-64 has Highway's choice besides.
    data=$(size -A "$library" | awk '/^\.(data|bss) / { bytes += $2 } END { print bytes }')
    check 'the library holds no mutable data' "$(at_most 16 "$data")"
    # The linker would let every file use one that is compiled for dot products.
    dots=$(readelf -sW "$(dirname "$library")/../CMakeFiles/zoren_runtime.dir/blur/dot_blur.cpp.o")
    check 'the file for dot products shares no function' "$(lacks "${dots:- WEAK }" ' WEAK ')"
    # paciasp, autiasp and bti c as they stand in the code, in more functions than the runtime has.
    for code in '3f\x23\x03' 'bf\x23\x03' '5f\x24\x03'; do
        there=$(grep -oaP "\x$code\xd5" "$library" | wc -l)
        check "functions hold $code" "$([[ $there -gt 20 ]] || echo "$there do")"
    done
fi
finish
