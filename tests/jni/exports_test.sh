#!/usr/bin/env bash
# Compares what a built libzoren_runtime.so exports with exports.txt and what it needs with the list
# below.
# Usage: exports_test.sh LIBRARY
set -euo pipefail
export LC_ALL=C
library=$1
source "${0%/*}/checks.sh"

# differ WHAT EXPECTED ACTUAL
differ() {
    check "$1 of $library" "$(diff <(echo "$2") <(echo "$3") |
        sed -n 's/^</missing:   /p; s/^>/unexpected:/p')"
}

actual=$(readelf --dyn-syms -W "$library" |
    awk '$1 ~ /^[0-9]+:$/ && $7 != "UND" && $5 != "LOCAL" { print $8 }' | c++filt |
    sed 's/(_JNIEnv\*/(JNIEnv_*/' | sort)  # as the phone names it
differ 'Exports' "$(<"${0%/*}/exports.txt")" "$actual"

soname=$(readelf -d -W "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
differ 'Soname' libzoren_runtime.so "$soname"

# A longer one would end in the build tree, an empty entry of it in the current folder. A phone's own
# libraries are found without one, those of Debian lie in a folder of theirs.
needed=$(readelf -d -W "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
runpath=$(readelf -d -W "$library" | sed -n 's/.*(RUNPATH).*\[\(.*\)\]/\1/p')
phone=$(grep -x 'libc\.so' <<<"$needed") || true
differ 'Run path' "${phone:-\$ORIGIN}" "${phone}${runpath%:/usr/lib/*-linux-gnu/android}"

# Besides these only the C and C++ runtime, and that of the sanitizers in such a build. Only where
# the processor's instruction set is chosen at run time there is libhwy.
needs='libandroid_runtime libcrypto libjnigraphics liblog libnativehelper'
readelf -h "$library" | grep -q X86-64 && needs+=' libhwy'
differ 'Needed libraries' "$(tr ' ' '\n' <<<"$needs" | sort)" "$(sed 's/\.so.*//' <<<"$needed" |
    grep -vE '^(lib(stdc\+\+|c\+\+|m|dl|gcc_s|c|[atu]b?san)|ld-linux-.*)$' | sort)"
finish
