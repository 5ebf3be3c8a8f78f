#!/usr/bin/env bash
# Installs the Debian packages Vintar builds against, only those still missing.
# Idempotent: a second run installs nothing.
set -euo pipefail
packages=(
  cmake g++ make pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  libcli11-dev nlohmann-json3-dev
  libswe-dev swe-basic-data
  libhowardhinnant-date-dev tzdata
  clang libclang-rt-14-dev
  qt6-base-dev qt6-svg-dev libgl-dev fonts-dejavu-core
  libreoffice-writer-nogui poppler-utils
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  if [ "$(id -u)" -ne 0 ]; then SUDO=sudo; else SUDO=; fi
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
fi
