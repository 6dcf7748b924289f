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
    awk '$1 ~ /^[0-9]+:$/ && $7 != "UND" && $5 != "LOCAL" { print $8 }' | c++filt | sort)
differ 'Exports' "$expected" "$actual"

soname=$(readelf -d -W "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
differ 'Soname' libzoren_runtime.so "$soname"

# A longer one would end in the build tree, an empty entry of it in the current folder.
runpath=$(readelf -d -W "$library" | sed -n 's/.*(RUNPATH).*\[\(.*\)\]/\1/p')
differ 'Run path' '$ORIGIN' "$runpath"

# Besides these only the C and C++ runtime, and that of the sanitizers in such a build. Only where
# the processor's instruction set is chosen at run time there is libhwy.
expected='libandroid_runtime.so
libcrypto.so.3
'
readelf -h "$library" | grep -q X86-64 && expected+='libhwy.so.1
'
expected+='libjnigraphics.so
liblog.so
libnativehelper.so'
needed=$(readelf -d -W "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
    grep -vE '^(lib(stdc\+\+|m|gcc_s|c|[atu]b?san)|ld-linux-.*)\.so\.[0-9]+$' | sort)
differ 'Needed libraries' "$expected" "$needed"
echo "$passed checks passed, $failed failed"
[ "$failed" -eq 0 ]
