#!/usr/bin/env bash
# The main job: set up, build, and run the bundled example.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release
./build/release/examples/kernel_example
