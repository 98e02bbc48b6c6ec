#!/usr/bin/env bash
# Sourced by tests: a private CUPS scheduler in a folder of the build, never the machine's
# cupsd. Its configuration, state, cache, spool and logs stay in that folder, it listens only on
# its own domain socket (FOLDER/cups.sock; point CUPS_SERVER there to use it), and it holds one
# raw queue "KX20" (the default) whose socket:// device is a listener on a free 127.0.0.1 port
# that appends what arrives to FOLDER/received. Both processes are ended by their PIDs.
#   kx20_private_cupsd_start FOLDER    kx20_private_cupsd_stop FOLDER

kx20_private_cupsd_stop() {
  local pid
  for pid in "$1/cupsd.pid" "$1/listener.pid"; do
    [ -f "$pid" ] && kill "$(cat "$pid")" 2>/dev/null || true
    rm -f "$pid"
  done
}

kx20_private_cupsd_start() {
  local dir="$1" i
  mkdir -p "$dir"/{conf,state,cache,log,spool/tmp,bin/backend}
  : >"$dir/received"
  # The listener: binds port 0, writes the port it got, records every connection's bytes.
  /usr/bin/python3 -c '
import socket, sys
s = socket.socket(); s.bind(("127.0.0.1", 0)); s.listen(4)
open(sys.argv[1] + "/port", "w").write(str(s.getsockname()[1]))
while True:
    c, _ = s.accept(); c.settimeout(30); data = b""
    try:
        while (chunk := c.recv(65536)): data += chunk
    except OSError: pass
    open(sys.argv[1] + "/received", "ab").write(data); c.close()
' "$dir" </dev/null >"$dir/log/listener" 2>&1 &
  echo $! >"$dir/listener.pid"
  for i in $(seq 50); do [ -s "$dir/port" ] && break; sleep 0.1; done
  [ -s "$dir/port" ] || { echo "private cupsd: the listener did not start" >&2; return 1; }
  # The scheduler's own programs, but a socket backend of ours: Debian's cups-daemon has none.
  ln -sfn /usr/lib/cups/daemon "$dir/bin/daemon"
  ln -sfn /usr/lib/cups/notifier "$dir/bin/notifier"
  cat >"$dir/bin/backend/socket" <<'BACKEND'
#!/bin/bash
[ $# -eq 0 ] && { echo 'network socket "Unknown" "AppSocket"'; exit 0; }
target=${DEVICE_URI#socket://}; target=${target%%/*}
exec 3<>"/dev/tcp/${target%%:*}/${target##*:}" || exit 1
if [ -n "${6:-}" ]; then cat "$6" >&3; else cat >&3; fi
BACKEND
  chmod 755 "$dir/bin/backend/socket"
  cat >"$dir/conf/cups-files.conf" <<CONF
ServerRoot $dir/conf
StateDir $dir/state
CacheDir $dir/cache
RequestRoot $dir/spool
TempDir $dir/spool/tmp
ServerBin $dir/bin
DataDir /usr/share/cups
ErrorLog $dir/log/error_log
AccessLog $dir/log/access_log
PageLog $dir/log/page_log
User lp
Group lp
SystemGroup root
CONF
  cat >"$dir/conf/cupsd.conf" <<CONF
Listen $dir/cups.sock
Browsing No
WebInterface No
DefaultAuthType None
<Location />
  Order allow,deny
  Allow all
</Location>
CONF
  cupsd -f -c "$dir/conf/cupsd.conf" -s "$dir/conf/cups-files.conf" </dev/null >"$dir/log/cupsd" 2>&1 &
  echo $! >"$dir/cupsd.pid"
  for i in $(seq 100); do [ -S "$dir/cups.sock" ] && break; sleep 0.1; done
  CUPS_SERVER="$dir/cups.sock" lpadmin -p KX20 -E -v "socket://127.0.0.1:$(cat "$dir/port")" -m raw 2>/dev/null &&
    CUPS_SERVER="$dir/cups.sock" lpadmin -d KX20 ||
    { echo "private cupsd: no KX20 queue (see $dir/log)" >&2; return 1; }
}
