#!/usr/bin/env bash
# Exports the sample recordings and reads them back with other programs, which it installs: WAVE with sox, EDF with
# EDFlib, which also refuses every header that is not exactly EDF. Every sample must be the same.
set -euo pipefail
source "$(dirname "$0")/common.sh"
install_missing sox libsox-fmt-base libedf-dev gcc
out=build/reference
rm -rf "$out"
mkdir -p "$out"
cat > "$out/edf_samples.c" <<'C'
#include <edflib.h>
#include <stdio.h>
#include <stdlib.h>
int main(int count, char** words) {
    static struct edf_hdr_struct header;
    if (count < 2 || edfopen_file_readonly(words[1], &header, EDFLIB_DO_NOT_READ_ANNOTATIONS) != 0) {
        fprintf(stderr, "EDFlib refuses it: %d\n", header.filetype);
        return 1;
    }
    for (int signal = 0; signal < header.edfsignals; ++signal) {
        const long long samples = header.signalparam[signal].smp_in_file;
        int* codes = malloc(sizeof(int) * (size_t)samples);
        if (edfread_digital_samples(header.handle, signal, (int)samples, codes) != samples) return 1;
        for (long long i = 0; i < samples; ++i) {
            const short code = (short)codes[i];
            fwrite(&code, 2, 1, stdout);
        }
        free(codes);
    }
    return 0;
}
C
gcc -O1 -o "$out/edf_samples" "$out/edf_samples.c" -ledf
cli=build/native/quillon-cli
compared=0
while read -r file; do
    "$cli" export "$file" "$out/a.wav" --force
    "$cli" export "$file" "$out/a.edf" --force
    sox -D "$out/a.wav" -t raw -e signed -b 16 -L "$out/wave.raw"
    "$out/edf_samples" "$out/a.edf" > "$out/edf.raw"
    # The codes as we read them from the source: channel after channel, as many samples as whole records held.
    channels=$("$cli" info "$file" | grep -o '"unit"' | wc -l)
    : > "$out/channels.raw"
    samples=$(($(stat -c %s "$out/edf.raw") / 2 / channels))
    for channel in $(seq "$channels"); do "$cli" codes "$file" 1 "$channel" 0 "$samples" >> "$out/channels.raw"; done
    cmp "$out/edf.raw" "$out/channels.raw"
    for channel in $(seq "$channels"); do
        sox -D "$out/a.wav" -t raw -e signed -b 16 -L "$out/one.raw" remix "$channel"
        "$cli" codes "$file" 1 "$channel" | cmp - "$out/one.raw"
    done
    # EDF+ from the 101st sample on: every sample, and behind those of a channel what fills its last record.
    "$cli" export "$file" "$out/plus.edf" --type=edf+ --first=101 --force
    "$out/edf_samples" "$out/plus.edf" > "$out/plus.raw"
    written=$(($(stat -c %s "$out/plus.raw") / channels))
    for channel in $(seq "$channels"); do
        "$cli" codes "$file" 1 "$channel" 100 > "$out/one.raw"
        cmp -i "$(((channel - 1) * written)):0" -n "$(stat -c %s "$out/one.raw")" "$out/plus.raw" "$out/one.raw"
    done
    compared=$((compared + $(stat -c %s "$out/plus.raw") / 2 + $(stat -c %s "$out/wave.raw") / 2 + $(stat -c %s "$out/edf.raw") / 2))
done < <(find build/samples -name '*.edf' -o -name '*.wav' -o -name '*.bin')
echo "$compared samples equal"
