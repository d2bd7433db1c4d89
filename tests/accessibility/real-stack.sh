#!/usr/bin/env bash
# A keyboard and screen-reader user through the whole capture, on a real accessibility stack:
# an X server (Xvfb), a D-Bus session, the AT-SPI bus and registry, the demo host on the xcb
# platform with Qt's AT-SPI bridge on, a listener (pyatspi) recording what a screen reader hears,
# and keys sent with xdotool: Space and Tab only. On each screen the tree is asked which objects
# claim the focus: exactly one may. The demo host runs with the facade's defaults
# (tutorial on) against the reference upload server. Ends every process it started.
#
#   real-stack.sh BUILD_DIR OUT_DIR CLIP [widgets|qml] [GUIDANCE] [WINDOW_SIZE]
# The fourth argument picks the demo host: the Qt Widgets one (the default) or the QML one; both
# must be heard the same. GUIDANCE is an instruction the clip's user must hear (such as "Move
# closer"), in a host window of WINDOW_SIZE (390x844 by default).
# Exit 0 when every check holds, 77 (skipped) when a part of the stack is missing outside CI.
set -uo pipefail
build=$(cd "$1" && pwd)
out=$2
clip=$3
case ${4:-widgets} in
  widgets) app=vextil_demo_host; binary=examples/demo-host/vextil_demo_host; title="VextilToolkit demo host" ;;
  qml) app=vextil_qml_demo_host; binary=examples/qml-demo-host/vextil_qml_demo_host; title="VextilToolkit QML demo host" ;;
  *) echo "unknown host ${4}" >&2; exit 2 ;;
esac
guidance=${5:-}
size=${6:-390x844}
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
rm -rf "$out" && mkdir -p "$out"
log=$out/heard.tsv

for tool in Xvfb dbus-launch xdotool /usr/libexec/at-spi-bus-launcher; do
  if ! command -v "$tool" >/dev/null 2>&1; then
    echo "missing $tool (scripts/install-deps.sh installs it)" >&2
    [ "${CI:-}" = true ] && exit 1 || exit 77
  fi
done
if ! /usr/bin/python3 -c 'import pyatspi' 2>/dev/null; then
  echo "missing python3-pyatspi (scripts/install-deps.sh installs it)" >&2
  [ "${CI:-}" = true ] && exit 1 || exit 77
fi

pids=()
cleanup() {
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do kill "${pids[i]}" 2>/dev/null; done
  sleep 0.3
  for pid in "${pids[@]}"; do kill -9 "$pid" 2>/dev/null; done
  [ -n "${DBUS_SESSION_BUS_PID:-}" ] && kill "$DBUS_SESSION_BUS_PID" 2>/dev/null
  return 0
}
trap cleanup EXIT
fail() {
  echo "FAILED: $*" >&2
  echo "--- what the listener heard ---" >&2
  cat "$log" >&2
  echo "--- demo host ---" >&2
  cat "$out/demo.log" >&2
  exit 1
}

# An X display of our own.
for n in $(seq 90 130); do
  [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || { display=:$n; break; }
done
Xvfb "$display" -screen 0 1280x1024x24 -nolisten tcp >"$out/xvfb.log" 2>&1 &
pids+=($!)
export DISPLAY=$display
for _ in $(seq 50); do xdotool getdisplaygeometry >/dev/null 2>&1 && break; sleep 0.1; done

# A session bus, and the accessibility bus and registry on it.
eval "$(dbus-launch --sh-syntax)"
export DBUS_SESSION_BUS_ADDRESS
/usr/libexec/at-spi-bus-launcher --launch-immediately >"$out/atspi.log" 2>&1 &
pids+=($!)
sleep 1

/usr/bin/python3 "$here/listener.py" "$app" "$log" >"$out/listener.out" 2>&1 &
pids+=($!)
for _ in $(seq 100); do grep -q ready "$out/listener.out" && break; sleep 0.1; done
grep -q ready "$out/listener.out" || fail "the listener did not start: $(cat "$out/listener.out")"

key=a11y-key
source "$root/scripts/reference-server.sh"
start_reference_server "$build" "$out/server.log" "$key" --storage "$out/uploads"
pids+=("$server")

QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1 \
  "$build/$binary" --key "$key" --upload-host "$host" --upload-ca "$authority" \
  --camera-file "$clip" --size "$size" >"$out/demo.log" 2>&1 &
demo=$!
pids+=("$demo")

window=$(xdotool search --sync --name "^$title\$" 2>/dev/null | head -1)
[ -n "$window" ] || fail "no demo window"
xdotool windowfocus --sync "$window"

# Waits until the listener has heard, since the last key, a line matching a pattern.
mark=0
wait_for() {
  local pattern=$1 what=$2 seconds=${3:-20}
  for _ in $(seq $((seconds * 10))); do
    tail -n +$((mark + 1)) "$log" | grep -qP "$pattern" && return 0
    sleep 0.1
  done
  fail "never heard $what"
}
press() {
  mark=$(wc -l <"$log")
  xdotool key --window "$window" "$1"
  sleep 0.4
}
# Asks the tree, as a reader does on arrival, which objects claim the focus: exactly one may.
one_focus() {
  local claims
  claims=$(/usr/bin/python3 "$here/focused-now.py" "$app") || fail "$1: not one focused object but: $claims"
  echo "$1: focused $claims"
}
focused() { printf 'state-changed:focused\t[^\t]*\t%s\t' "$1"; }

wait_for "$(focused 'Take selfie')" 'the host button focused'
press space
wait_for "$(focused 'OK, I got it')" "the tutorial's button focused"
press Tab  # stays on the tutorial's only button
one_focus "the tips"
press space
wait_for "$(focused 'Looking for face')" 'the status focused when the tutorial closes'
one_focus "the camera screen"
[ -z "$guidance" ] || wait_for "accessible-name\tlabel\t$guidance" "\"$guidance\"" 20
wait_for 'accessible-name\tlabel\tSMILE!' '"SMILE!"' 40
wait_for "$(focused 'Yes, send')" 'the review' 20
one_focus "the review"
for _ in 1 2 3; do press Tab; done  # round the review's three buttons, back to "Yes, send"
press space
wait_for "$(focused 'Take selfie')" "the focus back on the host's button"
one_focus "the host"
press Tab
wait_for "$(focused 'Send')" "the host's Send button"
press space
for _ in $(seq 200); do ls "$out"/uploads/*/ >/dev/null 2>&1 && break; sleep 0.1; done
ls "$out"/uploads/*/ >/dev/null 2>&1 || fail "nothing was uploaded"

/usr/bin/python3 "$here/check.py" "$log" "$guidance" || fail "what was heard is not what a user needs (above)"
exit 0
