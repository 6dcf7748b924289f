#!/usr/bin/env bash
# Compiles and runs the examples of README.md: the C++ one against an installation of its own, the
# Java one, unless JAVA is empty, against the build.
# Usage: CXX=COMPILER... RUN=[EMULATOR] JAVA=[JAVA] readme_test.sh BUILD WORK INCLUDE...
set -eu
export LC_ALL=C
readme=$(dirname "$0")/../README.md build=$1 work=$2
shift 2
read -ra cxx <<<"$CXX -std=c++17 -Wall -Wextra -Werror -I $work/install/include/zoren_runtime"
for folder; do cxx+=(-isystem "$folder"); done
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

# The lines of the one example in a language.
example() {
    awk -v "open=\`\`\`$1" '$0 == open { on = ++found; next } /^```/ { on = 0 } on
        END { exit found != 1 }' "$readme"
}

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/install" >"$work/install.log"

# A picture of 64 x 48 pixels, black to the left and white to the right, is gray where they meet.
example cpp >"$work/example.txt"
{
    grep '^#include' "$work/example.txt"
    echo 'int main() {
        const int32_t width = 64, height = 48;
        static uint32_t pixels[64 * 48];
        for (int32_t i = 0; i < width * height; ++i) pixels[i] = i % width < 32 ? 0 : 0xFFFFFF;'
    grep -v '^#include' "$work/example.txt"
    echo '  return pixels[31] > 0xFF646464 && pixels[31] < 0xFF808080 && pixels[0] == 0xFF000000 ? 0 : 3;
    }'
} >"$work/example.cpp"
read -ra run <<<"$RUN"
check 'the C++ example compiles' "${cxx[@]}" "$work/example.cpp" -o "$work/example" \
    -L "$work/install/lib" "-Wl,-rpath,$work/install/lib" -lzoren_runtime
check 'the C++ example blurs' "${run[@]}" "$work/example"

# What is installed beside the one header is what it includes.
met=$("${cxx[@]}" -M "$work/example.cpp" | grep -o "$work/install/[^ ]*" | sort)
check 'the installed headers belong to zoren_runtime.h' \
    diff <(find "$work/install/include" -type f | sort) <(echo "$met")

if [[ -n $JAVA ]]; then
    {
        echo 'import android.graphics.Bitmap;
            import zoren.util.BlurUtil;
            public class Example {
                public static void main(String[] arguments) {
                    final int width = 64, height = 48;
                    final int[] colors = new int[width * height];
                    for (int i = 0; i < colors.length; i++) {
                        colors[i] = i % width < 32 ? 0xFF000000 : 0xFFFFFFFF;
                    }'
        example java
        echo '      final int red = bitmap.getPixel(31, 24) >> 16 & 0xFF; // under a quarter of orange
                    System.exit(red > 146 && red < 162 ? 0 : 3);
                }
            }'
    } >"$work/Example.java"
    lib=$build/lib
    check 'the Java example blurs' "$JAVA" -Djava.library.path="$lib" \
        -cp "$lib/zoren-framework.jar:$lib/zoren-platform.jar" "$work/Example.java"
fi
echo "$passed checks passed, $failed failed"
[[ $failed -eq 0 ]]
