#!/usr/bin/env bash
# make run: builds the scope UI and the device simulator, prepares a temporary device tree,
# starts both over private message queues and stops both when either ends (window closed, Ctrl-C,
# or the simulator's quit keys). The simulator runs in this terminal: its keys are the scope's
# buttons (it prints the key map). The UI opens a window when there is a display; without one it
# runs headless and rewrites a screenshot every second.
#
# Environment:
#   SCOPE_LANGUAGE=German   default language written to language.json (default English; the
#                           first start applies it)
#   SCOPE_BACKDROP=<png>    picture under the transparent observation screen (default: the
#                           build's synthetic thermal scene)
#   SCOPE_RUN_TMPFS=0       keep the media folder on the host disk (see below)
#   SCOPE_MSG_KEYS=<s>,<r>  queue keys (default: a private pair for this run)
#   SCOPE_DEVSIM_ARGS="..." more options for the simulator, e.g. "--battery 700 --card full"
#   SCOPE_OPEN_PAGE=<window> a page opened over the observation screen at start (the pages no
#                           menu row leads to: "Zavo_compass_menu", "Zavo_wind", ...)
#   TK_HEADLESS=1           no window even with a display
#
# The simulator asks this script (through a control file) to restart the UI when the scope
# restarts (after a format, a factory reset, a firmware upgrade) and ends the run when the scope
# shuts down.
#
# The card: the UI reports the media folder's file system as the SD card, and a host disk of
# 64 GiB or more reads as a card error. The media folder therefore goes on a 1 GiB tmpfs when
# that can be mounted: directly as root, otherwise inside a private user and mount namespace
# (unshare) that holds both programs. Where neither works the UI prints its card error line and
# runs on.
set -euo pipefail
cd "$(dirname "$0")/.."
top=$(pwd)
build=$top/build/dev

if [ "${SCOPE_RUN_STAGE:-}" != "namespace" ]; then
  scripts/deps.sh || { echo "make run: missing Debian packages not installed; nothing started" >&2; exit 1; }
  if ! cmake --preset dev >/dev/null ||
    ! cmake --build --preset dev --target inf_menu devsim sample_media backdrop; then
    echo "make run: the build failed; nothing started" >&2
    exit 1
  fi

  # Not root: re-run this script inside a user and mount namespace, where it may mount the tmpfs.
  if [ "$(id -u)" -ne 0 ] && [ "${SCOPE_RUN_TMPFS:-1}" = 1 ] && command -v unshare >/dev/null; then
    probe=$(mktemp -d)
    if unshare --user --map-root-user --mount \
      sh -c 'mount -t tmpfs -o size=1m scope-probe "$1"' sh "$probe" 2>/dev/null; then
      rmdir "$probe"
      exec env SCOPE_RUN_STAGE=namespace \
        unshare --user --map-root-user --mount "$top/scripts/run.sh" "$@"
    fi
    rmdir "$probe"
  fi
fi

