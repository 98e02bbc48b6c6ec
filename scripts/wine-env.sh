#!/usr/bin/env bash
# Sourced by every script that starts Wine: the environment the project's Wine processes run in,
# and the check that a prefix holds no printer from outside the project.

# kx20_wine_env PREFIX: exports the environment for Wine in PREFIX. Wine copies every queue the
# host's CUPS client reaches into each prefix it starts (port "CUPS:<name>", Wine's PostScript
# driver), so a queue of the host named KX20 would take the place of the project's printer and
# receive its jobs. A CUPS server socket that does not exist shows Wine no queue at all.
kx20_wine_env() {
  export WINEPREFIX="$1" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
  export CUPS_SERVER="$1.no-cups-server/cups.sock"
  unset PRINTER LPDEST
}

# kx20_prefix_printers PREFIX: the printers in the prefix's saved registry, one a line:
# NAME<TAB>DRIVER<TAB>PORT.
kx20_prefix_printers() {
  local reg="$1/system.reg"
  [ -f "$reg" ] || return 0
  awk -v key='[system\\\\currentcontrolset\\\\control\\\\print\\\\printers\\\\' '
    function flush() { if (name != "") print name "\t" driver "\t" port; name = "" }
    /^\[/ {
      flush()
      line = tolower($0)
      if (index(line, key) == 1) {
        rest = substr($0, length(key) + 1)
        rest = substr(rest, 1, index(rest, "]") - 1)
        if (index(rest, "\\") == 0) { name = rest; driver = ""; port = "" }
      }
      next
    }
    name != "" && /^"Port"=/ { port = substr($0, 9, length($0) - 9) }
    name != "" && /^"Printer Driver"=/ { driver = substr($0, 19, length($0) - 19) }
    END { flush() }
  ' "$reg"
}

# kx20_check_prefix_printers PREFIX: fails, with one line naming the printer, its driver and its
# port, when a printer of the prefix writes anywhere but a file inside the prefix.
kx20_check_prefix_printers() {
  local prefix="$1" name driver port status=0
  while IFS=$'\t' read -r name driver port; do
    case "$port" in
      "$prefix"/*) ;;
      *) echo "wine prefix $prefix holds printer \"$name\" (driver \"$driver\", port \"$port\") that the project did not install" >&2
         status=1 ;;
    esac
  done < <(kx20_prefix_printers "$prefix")
  return $status
}
