#!/usr/bin/env bash
# Runs a test program, and runs it once more when LeakSanitizer's checker itself crashed after
# every test had passed: its thread-stopping tracer faults now and then on a loaded machine
# ("Tracer caught signal 11"), a fault of the sanitizer runtime that reports no leak. A leak,
# a failed test or any other crash stands.
out=$(mktemp)
trap 'rm -f "$out"' EXIT
for attempt in 1 2; do
    "$@" >"$out" 2>&1
    status=$?
    cat "$out"
    [ "$status" -eq 0 ] && exit 0
    if ! grep -q "^Tracer caught signal" "$out" ||
        ! grep -q "LeakSanitizer has encountered a fatal error" "$out" ||
        grep -q "^\[  FAILED  \]" "$out"; then
        exit "$status"
    fi
    [ "$attempt" -eq 1 ] && echo "LeakSanitizer's checker crashed after the tests passed: once more"
done
exit "$status"
