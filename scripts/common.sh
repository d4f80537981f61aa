# Sourced by the other scripts: packages, the Wine prefix under build/, and a display.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
mkdir -p build

# How to become root for what needs it.
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

# Installs the Debian packages among the arguments that are missing, quietly.
install_missing() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing ${missing[*]}"
    if ! { ${as_root[@]+"${as_root[@]}"} apt-get update -qq &&
           ${as_root[@]+"${as_root[@]}"} env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"; } \
         > build/install.log 2>&1; then
        tail -n 20 build/install.log
        exit 1
    fi
}

build_packages=(cmake ninja-build g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 fp-utils-3.2.2)
test_packages=(g++ googletest nlohmann-json3-dev libbenchmark-dev)
wine_packages=(wine wine64 fonts-wine xvfb openbox xdotool imagemagick)

# Runs a command quietly; shows its output when it fails.
quietly() {
    local log=build/step.log
    "$@" > "$log" 2>&1 || { tail -n 60 "$log"; echo "Failed: $*"; return 1; }
}

# A virtual display of its own with a window manager: without one, hiding a window takes two seconds.
start_display() {
    # A number left by an earlier run must not be taken for that of this one.
    rm -f build/display
    Xvfb -displayfd 3 -screen 0 "${1:-1280x900x24}" -nolisten tcp 3> build/display > /dev/null 2>&1 &
    xvfb_pid=$!
    for _ in $(seq 600); do [ -s build/display ] && break; sleep 0.05; done
    [ -s build/display ] || { echo "The virtual display did not start."; return 1; }
    export DISPLAY=":$(cat build/display)"
    openbox > /dev/null 2>&1 &
    openbox_pid=$!
}

# A Wine prefix of this checkout, made on first use: build/wine, or the folder below build that is named.
prepare_wine() {
    export WINEPREFIX="$root/build/${1:-wine}" WINEARCH=win64 WINEDEBUG=-all
    export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
    # The recycle bin lies in the home folder: tests must not fill the user's.
    export HOME="$root/build/home"
    # Wine makes no recycle bin where its parent folder is missing, and looks for it once in the life of a process.
    mkdir -p "$HOME/.local/share"
    # File names are mapped by the locale: without a UTF-8 one Cyrillic names are not found.
    export LC_ALL=${QUILLON_LOCALE:-C.UTF-8}
    if [ ! -e "$WINEPREFIX/ready" ]; then
        echo "Making the Wine prefix"
        rm -rf "$WINEPREFIX"
        wineboot -i > /dev/null 2>&1
        cp /usr/share/wine/fonts/* "$WINEPREFIX/drive_c/windows/Fonts/"
        # A crash must end the program, not open a window.
        wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f > /dev/null
        wineserver -k -w || true
        touch "$WINEPREFIX/ready"
    fi
}

# Sound of test programs run with the words of $captured_sound before them goes into a file instead of a loudspeaker;
# those run with $no_sound have no device. Both keep to themselves: no sound server of the user takes part.
prepare_sound() {
    local file="$root/build/sound.raw"
    printf '%s\n' '</usr/share/alsa/alsa.conf>' \
        "pcm.!default { type file slave.pcm { type null } file \"$file\" format raw }" > build/sound.conf
    : > build/no-sound.conf
    local own=(env PULSE_SERVER=unix:/nonexistent)
    captured_sound=("${own[@]}" ALSA_CONFIG_PATH="$root/build/sound.conf" QUILLON_SOUND_FILE="$file")
    no_sound=("${own[@]}" ALSA_CONFIG_PATH="$root/build/no-sound.conf")
}

# Ends what this script started.
end_all() {
    # None of them may end the script before the others: what has ended already is no fault.
    [ -z "${WINEPREFIX:-}" ] || wineserver -k 2> /dev/null || true
    [ -z "${openbox_pid:-}" ] || kill "$openbox_pid" 2> /dev/null || true
    [ -z "${xvfb_pid:-}" ] || kill "$xvfb_pid" 2> /dev/null || true
    wait 2> /dev/null
    return 0
}
