# Sourced by the scripts that need the reference upload server on loopback.
#   start_reference_server BUILD_DIR LOG KEY [server arguments...]
# starts it on a free port, waits until it listens, and sets server (its pid), host
# (127.0.0.1:PORT) and authority (the CA file it made); on failure prints its log and exits.
start_reference_server() {
  local build=$1 log=$2 key=$3
  shift 3
  "$build/tools/upload-server/vextil_upload_server" --port 0 --key "$key" "$@" >"$log" 2>&1 &
  server=$!
  for _ in $(seq 100); do
    grep -q "listening on" "$log" && break
    sleep 0.1
  done
  host=$(grep -o '127.0.0.1:[0-9]*' "$log" | head -1)
  if [ -z "$host" ]; then
    echo "the reference upload server did not start:" >&2
    cat "$log" >&2
    exit 1
  fi
  authority=$(sed -n 's/^certificate authority: //p' "$log")
}
