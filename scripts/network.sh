# Sourced by run: the server with its door open, and the gateway beside it, through which game clients join. A gateway that
# falls over is started anew; both end together. Usage: withnetwork PROGRAM [ARGUMENT...] (those of the server)

withnetwork() {
  local program=$1 told=(--directory server) words=("${@:2}") code=0
  set -- "${words[@]}"
  # What both have to know.
  while [ $# -gt 0 ]; do
    case "$1" in
      --backup* | --restore*) exec "$program" "${words[@]}" ;;
      --port | --gateway-port) told+=("${1/gateway-/door-}" "${2-}"); shift ;;
      --port=* | --gateway-port=*) told+=("${1/gateway-/door-}") ;;
      --offline) told+=("$1") ;;
      --language | --api-port | --host | --token) shift ;;
      -*) ;;
      *) told+=(--directory "$1") ;;
    esac
    shift || break
  done

  "$program" --gateway "${words[@]}" <&0 &
  local server=$!
  keepgateway "${told[@]}" &
  local gateway=$!
  trap 'kill -TERM "$server" 2>/dev/null' TERM HUP
  trap : INT # the server hears it, too
  while wait "$server" || code=$?; kill -0 "$server" 2>/dev/null; do code=0; done
  kill "$gateway" 2>/dev/null || true
  wait "$gateway" || true
  return "$code"
}

keepgateway() {
  local gateway=0 code=0
  trap 'kill "$gateway" 2>/dev/null; wait "$gateway"; exit' TERM
  trap : INT
  while :; do
    node gateway/main.js "$@" </dev/null &
    gateway=$!
    code=0
    wait "$gateway" 2>/dev/null || code=$?
    # By 2 it says that another start would be no better, by 0 that it was told to end.
    case "$code" in 0 | 2) return ;; esac
    echo "[gateway] It ended with status $code and is started anew." >&2
    sleep 1
  done
}
