# Sourced by the scripts: installs the Debian packages named that are missing, with sudo
# when not run as root. Usage: installa_mancanti package...
installa_mancanti() {
  local mancanti=() p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || mancanti+=("$p")
  done
  [ ${#mancanti[@]} -gt 0 ] || return 0
  echo "Installing: ${mancanti[*]}"
  local sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${mancanti[@]}" >/dev/null
}
