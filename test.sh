#!/bin/bash
# Builds Vatro with its tests in build/ and runs them; arguments go to ctest, for example
# ./test.sh -L fast. VATRO_WERROR=ON takes warnings as errors.
set -e
cd "$(dirname "$(readlink -f "$0")")"
. scripts/packages.sh

need g++ has_program "${CXX:-c++}"
need cmake has_program cmake
need make has_program make
install_missing
need zlib1g-dev has_header zlib.h
need libgtest-dev has_header gtest/gtest.h
install_missing

jobs=$(getconf _NPROCESSORS_ONLN)
cmake --preset tests -DVATRO_WERROR="${VATRO_WERROR:-OFF}"
cmake --build build --parallel "$jobs"
exec ctest --test-dir build --output-on-failure --no-tests=error --parallel "$jobs" "$@"
