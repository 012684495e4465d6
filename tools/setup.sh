# Sourced by the other scripts: functions that install packages and build presets.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
version=$(sed -n 's/^project(radiashafts VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")

build_packages=(g++ cmake ninja-build pkg-config libopenimageio-dev libopenexr-dev
  libjpeg62-turbo-dev libpng-dev libwebp-dev libheif-dev liblcms2-dev libcli11-dev
  nlohmann-json3-dev libgtest-dev libbenchmark-dev python3)
# What the front-ends for GEGL and GIMP are built with; without it they are left out.
front_end_packages=(libgegl-dev libgimp2.0-dev)
windows_packages=(g++-mingw-w64-x86-64-posix)
# What tests/picture_formats makes and judges files with.
format_packages=(colord-data imagemagick libgs-common libheif-examples libimage-exiftool-perl
  libjpeg-turbo-progs openexr openimageio-tools python3 webp)
# What tests the front-ends for other programs.
host_packages=(ffmpeg gegl gimp melt)
# What tests/farm renders with.
farm_packages=(munge parallel slurm-client slurmctld slurmd)
test_packages=(bash-completion clang-format clang-tidy cppcheck fonts-wine googletest icoutils
  openbox wine64 xauth xdotool xvfb zsh)

say() { printf '== %s\n' "$*" >&2; }

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs the named Debian packages that are missing.
need_packages() {
  local missing=() package installed
  installed=$(dpkg-query -W -f='${Status}:${Package}\n' "$@" 2>/dev/null || true)
  for package in "$@"; do
    grep -qx "install ok installed:$package" <<<"$installed" || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  say "installing ${missing[*]}"
  if [ -z "${packages_updated:-}" ]; then
    as_root apt-get update -qq >&2
    packages_updated=1
  fi
  without_services as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
    --no-install-recommends "${missing[@]}" >"$root/build/apt.log" 2>&1 ||
    { cat "$root/build/apt.log" >&2; return 1; }
}

# Runs an installation that starts no service, neither now nor with the system.
without_services() {
  local policy=/usr/sbin/policy-rc.d status=0 own= service
  local before=()
  for service in munge slurmctld slurmd; do
    [ ! -e "/lib/systemd/system/$service.service" ] || before+=("$service")
  done
  if [ ! -e "$policy" ]; then
    own=1
    printf '#!/bin/sh\nexit 101\n' | as_root install -m 755 /dev/stdin "$policy"
  fi
  "$@" || status=$?
  [ -z "$own" ] || as_root rm "$policy"
  for service in munge slurmctld slurmd; do
    [[ " ${before[*]} " == *" $service "* || ! -e /lib/systemd/system/$service.service ]] ||
      as_root systemctl disable "$service"
  done
  return "$status"
}

# Configures a CMake preset if needed and builds the named targets, or all: build_preset PRESET
# [TARGET...]
build_preset() {
  local preset=$1 log
  shift
  log=$root/build/$preset.log
  (
    cd "$root"
    cmake --preset "$preset"  # again, too: what was left out may be there now
    cmake --build --preset "$preset" ${@:+--target "$@"}
  ) >"$log" 2>&1 || { cat "$log" >&2; return 1; }
}

mkdir -p "$root/build"
