#!/usr/bin/env bash
# desktop.sh TOOLS CMD [ARG...]
#
# Starts a private desktop in the folder $VANTRY_SESSION and becomes CMD: a message bus, an X server with a window manager, a media
# server with one sink, one microphone and one camera, and an unlocked secret service. TOOLS is the folder of the test devices.
# It cleans nothing up: that is the work of sessionguard, below which it runs.
set -euo pipefail

tools=$1
shift
readonly dir=$VANTRY_SESSION
readonly start_deadline=15 # seconds, for everything together; it takes about one

# Nothing of the user's own desktop shows through: folders, display, bus, sockets.
use_private_environment() {
    unset WAYLAND_DISPLAY DISPLAY XAUTHORITY SESSION_MANAGER AT_SPI_BUS_ADDRESS GNOME_KEYRING_CONTROL SSH_AUTH_SOCK
    unset PIPEWIRE_REMOTE PIPEWIRE_RUNTIME_DIR PULSE_SERVER PULSE_RUNTIME_PATH QT_QPA_PLATFORM QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE
    export HOME=$dir/home XDG_RUNTIME_DIR=$dir/run
    export XDG_CONFIG_HOME=$HOME/.config XDG_CACHE_HOME=$HOME/.cache XDG_DATA_HOME=$HOME/.local/share XDG_STATE_HOME=$HOME/.local/state
    export XDG_SESSION_TYPE=x11 XDG_CURRENT_DESKTOP=openbox XDG_CONFIG_DIRS=/etc/xdg XDG_DATA_DIRS=/usr/local/share:/usr/share
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus LANG=C.UTF-8
    unset LC_ALL LANGUAGE
    mkdir -p "$dir/log" "$XDG_RUNTIME_DIR" "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME" "$XDG_DATA_HOME" "$XDG_STATE_HOME" "$HOME/Videos"
    chmod 700 "$XDG_RUNTIME_DIR"
}

# start NAME CMD...: a server of the desktop, detached from the terminal and from this shell. Its output goes to log/NAME.
start() {
    local name=$1
    shift
    setsid --fork "$@" >"$dir/log/$name" 2>&1
}

fail() {
    printf 'The private desktop did not start: %s\n' "$1" >&2
    tail -n 5 "$dir"/log/* >&2
    exit 125
}

# await WHAT CMD...: until CMD succeeds.
await() {
    local what=$1
    shift
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < start_deadline)) || fail "no $what."
        sleep 0.02
    done
}

start_bus() {
    start bus dbus-daemon --session --nofork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS" </dev/null
    await "message bus" test -S "$XDG_RUNTIME_DIR/bus"
}

# The server itself chooses a free display and tells its number through the pipe.
start_screen() {
    local number pipe=$dir/display
    mkfifo "$pipe"
    exec {display}<>"$pipe"
    start xvfb Xvfb -displayfd 3 -screen 0 1920x1080x24 -dpi 96 -nolisten tcp -noreset +extension Composite </dev/null 3>"$pipe" {display}<&-
    read -r -t "$start_deadline" -u "$display" number || fail "no X server."
    exec {display}<&-
    export DISPLAY=:$number
    start openbox openbox --sm-disable </dev/null
}

# The devices of this machine stay out, a small quantum is too much for busy test machines, and nothing asks for real-time rights.
configure_media() {
    mkdir -p "$XDG_CONFIG_HOME/pipewire/pipewire.conf.d" "$XDG_CONFIG_HOME"/wireplumber/{main,bluetooth}.lua.d
    cat >"$XDG_CONFIG_HOME/pipewire/pipewire.conf.d/test.conf" <<'CONF'
context.properties = { default.clock.min-quantum = 1024 default.clock.quantum = 1024 }
context.objects = [
    { factory = adapter args = {
        factory.name = support.null-audio-sink node.name = test-sink node.description = "Test speakers"
        media.class = Audio/Sink audio.position = "FL,FR" monitor.channel-volumes = true
    } }
]
CONF
    echo 'alsa_monitor.enabled = false; v4l2_monitor.enabled = false; libcamera_monitor.enabled = false' \
        >"$XDG_CONFIG_HOME/wireplumber/main.lua.d/80-no-hardware.lua"
    echo 'bluez_monitor.enabled = false; bluez_midi_monitor = { enabled = false }' \
        >"$XDG_CONFIG_HOME/wireplumber/bluetooth.lua.d/80-no-hardware.lua"
}

start_media() {
    configure_media
    start pipewire pipewire </dev/null
    await "media server" test -S "$XDG_RUNTIME_DIR/pipewire-0"
    start wireplumber wireplumber </dev/null
    start pipewire-pulse pipewire-pulse </dev/null
    start testcamera "$tools/testcamera" </dev/null
    start testmicrophone "$tools/testmicrophone" </dev/null
}

start_secrets() {
    start secrets gnome-keyring-daemon --foreground --unlock --components=secrets <<<'test'
}

has_name() { gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus -m org.freedesktop.DBus.GetNameOwner "$1"; }
has_window_manager() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
has_default() { wpctl inspect "$1" | grep -q "node.name = \"$2\""; }
has_camera() { pw-cli ls Node | grep -q 'node.name = "test-camera"'; }

await_everything() {
    await "window manager" has_window_manager
    await "secret service" has_name org.freedesktop.secrets
    await "sound server" test -S "$XDG_RUNTIME_DIR/pulse/native"
    await "camera" has_camera
    await "microphone" has_default @DEFAULT_AUDIO_SOURCE@ test-microphone
    await "speakers" has_default @DEFAULT_AUDIO_SINK@ test-sink
}

use_private_environment
start_bus
start_media
start_secrets
start_screen
await_everything
exec "$@"
