#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need; with --checks, also those of
# scripts/check.sh. Installs only what is missing; does nothing when everything is present.
set -euo pipefail

if [[ $# -gt 1 || ( $# -eq 1 && "$1" != "--checks" ) ]]; then
  echo "usage: bootstrap.sh [--checks]" >&2
  exit 2
fi

packages=(
  g++
  cmake
  make
  libzeroc-ice-dev
  libgtest-dev
  libgmock-dev
  libbenchmark-dev
  clang-format
  tzdata
  libsimpleini-dev
  libcli11-dev
  nlohmann-json3-dev
  libfast-float-dev
  libsqlite3-dev
  chromium
  libopenmpi-dev
  openmpi-bin
)
# The HTML page's chart library comes from npm: Node.js and npm from Debian unless the machine
# already has an npm (a Node.js distribution that bundles npm conflicts with Debian's npm).
if ! command -v npm >/dev/null 2>&1; then
  packages+=(nodejs npm)
fi
if [[ "${1:-}" == "--checks" ]]; then
  # clang-tidy; clang with the libFuzzer and sanitizer runtimes for the fuzz harnesses.
  packages+=(clang-tidy clang libclang-rt-14-dev)
fi

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  if [[ "$status" != "install ok installed" ]]; then
    missing+=("$package")
  fi
done

if [[ ${#missing[@]} -eq 0 ]]; then
  exit 0
fi

if [[ $(id -u) -ne 0 ]]; then
  echo "bootstrap: missing packages (${missing[*]}); run this script as root to install them" >&2
  exit 1
fi

echo "bootstrap: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
if ! apt-get update -qq; then
  echo "bootstrap: apt-get update failed; check the machine's package sources" >&2
  exit 1
fi
if ! apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null; then
  echo "bootstrap: apt-get install failed for: ${missing[*]}" >&2
  exit 1
fi
