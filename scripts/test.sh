#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
#   scripts/test.sh                      the suite as CI runs it
#   scripts/test.sh --sanitize address,undefined   (or thread) in a separate build folder
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build
cmake_args=()
if [ "${1:-}" = "--sanitize" ]; then
  build=$root/build-${2//,/-}
  cmake_args+=(-DVEXTIL_SANITIZE="$2" -DVEXTIL_BUILD_BENCH=OFF)
  # Memory handled inside uninstrumented libraries (Qt, OpenCV) is judged by their own locks;
  # tests start the reference server (fork and exec) from a process that already has threads.
  export TSAN_OPTIONS="suppressions=$root/tests/tsan.supp ignore_noninstrumented_modules=1 die_after_fork=0 ${TSAN_OPTIONS:-}"
  export LSAN_OPTIONS="suppressions=$root/tests/lsan.supp ${LSAN_OPTIONS:-}"
fi

"$root/scripts/build.sh" "$build" "${cmake_args[@]}"
export QT_QPA_PLATFORM=offscreen
(cd "$build" && ctest --output-on-failure --parallel "$(nproc)" --timeout 300)

# The fuzz targets, a bounded number of iterations each, in a clang build of their own (label
# "fuzz"); skipped in sanitizer runs, which use the other compiler's runtime.
if [ ${#cmake_args[@]} -eq 0 ]; then
  CC=clang CXX=clang++ cmake -S "$root" -B "$root/build-fuzz" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEXTIL_FUZZ=ON \
    -DVEXTIL_BUILD_TESTS=OFF -DVEXTIL_BUILD_BENCH=OFF -DVEXTIL_BUILD_EXAMPLES=OFF >/dev/null
  cmake --build "$root/build-fuzz" --target vextil_fuzzers --parallel "$(nproc)"
  (cd "$root/build-fuzz" && ctest -L fuzz --output-on-failure --parallel "$(nproc)")
fi
