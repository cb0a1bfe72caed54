#!/usr/bin/env bash
# The vora console against the DXF corpus.
# Usage: console_test.sh VORA CORPUS_DIR MODE [SHARED_DIR]
#   MODE cli:    --help, --list counts (the manifest's model-space counts),
#                malformed files refused with path, line and reason, no output written
#   MODE tools:  every good file saved unedited is lossless for dxfdiff.py and
#                passes dxfcheck.py's tag pass when the original does (needs SHARED_DIR)
#   MODE ezdxf:  every saved good file loads in ezdxf with the same content and
#                no more audit errors than the original
set -uo pipefail
vora=$1 corpus=$2 mode=$3 shared=${4:-}
python=/usr/bin/python3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

good_files() {
  awk -F'\t' 'NR > 1 && $11 == "" && $4 !~ /^binary/ { print $1 }' "$corpus/MANIFEST.tsv"
}

case $mode in
cli)
  "$vora" --help | grep -q '^usage: vora' || fail "--help"
  "$vora" >/dev/null 2>&1 && fail "no arguments accepted"
  "$vora" -i "$corpus/r12-leica-disto-s910.dxf" --bogus >/dev/null 2>&1 && fail "unknown option accepted"
  while IFS=$'\t' read -r file _ _ _ _ _ _ _ _ notes defect; do
    [ "$file" = file ] && continue
    if [ -n "$defect" ] || [[ $notes == binary* ]]; then
      if "$vora" -i "$corpus/$file" -o "$work/out.dxf" 2>"$work/err"; then fail "$file accepted"; fi
      [ -e "$work/out.dxf" ] && fail "$file: output written"
      if [ -n "$defect" ]; then
        grep -q "^vora: $corpus/$file: line $defect: " "$work/err" || fail "$file: $(cat "$work/err")"
      fi
      continue
    fi
    want=$(grep -o '[0-9]* model-space entities' <<<"$notes" | grep -o '^[0-9]*')
    got=$("$vora" -i "$corpus/$file" --list | wc -l)
    [ "$want" = "$got" ] || fail "$file: --list gives $got entities, ezdxf $want"
    # Every line: handle, DXF type, layer.
    "$vora" -i "$corpus/$file" --list | awk -F'\t' 'NF != 3 || $1 !~ /^[0-9A-F]+$/ { bad = 1 } END { exit bad }' \
      || fail "$file: --list lines"
  done <"$corpus/MANIFEST.tsv"
  ;;
tools)
  if [ -z "$shared" ] || [ ! -f "$shared/tools/dxfdiff.py" ]; then
    echo "SKIP: no shared tools"
    exit 77
  fi
  for file in $(good_files); do
    "$vora" -i "$corpus/$file" -o "$work/$file" || { fail "$file: save"; continue; }
    $python "$shared/tools/dxfdiff.py" --quiet "$corpus/$file" "$work/$file" >/dev/null || fail "$file: dxfdiff"
    if $python "$shared/tools/dxfcheck.py" --no-ezdxf --quiet "$corpus/$file"; then
      $python "$shared/tools/dxfcheck.py" --no-ezdxf --quiet "$work/$file" || fail "$file: dxfcheck"
    fi
  done
  ;;
ezdxf)
  if ! $python -c 'import ezdxf' 2>/dev/null; then
    echo "SKIP: ezdxf (Debian python3-ezdxf) is not installed"
    exit 77
  fi
  for file in $(good_files); do
    "$vora" -i "$corpus/$file" -o "$work/$file" || { fail "$file: save"; continue; }
    $python "$here/../dxf/ezdxf_compare.py" "$corpus/$file" "$work/$file" >"$work/log" 2>&1 || fail "$file: $(tail -3 "$work/log")"
  done
  ;;
esac
[ $failures -eq 0 ] && echo "ok" || echo "$failures failures"
exit $((failures > 0))
