#!/usr/bin/env bash
# demo.sh VANTRY FILE
#
# Records ten seconds of a private desktop on which something happens, exports them to FILE, whose path is printed.
set -euo pipefail

# The README types itself, over and over: what runs inside the terminal.
type_text() {
    local letter
    while :; do
        while IFS= read -r -n1 letter; do
            printf '%s' "${letter:-$'\n'}"
            sleep 0.03
        done < <(fold -s -w 96 "${BASH_SOURCE[0]%/*}/../README.md")
    done
}

open_terminal() {
    xterm -title typing -fa 'DejaVu Sans Mono' -fs 16 -geometry 100x30+200+120 -e "${BASH_SOURCE[0]}" --type &
    timeout 10 bash -c 'until xwininfo -name typing; do sleep 0.05; done' >/dev/null 2>&1
}

# The presenter is the test camera, in the bubble.
choose_layout() {
    mkdir -p "$XDG_CONFIG_HOME/vantry"
    echo 'layout=bubble' >"$XDG_CONFIG_HOME/vantry/settings.ini"
}

if [[ $1 == --type ]]; then
    type_text
fi
open_terminal
choose_layout
"$1" --autorecord 10 --export "$2"
