# Sourced by run and test: installs what is missing from the distribution's packages, and says so.
# Usage: need package...

need() {
  local missing=()
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing: ${missing[*]}"
  local root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Please run as root, or install sudo: ${missing[*]} are missing." >&2; exit 1; }
    root=(sudo)
  fi
  "${root[@]}" apt-get update -qq
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

builds=(g++ cmake ninja-build ccache mold libfmt-dev nlohmann-json3-dev libsimdjson-dev libcpp-httplib-dev libssl-dev
        libsqlite3-dev libsqlitecpp-dev libarchive-dev libedit-dev libcli11-dev prometheus-cpp-dev ca-certificates)
