#!/usr/bin/env bash
# mutate_test.sh: scripts/mutate on a project of two sources, which is no repository.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "$0")")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/scripts"
cp "$root"/scripts/{mutate,packages.sh} "$work/scripts"
cd "$work"
cat >CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.25)
project(small LANGUAGES CXX)
enable_testing()
add_compile_definitions(ONE=1)
add_library(zoren_runtime SHARED net/sum.cpp)
add_executable(program main.cpp)
target_link_libraries(program PRIVATE zoren_runtime)
add_test(NAME cpp_tests COMMAND program)
add_test(NAME hardening COMMAND grep -q ONE=1 ${CMAKE_BINARY_DIR}/build.ninja)
END
mkdir net
cat >net/sum.cpp <<'END'
int sum(int a, int b) { return a + b + 0 * ONE; }
END
cat >main.cpp <<'END'
#include <signal.h>
int sum(int a, int b);
int main() { return sum(1, 2) == 3 ? 0 : 1; }
END
cat >scripts/mutations.txt <<'END'
CMakeLists.txt
    definitions(ONE=1) => definitions(ONE=2)
net/sum.cpp
    a + b => a - b
    0 * => 1 + 0 *
    return => __builtin_trap(); return
main.cpp
    return sum => kill(0, SIGKILL); return sum
    == 3 => >= 3
END
ok=0 bad=0
expect() {
    if [[ $2 == *"$1"* ]]; then
        ok=$((ok + 1))
    else
        bad=$((bad + 1))
        printf 'expected %s in:\n%s\n' "$1" "$2"
    fi
}
run() { printed=$(scripts/mutate "$@" 2>&1) && printed+=$'\nexit 0' || printed+=$'\nexit '$?; }

run
expect $'6 slips, 5 caught (83 %)\nexit 1' "$printed"
expect 'SURVIVED main.cpp: == 3 => >= 3' "$printed"
expect 'caught   CMakeLists.txt: definitions(ONE=1) => definitions(ONE=2)  (hardening)' "$printed"
run 'sum*a'
expect $'2 slips, 2 caught (100 %)\nexit 0' "$printed"
run --check
expect $'6 slips, 6 apply\nexit 0' "$printed"
printf '    int => long\n    nowhere =>\n    0 => 0\n    ; } => }\n' >>scripts/mutations.txt
run --check
expect $'10 slips, 7 apply\nexit 1' "$printed"
run '; }'
expect 'ERROR    main.cpp: ; } => }  (' "$printed"
run --list nowhere
expect $'main.cpp: nowhere =>\nexit 0' "$printed"
run no-such-slip
expect 'exit 2' "$printed"
echo "$ok checks passed, $bad failed"
[ "$bad" -eq 0 ]
