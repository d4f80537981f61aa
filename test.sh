#!/usr/bin/env bash
# Builds and runs every test: natively with sanitizers, and the Windows tests under Wine. The last line counts them.
set -euo pipefail
source "$(dirname "$0")/scripts/common.sh"
# What is still running beside the script is not to go on without it.
finish() {
    [ -z "${windows:-}" ] || kill "$windows" 2> /dev/null || true
    end_all
}
trap finish EXIT

packages=("${build_packages[@]}" "${wine_packages[@]}" "${test_packages[@]}" locales)
install_missing "${packages[@]}"

passed=0 failed=0 skipped=0
test_runs=(unit_tests_first unit_tests_rest unit_tests_windows win_tests win_tests_russian)
for name in "${test_runs[@]}"; do
    : > "build/$name.log"
    echo "not run" > "build/$name.status"
done
# Adds up the closing lines of a test program's log, which come last: tests that run the program once more have such lines
# before them. A program that ended without them counts as one failure.
count_tests() {
    local name=$1 log=build/$1.log status ok bad skip
    status=$(cat "build/$name.status")
    echo "== $name"
    tr -d '\r' < "$log" > "$log.txt"
    ok=$(sed -n 's/^\[  PASSED  \] \([0-9]*\) tests\?\.$/\1/p' "$log.txt" | tail -n 1)
    bad=$(sed -n 's/^\[  FAILED  \] \([0-9]*\) tests\?, listed below:$/\1/p' "$log.txt" | tail -n 1)
    skip=$(sed -n 's/^\[  SKIPPED \] \([0-9]*\) tests\?, listed below:$/\1/p' "$log.txt" | tail -n 1)
    if [ -z "$ok" ] || { [ "$status" != 0 ] && [ -z "$bad" ]; }; then
        bad=$((${bad:-0} + 1))
        echo "$name: ended with status $status"
    fi
    if [ "${bad:-0}" -ne 0 ]; then
        grep -vE '^\[( *OK| RUN|---)' "$log.txt" | tail -n 80
    fi
    passed=$((passed + ${ok:-0})) failed=$((failed + ${bad:-0})) skipped=$((skipped + ${skip:-0}))
}

# Runs a test program, of which count_tests tells.
run_tests() {
    local name=$1 status=0
    shift
    timeout 900 "$@" < /dev/null > "build/$name.log" 2>&1 || status=$?
    echo "$status" > "build/$name.status"
}

echo "Building and testing"
# A new build compiles several files as one, in half of the time; one that exists stays as it is.
build() {
    local unity=(-DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=10)
    [ ! -e "build/$2/CMakeCache.txt" ] || unity=()
    quietly cmake --preset "$1" ${unity[@]+"${unity[@]}"} && quietly cmake --build --preset "$1"
}
not_built() {
    echo "0 passed, 1 failed"
    exit 1
}
build windows-tests windows || not_built

start_display
prepare_wine
prepare_sound
# A server that stays, so that each program does not start one of its own.
wineserver -p
rm -rf build/samples
quietly wine build/windows/make-samples.exe build/samples
locale -a | grep -qi '^ru_RU\.utf-\?8$' || ${as_root[@]+"${as_root[@]}"} localedef -i ru_RU -f UTF-8 ru_RU.UTF-8
test_windows() {
    run_tests unit_tests_windows wine build/windows/tests/unit_tests.exe &
    run_tests win_tests "${captured_sound[@]}" wine build/windows/tests/win_tests.exe '--gtest_filter=-WaveOutWithoutDevice.*'
    wait
    # Once more as a Russian system: other code page, other separators, other interface language. And one without sound.
    # Left out are long tests that have nothing to do with either.
    run_tests win_tests_russian "${no_sound[@]}" LC_ALL=ru_RU.UTF-8 wine build/windows/tests/win_tests.exe \
        '--gtest_filter=-WaveOutCapture.*:RandomActions.*:EffectTest.*:*.ScrollingByCopyingEqualsDrawingAnew:*.WhateverComesBetweenTheSteps*'
}
# Tests of windows wait more than they compute: the native build and its tests take what they leave.
test_windows &
windows=$!
build native native || not_built
# One half of them beside the other.
run_tests unit_tests_first env GTEST_TOTAL_SHARDS=2 GTEST_SHARD_INDEX=0 build/native/tests/unit_tests &
native=$!
run_tests unit_tests_rest env GTEST_TOTAL_SHARDS=2 GTEST_SHARD_INDEX=1 build/native/tests/unit_tests
wait "$native"
# On demand other programs read the exported files too.
if [ -n "${QUILLON_REFERENCE:-}" ]; then
    if scripts/check-exports.sh; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
fi
wait "$windows" || true
for name in "${test_runs[@]}"; do count_tests "$name"; done

[ "$skipped" -eq 0 ] || echo "$skipped skipped: what they need is not here"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