# From here on every exit, Ctrl-C included, stops both programs and removes the queues and the
# tree; a second Ctrl-C cannot cut the clean-up short.
tree=""
control=""
ui_pid=""
sim_pid=""
cleanup() {
  trap '' INT TERM
  trap - EXIT
  for pid in $ui_pid $sim_pid; do kill "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
  keys=${SCOPE_MSG_KEYS:-}
  for key in ${keys//,/ }; do ipcrm -Q "$key" 2>/dev/null || true; done
  if [ -n "$tree" ]; then
    umount "$tree/usrdata/media" 2>/dev/null || true
    rm -rf "$tree"
  fi
  [ -z "$control" ] || rm -f "$control"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

if [ -z "${SCOPE_MSG_KEYS:-}" ]; then
  # A private pair of queue keys for this run, removed at the end; a pair left behind by a run
  # that was killed outright would hand its old frames to this one, so it goes first.
  send_key=$((0x53430000 + ($$ & 0xFFFF) * 2))
  SCOPE_MSG_KEYS="$send_key,$((send_key + 1))"
  ipcrm -Q "$send_key" 2>/dev/null || true
  ipcrm -Q "$((send_key + 1))" 2>/dev/null || true
fi
tree=$(mktemp -d "${TMPDIR:-/tmp}/scope-ui.XXXXXX")
export SCOPE_MSG_KEYS SCOPE_UI_ROOT=$tree

tree_args=()
if [ "${SCOPE_RUN_TMPFS:-1}" = 1 ]; then
  if [ "$(id -u)" -eq 0 ]; then
    tree_args+=(--tmpfs)
  else
    echo "make run: no user namespace to mount a small card in; the media folder stays on the" \
      "host disk, and a disk of 64 GiB or more shows as a card error"
  fi
fi
tree_args+=(--language "${SCOPE_LANGUAGE:-English}")
SAMPLE_MEDIA=$build/tools/sample_media/sample_media scripts/device-tree.sh "${tree_args[@]}" "$tree"

backdrop=${SCOPE_BACKDROP:-$build/backdrop/thermal_backdrop.png}
if [ -f "$backdrop" ]; then
  export TK_BACKDROP=$backdrop
else
  echo "no backdrop picture at $backdrop: the observation screen shows over black"
fi

if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || [ -n "${TK_HEADLESS:-}" ]; then
  # Beside the log, not in the tree, so the last screen is still there after the run.
  export TK_HEADLESS=1 TK_SCREENSHOT=$build/screen.png
  export TK_SCREENSHOT_EVERY_MS=${TK_SCREENSHOT_EVERY_MS:-1000}
  echo "no display: the scope UI runs headless; its screen is rewritten every" \
    "${TK_SCREENSHOT_EVERY_MS} ms to $TK_SCREENSHOT"
fi

log=$build/inf_menu.log
echo "device tree: $tree   queues: $SCOPE_MSG_KEYS"
echo "scope UI output: $log (tail -f it in another terminal)"

# The simulator reads this terminal; a background job would otherwise get /dev/null. It writes
# "reboot" or "shutdown" to the control file when the scope restarts or powers off.
control=$(mktemp "${TMPDIR:-/tmp}/scope-ui-control.XXXXXX")
exec 3<&0
# shellcheck disable=SC2086 # SCOPE_DEVSIM_ARGS is a list of options
"$build/tools/devsim/devsim" --remove-queues-on-exit --ui-control "$control" \
  ${SCOPE_DEVSIM_ARGS:-} <&3 &
sim_pid=$!
# inf_menu writes its output line by line, so the log follows the run.
: >"$log"
start_ui() {
  "$build/src/inf_menu" >>"$log" 2>&1 </dev/null &
  ui_pid=$!
}
start_ui

# Whichever ends first ends the run; a restart of the scope restarts the UI on the same tree.
while kill -0 "$ui_pid" 2>/dev/null && kill -0 "$sim_pid" 2>/dev/null; do
  if grep -q '^reboot$' "$control" 2>/dev/null; then
    : >"$control"
    kill "$ui_pid" 2>/dev/null || true
    wait "$ui_pid" 2>/dev/null || true
    echo "----- the scope restarts -----" >>"$log"
    start_ui
    echo "scope UI restarted (the scope restarts)"
  fi
  sleep 0.2
done
if ! kill -0 "$ui_pid" 2>/dev/null; then
  status=0
  wait "$ui_pid" || status=$?
  ui_pid=""
  echo "scope UI ended (exit status $status); stopping the device simulator"
  if [ "$status" -ne 0 ]; then
    echo "last lines of $log:"
    tail -n 15 "$log"
    exit "$status"
  fi
elif grep -q '^shutdown$' "$control" 2>/dev/null; then
  echo "the scope shut down; stopping the scope UI"
else
  echo "device simulator ended; stopping the scope UI"
fi
