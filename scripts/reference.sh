#!/usr/bin/env bash
# Makes the reference of the public headers, build/reference/html/index.html. A class, a function or a parameter that nobody has explained is an
# error, as is an explanation of something that does not exist.
source "$(dirname "$0")/prepare.sh"
install_packages scripts/packages-reference.txt
mkdir -p build/reference
version=$(awk '/define FLAREBOX_VERSION_(MAJOR|MINOR|PATCH)/ { v = v (v == "" ? "" : ".") $3 } END { print v }' Flarebox/C/flarebox_version.h)
{ cat Docs/Doxyfile; echo "PROJECT_NUMBER = $version"; } | doxygen -
