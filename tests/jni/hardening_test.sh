#!/usr/bin/env bash
# Reads from a built libzoren_runtime.so, and from how its files were compiled, that it is hardened.
# Usage: hardening_test.sh LIBRARY COMPILE_COMMANDS
set -u
export LC_ALL=C
library=$1 commands=$2
passed=0 failed=0

# check WHAT COMMAND: in a shell of its own
check() {
    if bash -c "$2" "$1" "$library" "$commands"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "Not so: $1"
    fi
}

check 'the tables of addresses are read-only once bound' 'readelf -lW "$1" | grep -q GNU_RELRO'
check 'everything is bound at load' 'readelf -dW "$1" | grep -q "FLAGS_1.*NOW"'
check 'the stack is not executable' 'readelf -lW "$1" | grep -qE "GNU_STACK.* RW "'
check 'no segment is writable and executable' '! readelf -lW "$1" | grep -q "LOAD.*RWE"'
check 'the code is not relocated' '! readelf -dW "$1" | grep -q TEXTREL'
check 'stacks are protected' 'readelf --dyn-syms -W "$1" | grep -q " __stack_chk_fail@"'
check 'calls of the C library are checked' '
    sources=$(grep -c "CMakeFiles/zoren_runtime.dir/.*-c " "$2")
    [ "$sources" -gt 20 ] &&
    [ "$(grep "CMakeFiles/zoren_runtime.dir/.*-c " "$2" | grep -c "D_FORTIFY_SOURCE=2")" = "$sources" ]'
if readelf -h "$library" | grep -q AArch64; then
    # The compiler's runtime has a word in each; x86-64 has Highway's choice besides.
    check 'the library holds no mutable data' '[ $(size -A "$1" |
        awk "/^\.(data|bss) / { bytes += \$2 } END { print bytes + 0 }") -le 16 ]'
    # paciasp, autiasp and bti c as they stand in the code, in more functions than the runtime has.
    for code in '3f\x23\x03' 'bf\x23\x03' '5f\x24\x03'; do
        check "functions hold $code" '[ $(grep -oaP "\x'$code'\xd5" "$1" | wc -l) -gt 20 ]'
    done
fi
echo "$passed checks passed, $failed failed"
[ "$failed" -eq 0 ]
