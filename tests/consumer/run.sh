#!/usr/bin/env bash
# Installs a build tree into a scratch prefix, checks what the module exports,
# then builds and runs an outside project against the installed package.
# Usage: tests/consumer/run.sh BUILD_DIR
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/prefix" >/dev/null

# Our own exported symbols: the C functions, the exported classes and the
# host entry points. Instantiations of the standard library that the
# compiler exports by default are not ours and are left out.
module=$(find "$work/prefix" -name 'libvoraclib.so' | head -n 1)
ours=$(nm -D --defined-only -C "$module" | awk '{ $1=""; $2=""; sub(/^  /, ""); print }' \
  | grep -v -E '^(std::|__gnu_cxx::|__cxxabiv1::|operator |typeinfo (name )?for std::|vtable for std::|VTT for std::|guard variable for std::)' \
  | grep -v -E '^(_init|_fini|_edata|_end|__bss_start)$' || true)
# The type information of the enumerations the feature-line code throws stays
# visible: exception matching between shared libraries compares it.
unexpected=$(printf '%s\n' "$ours" | grep -v -E '^(vora_[A-Za-z0-9_]+|acrxEntryPoint|acrxGetApiVersion|(typeinfo (name )?for |vtable for )?Vora(Xdata|Xrecord)\b.*|Vora(Xdata|Xrecord)::.*|typeinfo (name )?for (FeaturelineError|vora_featureline_result_enum|Acad::ErrorStatus))$' | grep -v '^$' || true)
if [ -n "$unexpected" ]; then
  echo "consumer: the module exports symbols that should be hidden:" >&2
  printf '%s\n' "$unexpected" | head -n 40 >&2
  exit 1
fi
echo "consumer: module exports $(printf '%s\n' "$ours" | grep -c -E '^vora_') vora_* functions and nothing else of ours"

cmake -S "$here" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/build" >/dev/null
LD_LIBRARY_PATH="$(dirname "$module"):${LD_LIBRARY_PATH:-}" "$work/build/consumer"
