#!/usr/bin/env bash
# Installs a build into a folder of its own, and builds and runs the examples outside the tree
# against it; Java, and with it the command line, only where JAVA is given.
# Usage: CXX=COMPILER... RUN=[EMULATOR] JAVA=[JAVA] install_test.sh BUILD WORK INCLUDE...
set -euo pipefail
export LC_ALL=C
root=$(cd "$(dirname "$0")/.." && pwd) build=$1 work=$2
shift 2
passed=0 failed=0

# check WHAT COMMAND...
check() {
    local what=$1
    shift
    if "$@" >"$work/log" 2>&1; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "Not so: $what"
        cat "$work/log"
    fi
}
same() { diff <(echo "$1") <(echo "$2"); }

rm -rf "$work"
mkdir -p "$work"
prefix=$work/installed
(cd "$work" && cmake --install "$build" --prefix installed >install.log)
cp -r "$prefix"/share/doc/*/examples "$work/examples"
cd "$work/examples"
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
read -ra run <<<"$RUN"
read -ra cxx <<<"$CXX -std=c++17 -Wall -Wextra -Werror"
read -ra include <<<"$(pkg-config --cflags zoren_runtime)"
read -ra link <<<"$(pkg-config --libs zoren_runtime)"
headers=$prefix/include/zoren_runtime lib=$prefix/lib/zoren-runtime-1
jni=("${@/#/-I}")

# What is installed beside the one header is what it includes, and only the natives want jni.h.
met() {
    "${cxx[@]}" "${include[@]}" "$@" -M pkg-config/measure.cpp | grep -o "$headers/[^ ]*" | sort
}
check 'the headers belong to zoren_runtime.h' \
    same "$(find "$headers" -type f | sort)" "$(met "${jni[@]}")"
check 'without jni.h the natives are left out' \
    same "$(find "$headers" -type f ! -name native_methods.h | sort)" "$(met)"
check 'no library lies where another may look' \
    same '' "$(find "$prefix/lib" -maxdepth 1 ! -type d)"

# A picture of 64 x 48 pixels, black to the left and white to the right, under a quarter of orange.
{
    printf 'P6\n64 48\n255\n'
    for ((row = 0; row < 48; ++row)); do
        printf '%96s' '' | tr ' ' '\0'
        printf '%96s' '' | tr ' ' '\377'
    done
} >edge.ppm
check 'the example by pkg-config is built' \
    "${cxx[@]}" pkg-config/measure.cpp "${include[@]}" "${link[@]}" -o measure
check 'the example by CMake is configured' cmake -S cmake -B cmake/build \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="${cxx[0]}" -DCMAKE_CXX_FLAGS="${cxx[*]:1}"
check 'the example by CMake is built' cmake --build cmake/build
"${run[@]}" cmake/build/blur 10 40FF8800 <edge.ppm >soft.ppm || true
check 'the examples blur and measure' same $'gray 133\ncast #FF7F00' \
    "$("${run[@]}" ./measure <soft.ppm)"

if [[ -n $JAVA ]]; then
    zoren=$prefix/bin/zoren photo=$root/samples/photo.jpg
    check 'the command line is that of the newest change' \
        same "$(sed -n 's/^## \[\([0-9.]*\)\].*/zoren \1/p' "$root/CHANGELOG.md" | head -n 1)" \
        "$("$zoren" --version)"
    "$zoren" blur "$photo" soft.png --radius 10 --color 40FF8800
    jars=$lib/zoren-framework.jar:$lib/zoren-platform.jar
    check 'the example in Java does what the command line does' \
        same "gray $("$zoren" gray soft.png | cut -f 1)" \
        "$("$JAVA" -Djava.library.path="$lib" -cp "$jars" java/Blur.java "$photo" java.png 10)"
fi
echo "$passed checks passed, $failed failed"
[[ $failed -eq 0 ]]
