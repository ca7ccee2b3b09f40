#!/usr/bin/env bash
# clang-tidy with the checks of .clang-tidy; fails when it finds anything. Wants the debug preset built once, for its compile commands.
#   scripts/tidy.sh                     the sources that differ from the last commit
#   scripts/tidy.sh all                 all of Platform, Flarebox and Examples
#   scripts/tidy.sh Platform/UIKit      sources and folders of your choice
source "$(dirname "$0")/prepare.sh"
install_packages scripts/packages-tidy.txt
[ -e build/debug/compile_commands.json ] || cmake --preset debug >/dev/null
case "${1:-}" in
    "") mapfile -t sources < <(git diff --name-only --diff-filter=d HEAD -- '*.cpp') ;;
    all) mapfile -t sources < <(git ls-files 'Platform/*.cpp' 'Flarebox/*.cpp' 'Examples/*.cpp') ;;
    *) mapfile -t sources < <(git ls-files "$@" | grep '\.cpp$') ;;
esac
[ ${#sources[@]} = 0 ] && exit
printf '%s\n' "${sources[@]}" | nice -n 19 xargs -P "$(nproc)" -n 4 clang-tidy-16 -p build/debug --quiet --warnings-as-errors='*' 2> >(grep -v 'warnings generated' >&2)
