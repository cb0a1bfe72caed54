#!/usr/bin/env bash
# The main job: set up, build, and run the bundled examples.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release
./build/release/examples/kernel_example
echo
# A road edge built as a feature line and saved as a drawing.
./build/release/examples/road_edge build/road_edge.dxf
