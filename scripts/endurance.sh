#!/usr/bin/env bash
# The long form of what ./test tries briefly: 1,000 rounds of a host's and a tab's life, 200 processes that end with everything under way,
# and every shortage of the system. Writes build/reliability/endurance.tsv: test, cases, survived, failures, peak in MiB.
#   scripts/endurance.sh [asan|tsan|valgrind]
# Wants a machine that has nothing else to do: a process has 200 ms to end; FLAREBOX_SLACK=5 gives it five times as long. FLAREBOX_ROUNDS,
# FLAREBOX_EXITS and FLAREBOX_SEED choose other numbers, FLAREBOX_TRACE=1 prints each. Under valgrind there are five rounds only.
source "$(dirname "$0")/prepare.sh"
install_packages
preset=debug runner=()
export FLAREBOX_ROUNDS=${FLAREBOX_ROUNDS:-1000} FLAREBOX_EXITS=${FLAREBOX_EXITS:-200} FLAREBOX_SLACK=${FLAREBOX_SLACK:-1}
export_sanitizer_options
case "${1:-}" in
    asan|tsan) preset=$1 ;;
    valgrind)
        install_packages scripts/packages-valgrind.txt
        export FLAREBOX_ROUNDS=5
        runner=(valgrind --quiet --error-exitcode=1 --fair-sched=yes --leak-check=full --show-leak-kinds=definite
            --errors-for-leak-kinds=definite --suppressions=Tests/valgrind.supp) ;;
esac
build "$preset" EnduranceTests
mkdir -p build/reliability
export FLAREBOX_RELIABILITY=$PWD/build/reliability/endurance${1:+-$1}.tsv
export FLAREBOX_TOOL=${1:-}
rm -f "$FLAREBOX_RELIABILITY"
filter='*'
[ ${#runner[@]} = 0 ] || filter='LifeCycleTest.*'
exec "${runner[@]}" "build/$preset/Tests/EnduranceTests" --gtest_filter="$filter"
