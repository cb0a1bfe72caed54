#!/usr/bin/env bash
# Installs, by Debian package name, whatever the build and the tests need and
# the machine does not have yet. Safe to run again: it does nothing when all
# packages are present.
set -euo pipefail

packages=(
  g++ clang libclang-rt-14-dev cmake ninja-build pkg-config make
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  libpolyclipping-dev
  python3 python3-ezdxf
  binutils
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "setup: installing ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
