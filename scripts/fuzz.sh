#!/usr/bin/env bash
# Builds the libFuzzer targets with clang in build-fuzz/ and runs each for longer than the test
# suite does. A crash leaves its input in build-fuzz/ (crash-*); fix it and add the input to
# tests/fuzz/corpus/NAME/ so that every later run replays it.
#   scripts/fuzz.sh [SECONDS_PER_TARGET]      (default 300)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-300}
"$root/scripts/install-deps.sh"
CC=clang CXX=clang++ cmake -S "$root" -B "$root/build-fuzz" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEXTIL_FUZZ=ON \
  -DVEXTIL_BUILD_TESTS=OFF -DVEXTIL_BUILD_BENCH=OFF -DVEXTIL_BUILD_EXAMPLES=OFF >/dev/null
cmake --build "$root/build-fuzz" --target vextil_fuzzers --parallel "$(nproc)"
cd "$root/build-fuzz"
for target in StringsTableFuzz UploadAnswerFuzz FrameConversionFuzz VideoFileReaderFuzz MetaInfosFuzz; do
  mkdir -p "found/$target"
  echo "== $target, ${seconds} s"
  "tests/fuzz/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 "found/$target" "$root/tests/fuzz/corpus/$target"
done
