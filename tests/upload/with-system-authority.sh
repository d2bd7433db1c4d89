#!/usr/bin/env bash
# Runs a test program with a system trust store of its own: a fresh test authority is the only
# certificate in /etc/ssl/certs, bind-mounted in a private mount namespace, so that the process
# (and Qt's OpenSSL backend in it) finds it exactly where it finds the system's authorities,
# while the machine's own store stays untouched. The authority's certificate and key are in the
# folder named by VEXTIL_SYSTEM_AUTHORITY.
#   with-system-authority.sh PROGRAM [ARGS...]
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/certs"
openssl ecparam -name prime256v1 -genkey -noout -out "$work/authority.key" 2>/dev/null
openssl req -x509 -new -key "$work/authority.key" -out "$work/authority.pem" -days 2 \
  -subj "/O=VextilToolkit tests/CN=Vextil Test System Root" \
  -addext "basicConstraints=critical,CA:TRUE" -addext "keyUsage=critical,keyCertSign,cRLSign" 2>/dev/null
cp "$work/authority.pem" "$work/certs/vextil-test-root.pem"
cp "$work/authority.pem" "$work/certs/ca-certificates.crt"
ln -s vextil-test-root.pem "$work/certs/$(openssl x509 -hash -noout -in "$work/authority.pem").0"

# Root may make a mount namespace directly; anyone else through a user namespace, where allowed.
namespace=(unshare --mount)
if ! "${namespace[@]}" true 2>/dev/null; then
  namespace=(unshare --user --map-root-user --mount)
  if ! "${namespace[@]}" true 2>/dev/null; then
    echo "cannot make a private mount namespace here (unshare refused)" >&2
    [ "${CI:-}" = "true" ] && exit 1
    exit 77
  fi
fi
export VEXTIL_SYSTEM_AUTHORITY=$work
exec "${namespace[@]}" -- sh -c 'mount --bind "$VEXTIL_SYSTEM_AUTHORITY/certs" /etc/ssl/certs && exec "$@"' sh "$@"
