#!/usr/bin/env bash
# The main job: set up, build, and run the bundled examples.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release
./build/release/examples/kernel_example
echo
# A road edge built as a feature line and saved as a drawing; then the
# console lists the drawing's feature lines and dumps the one it made.
./build/release/examples/road_edge build/road_edge.dxf
echo
./build/release/vora -i build/road_edge.dxf --featurelines
handle=$(./build/release/vora -i build/road_edge.dxf --featurelines | awk 'NR == 2 { print $1 }')
echo
./build/release/vora -i build/road_edge.dxf --dump "$handle"
