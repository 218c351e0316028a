#!/usr/bin/env bash
# Installs everything the project needs to build, test and build its data, from
# Debian's packages. Run as root (or with sudo available).
set -euo pipefail

packages=(
  build-essential cmake pkg-config git
  qtbase5-dev libboost-dev libstemmer-dev
  libmecab-dev mecab-utils mecab-ipadic-utf8
  libgtest-dev libgmock-dev libbenchmark-dev
  clang clang-format clang-tidy libclang-rt-14-dev
  python3 wordnet-base wamerican locales
  pybind11-dev python3-dev python3-pytest python3-dask python3-distributed
  # Debian packaging: dpkg-buildpackage, lintian (scripts/ci-deb.sh).
  dpkg-dev debhelper dh-python lintian fakeroot
)
# Only rebuilding the lemma data (data/regenerate.sh) needs npm; keep a
# Node.js that is already there.
command -v npm >/dev/null 2>&1 || packages+=(nodejs npm)

if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null 2>&1; then
    exec sudo "$0" "$@"
  fi
  echo "setup.sh: must run as root to install packages (sudo is not available)" >&2
  exit 1
fi

export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${packages[@]}" >/dev/null
# A non-UTF-8 locale for the lemma loader's locale test.
localedef -i fr_FR -f ISO-8859-1 fr_FR.ISO-8859-1
echo "setup.sh: dependencies installed"
