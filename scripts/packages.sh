# Debian packages that the build and the tests need. Source it, then call
# `install_packages SET...`: it installs what is missing with apt, or lists it where there is no apt.

packages_build="g++ cmake ninja-build pkg-config libgl-dev libegl-dev libglu1-mesa-dev libepoxy-dev
  libpugixml-dev libpng-dev libjpeg62-turbo-dev libcli11-dev zlib1g-dev libglfw3-dev libimgui-dev
  libgle3-dev libfreetype-dev libassimp-dev libnetcdf-dev fonts-dejavu-core libegl1 libegl-mesa0 libgl1-mesa-dri"
packages_test="clang libclang-rt-dev llvm libgtest-dev libgmock-dev libglm-dev xvfb"

missing_packages() {
  local package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || printf '%s ' "$package"
  done
}

install_packages() {
  local wanted="" set missing sudo=""
  for set in "$@"; do
    set="packages_$set"
    wanted+=" ${!set}"
  done
  if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    echo "No apt here. These Debian packages, or their like, must be installed:" $wanted >&2
    return 0
  fi
  missing=$(missing_packages $wanted)
  [ -n "$missing" ] || return 0
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || { echo "Not root and no sudo; please install: $missing" >&2; return 1; }
    sudo=sudo
  fi
  echo "Installing: $missing"
  $sudo env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
}
