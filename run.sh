#!/usr/bin/env bash
# Builds the viewer and opens it on the sample recordings, under Wine. Without a display it leaves a picture of the window.
set -euo pipefail
source "$(dirname "$0")/scripts/common.sh"
trap end_all EXIT

has_display=${DISPLAY:-}
packages=("${build_packages[@]}" "${wine_packages[@]}")
install_missing "${packages[@]}"
echo "Building"
quietly cmake --preset windows
quietly cmake --build build/windows --target quillon make-samples help_files
[ -n "$has_display" ] || start_display
prepare_wine
[ -e "build/samples/01 EEG.edf" ] || quietly wine build/windows/make-samples.exe build/samples

# The sound library below Wine writes lines of its own where there is no sound card.
if [ -n "$has_display" ]; then
    wine build/windows/quillon.exe build/samples 2> build/viewer.log
else
    wine build/windows/quillon.exe build/samples 2> build/viewer.log &
    # The caption names the recording once it is open.
    for _ in $(seq 200); do
        window=$(xdotool search --onlyvisible --name '^01 EEG.edf' 2> /dev/null | tail -n 1) || true
        [ -n "$window" ] && break
        sleep 0.1
    done
    [ -n "$window" ] || { echo "The window did not open."; exit 1; }
    sleep 1
    import -frame -window "$window" build/quillon.png
    echo "There is no display: a picture of the window is in build/quillon.png"
fi
