#!/usr/bin/env bash
# count_test.sh: what scripts/test counts in builds whose tests do as the rows below say.
set -euo pipefail
root=$(cd "$(dirname "$(readlink -f "$0")")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source "$root/scripts/run_tests.sh"
source "$root/tests/checks.sh"

# A test program's commands. The prose about a million tests must not count.
report='mkdir -p ${GTEST_OUTPUT#xml:}; exec 3>${GTEST_OUTPUT#xml:}a.xml; echo "[  PASSED  ] 1000000 tests."'
row='<testcase status="run" name="a"/>'
lost='<testcase status="run" name="b"><failure/><failure/></testcase>'
skipped='<testcase status="run" name="c"><skipped/></testcase><testcase status="notrun" name="d"/>'
targets='echo "[ TARGETS  ] tried: AVX2 SSE4"; echo "[ TARGETS  ] lacking: AVX3_DL"'

# expect COUNT SETS COMMANDS...: a build with one test a string of commands
expect() {
    local count=$1 sets=$2 n=0 build=$work/build
    shift 2
    rm -rf "$build" && mkdir "$build"
    for commands; do
        n=$((n + 1))
        echo "$commands" >"$build/test$n.sh"
        echo "add_test(test$n bash $build/test$n.sh)" >>"$build/CTestTestfile.cmake"
    done
    passed=0 failed=0 instruction_sets=()
    run_tests "$build" >"$work/printed"
    equal "what is counted of $*" "$count *$sets*" "$passed $failed ${instruction_sets[*]}"
}

all='tried in build: AVX2 SSE4; this processor lacks: AVX3_DL'
expect '4 0' "$all" "$targets; $report; echo '<t>$row$row$skipped</t>' >&3" \
    'echo "2 checks passed, 0 failed"'
expect '1 2' "$all" "$targets; $report; echo '<t>$row$lost</t>' >&3; exit 1" \
    'echo "0 checks passed, 1 failed"; exit 1'
expect '1 1' "$all" "$targets; $report; echo '<t>$row</t>' >&3; exit 1"
expect '0 1' "$all" "$targets; $report; echo '<t>$row' >&3"
expect '0 1' "$all" "$targets; $report; echo '<t></t>' >&3"
expect '0 1' "$all" "$targets; kill -9 \$\$"
expect '1 1' "$all" "$targets" 'echo "1 checks passed, 0 failed"'
one='echo "1 checks passed, 0 failed"'
expect '2 0' 'tried in build: AVX2 AVX3_DL SSE4; this processor lacks: none' "$targets; $one" \
    "${targets//AVX2 SSE4/AVX3_DL}; $one"
expect '1 0' 'tried in build: only the one the library chose;' "${targets//AVX2 SSE4/none}; $one"
expect '1 1' 'tried in build: unknown' "$one"
expect '0 1' ''
echo "$checks checks passed, 0 failed"
