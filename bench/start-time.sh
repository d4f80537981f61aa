#!/usr/bin/env bash
# Start to first painted waveform, against an empty window under the same warm Wine: bench/start-time.sh [PATH [ROUNDS]]
set -euo pipefail
source "$(dirname "$0")/../scripts/common.sh"
trap end_all EXIT
quietly cmake --preset windows
quietly cmake --build build/windows --target quillon make-samples start-time
start_display
prepare_wine
wineserver -p
[ -e "build/samples/01 EEG.edf" ] || quietly wine build/windows/make-samples.exe build/samples
wine build/windows/start-time.exe "$(winepath -w build/windows/quillon.exe)" "$(winepath -w "${1:-build/samples}")" "${2:-11}"
