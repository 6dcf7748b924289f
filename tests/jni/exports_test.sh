#!/usr/bin/env bash
# Compares what a built libzoren_runtime.so exports and needs with the list below.
# Usage: exports_test.sh LIBRARY
set -euo pipefail
export LC_ALL=C
library=$1
passed=0 failed=0

# differ WHAT EXPECTED ACTUAL
differ() {
    if [[ $2 != "$3" ]]; then
        echo "$1 of $library:"
        diff <(echo "$2") <(echo "$3") | sed -n 's/^</missing:   /p; s/^>/unexpected:/p' || true
        failed=$((failed + 1))
    else
        passed=$((passed + 1))
    fi
}

expected='JNI_OnLoad
android::BitmaptoColorCast(android::BitmapStruct const*, int, int)
android::GaussianBlurEffect(android::BitmapStruct*, int const*, int, int)
android::HSBtoRGB(int&, int&, int&, float, float, float)
android::RGB2Gray(android::BitmapStruct const*)
android::addMask(android::BitmapStruct*, unsigned int)
android::calcuGaussianTemplate(int*, int, float)
android::fillBitmapRegionHorizontal(android::BitmapStruct const*, android::BitmapStruct*)
android::fillBitmapRegionVertical(android::BitmapStruct const*, android::BitmapStruct*)
android::getBitmapColorCast(JNIEnv_*, _jobject*, _jobject*, int, int)
android::getBitmapGray(JNIEnv_*, _jobject*, _jobject*)
android::getBlurEffect(JNIEnv_*, _jobject*, _jobject*, float, unsigned int)
android::register_android_util_ZorenConfig(JNIEnv_*)
android::register_zoren_net_ZorenTrafficStats(JNIEnv_*)
android::register_zoren_util_BitmapGrayUtil(JNIEnv_*)
android::register_zoren_util_BlurUtil(JNIEnv_*)'
actual=$(readelf --dyn-syms -W "$library" |
    awk '$1 ~ /^[0-9]+:$/ && $7 != "UND" && $5 != "LOCAL" { print $8 }' | c++filt |
    sed 's/(_JNIEnv\*/(JNIEnv_*/' | sort)  # as the phone names it
differ 'Exports' "$expected" "$actual"

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
expected='libandroid_runtime.so
libcrypto.so
'
readelf -h "$library" | grep -q X86-64 && expected+='libhwy.so
'
expected+='libjnigraphics.so
liblog.so
libnativehelper.so'
differ 'Needed libraries' "$expected" "$(sed 's/\.so\.[0-9]*$/.so/' <<<"$needed" |
    grep -vE '^(lib(stdc\+\+|c\+\+|m|dl|gcc_s|c|[atu]b?san)|ld-linux-.*)\.so$' | sort)"
echo "$passed checks passed, $failed failed"
[ "$failed" -eq 0 ]
