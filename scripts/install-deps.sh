#!/usr/bin/env bash
# Installs the Debian 12 packages the build, the tests and the demo need, when missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git ccache
  libcurl4-openssl-dev libssl-dev libcpp-httplib-dev nlohmann-json3-dev libsqlite3-dev sqlite3
  libcli11-dev libsecret-1-dev zlib1g-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  ffmpeg sox libsox-fmt-mp3 curl procps
  dbus-daemon dbus-bin gnome-keyring
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if ((${#missing[@]} == 0)); then
  exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [[ $(id -u) -ne 0 ]]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -q
"${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
