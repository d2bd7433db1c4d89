#!/usr/bin/env bash
# Installs the Debian 12 packages VextilToolkit needs to build, test and run its demo.
# Idempotent: only packages that are missing are installed. Runs as root, or through sudo.
set -euo pipefail

packages=(
  cmake g++ make pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-multimedia-dev qt6-svg-dev
  libqt6svg6 qt6-qpa-plugins
  libopencv-dev opencv-data
  libavformat-dev libavcodec-dev libavutil-dev libswscale-dev
  libgtest-dev libgmock-dev
  libssl-dev libcpp-httplib-dev openssl util-linux mount
  clang libclang-rt-14-dev
  doxygen dpkg-dev
  qt6-l10n-tools qt6-tools-dev
  libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-plugins-base gstreamer1.0-plugins-good
  xvfb dbus-x11 at-spi2-core python3-pyatspi gir1.2-atspi-2.0 xdotool
  qt6-declarative-dev qt6-declarative-dev-tools qml6-module-qtqml qml6-module-qtquick qml6-module-qtquick-window
  qml6-module-qttest qml6-module-qtmultimedia qml6-module-qtqml-workerscript
  fonts-dejavu-core
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#packages[@]} packages present"
  exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
  sudo=()
elif command -v sudo >/dev/null 2>&1; then
  sudo=(sudo)
else
  echo "install-deps: missing ${missing[*]}; run as root or install sudo" >&2
  exit 1
fi

echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
echo "install-deps: done"
