# Sourced by the tests in bash: counts their checks, and ends them with the first that fails.

checks=0

# equal WHAT EXPECTED ACTUAL: EXPECTED is a pattern as of file names
equal() {
    if [[ $3 != $2 ]]; then
        printf 'failed: %s\n  expected %s\n  not %s\n' "$@" >&2
        exit 1
    fi
    checks=$((checks + 1))
}
