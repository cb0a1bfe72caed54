#!/usr/bin/env bash
# The test job: set up, then build and test the release and the sanitizer
# builds, and check the installed package from an outside project.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

jobs=$(nproc)

echo "== release build and tests"
cmake --preset release >/dev/null
cmake --build --preset release -j "$jobs"
ctest --preset release -j "$jobs"

echo "== installed package"
bash tests/consumer/run.sh build/release

echo "== sanitizer build and tests (address, undefined)"
cmake --preset sanitize >/dev/null
cmake --build --preset sanitize -j "$jobs"
ctest --preset sanitize -j "$jobs"

echo "== DXF reader fuzzing (bounded, clang + libFuzzer)"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$jobs" --target dxf_reader_fuzz
# A fixed seed makes a failure reproducible; an input that fails is kept in
# build/fuzz/ (crash-*, leak-*, timeout-*) to replay with
# ./build/fuzz/fuzz/dxf_reader_fuzz FILE.
fuzz_work=$(mktemp -d)
./build/fuzz/fuzz/dxf_reader_fuzz -seed=20261123 -max_total_time=60 -max_len=65536 -rss_limit_mb=2048 \
  -artifact_prefix=build/fuzz/ -print_final_stats=1 "$fuzz_work" tests/data/corpus
rm -rf "$fuzz_work"
