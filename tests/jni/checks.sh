# Sourced by tests of this folder: counts their checks.
passed=0 failed=0

# check WHAT WRONG: passes when nothing is wrong, else prints it
check() {
    if [[ -z $2 ]]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        printf '%s:\n%s\n' "$1" "$2"
    fi
}

# The count as scripts/test reads it; false when a check failed or none was made.
finish() {
    echo "$passed checks passed, $failed failed"
    [[ $failed -eq 0 && $passed -gt 0 ]]
}
