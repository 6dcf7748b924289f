# Sourced by scripts/test: runs the tests of a build and counts them.

passed=0 failed=0
instruction_sets=() # a line a build: which were tried, and which the processor lacks

# run_tests BUILD: each ctest test of the folder BUILD, and the single tests in it. GoogleTest and
# JUnit count them in the reports they write to BUILD/reports/TEST, a check in bash in its line
# "N checks passed, M failed". A test that fails without naming a failure, or that leaves no count
# (it died, or nothing ran), is a failure.
run_tests() {
    local build=$1 reports=$1/reports log=$1/tests.log names name tried lacking
    echo "== ${build##*/}"
    rm -rf "$reports" "$log"
    names=$(cd "$build" && ctest -N | sed -n 's/^ *Test *#[0-9]*: //p') || true
    if [ -z "$names" ]; then
        echo "no tests in $build: a failure"
        failed=$((failed + 1))
        return
    fi
    for name in $names; do run_test; done
    tried=$(told tried) lacking=$(told lacking)
    if [ -z "$tried" ]; then
        echo "no test tells the instruction sets it tried: a failure"
        failed=$((failed + 1))
    fi
    # What one program of the build lacks, another may have tried, emulating another processor.
    lacking=$(comm -13 <(tr ' ' '\n' <<<"$tried") <(tr ' ' '\n' <<<"$lacking") | xargs)
    [ "$tried" != none ] || tried="only the one the library chose"
    instruction_sets+=("Instruction sets tried in ${build##*/}: ${tried:-unknown}; this processor lacks: ${lacking:-none}")
}

# told WHAT: the names that the programs in $log told as "tried" or "lacking", or "none"
told() {
    local names
    names=$(sed -n "s/^\([0-9]*: \)\?\[ TARGETS  \] $1: *//p" "$log" | tr ' ' '\n' | sort -u)
    [ "$names" = none ] || names=$(sed '/^none$/d' <<<"$names")
    xargs <<<"$names"
}

# The test $name of $build, into $log.
run_test() {
    local status=0 good=0 bad=0 output=$build/test.log verdict=passed start=$SECONDS sums
    (cd "$build" && GTEST_OUTPUT=xml:$reports/$name/ ctest -V -R "^$name\$") >"$output" 2>&1 ||
        status=$?
    # xmllint also refuses a report that is cut off.
    if sums=$(count_reports "$reports/$name") && [ "$sums" != "0 0" ]; then
        good=${sums% *} bad=${sums#* }
    else
        sums=$(sed -n 's/^[0-9]*: \([0-9]*\) checks passed, \([0-9]*\) failed$/\1 \2/p' "$output")
        case $sums in
            [0-9]*" "[0-9]*) good=${sums% *} bad=${sums#* } ;;
        esac
        if [ $((good + bad)) -eq 0 ]; then
            bad=1
            echo "$name left no count of its tests: a failure" | tee -a "$output"
        fi
    fi
    [ "$status" -eq 0 ] || [ "$bad" -gt 0 ] || bad=1
    if [ "$bad" -gt 0 ]; then
        verdict=FAILED
        sed 's/^[0-9]*: //' "$output"
    fi
    printf '%-20s %s, %d passed, %d failed, %d s\n' "$name" "$verdict" "$good" "$bad" \
        $((SECONDS - start))
    passed=$((passed + good)) failed=$((failed + bad))
    sed -n 's/^[0-9]*: \[   FAULTS \] /planted faults: /p' "$output"
    case $build in  # what was compared with the phone's own parts
        */device-parts*) sed -n 's/^[0-9]*: \[   DEVICE \] /    /p' "$output" ;;
    esac
    cat "$output" >>"$log"
    rm "$output"
}

# count_reports FOLDER: how many tests passed and failed by all reports in it; false when there is
# none, or one that cannot be read. Tests that were skipped count as neither.
count_reports() {
    local report counts good=0 bad=0
    for report in "$1"/*.xml; do
        counts=$(xmllint --nonet --xpath 'concat(
            count(//testcase[not(failure | error | skipped) and not(@status = "notrun")]), " ",
            count(//testcase[failure | error]))' "$report" 2>/dev/null) || return 1
        good=$((good + ${counts% *})) bad=$((bad + ${counts#* }))
    done
    echo "$good $bad"
}
