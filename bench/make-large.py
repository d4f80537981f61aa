#!/usr/bin/env python3
"""Makes sparse recordings of about 12 GB in a folder: zeros that take no room on the disk, so that opening, zooming and
exporting can be tried on every kind of large file.

    bench/make-large.py FOLDER
"""
import struct
import sys
from pathlib import Path

SIZE = 12_000_000_000


def sparse(path, header, size, parts=()):
    with path.open("wb") as file:
        file.write(header)
        for offset, data in parts:
            file.seek(offset)
            file.write(data)
        file.truncate(size)
    print(f"{path.name}: {size} bytes")


def rf64(path, tag, bits, channels, rate):
    frame = channels * bits // 8
    frames = SIZE // frame
    data = frames * frame
    ds64 = struct.pack("<4sIQQQI", b"ds64", 28, data + 72, data, frames, 0)
    fmt = struct.pack("<4sIHHIIHH", b"fmt ", 16, tag, channels, rate, rate * frame, frame, bits)
    header = b"RF64\xff\xff\xff\xffWAVE" + ds64 + fmt + b"data\xff\xff\xff\xff"
    sparse(path, header, len(header) + data)


def bin_file(path, channels, rate):
    header = bytearray(128)
    header[:4] = b"ABIN"
    struct.pack_into("<HHHHHHHH", header, 8, 2024, 1, 0, 15, 12, 0, 0, 0)
    struct.pack_into("<f", header, 24, rate)
    struct.pack_into("<H", header, 32, channels)
    for channel in range(channels):
        record = bytearray(80)
        record[:4] = b"ADCh"
        struct.pack_into("<I", record, 4, channel)
        record[8:8 + 4] = b"Ch%02d" % (channel + 1)
        record[40:42] = b"uV"
        struct.pack_into("<ff", record, 64, 0.5, 0.0)
        header += record
    header += b"data" + struct.pack("<I", 0)
    frames = SIZE // (2 * channels)
    sparse(path, bytes(header), len(header) + frames * 2 * channels)


def edf(path, kind, rates, records, seconds, annotation=0, wide=False, onsets=None):
    """`rates`: samples of each signal in a record; `annotation`: samples of the annotation signal, 0 for none."""
    width = 3 if wide else 2
    name = "BDF" if wide else "EDF"
    signals = [("Ch%d" % (at + 1), samples) for at, samples in enumerate(rates)]
    if annotation:
        signals.append((name + " Annotations", annotation))

    def fields(text, size):
        return "".join(str(text(signal)).ljust(size) for signal in signals)

    limit = 8388607 if wide else 32767
    reserved = "" if kind == "" else f"{name}+{kind}"
    header = "X X X X".ljust(80) + "Startdate 01-FEB-2024 X X X".ljust(80) + "01.02.2412.00.00"
    header += str(256 * (len(signals) + 1)).ljust(8) + reserved.ljust(44) + str(records).ljust(8)
    header += str(seconds).ljust(8) + str(len(signals)).ljust(4)
    header += fields(lambda s: s[0], 16) + fields(lambda s: "", 80) + fields(lambda s: "uV", 8)
    header += fields(lambda s: -limit - 1, 8) + fields(lambda s: limit, 8)
    header += fields(lambda s: -limit - 1, 8) + fields(lambda s: limit, 8)
    header += fields(lambda s: "", 80) + fields(lambda s: s[1], 8) + fields(lambda s: "", 32)
    start = (b"\xffBIOSEMI" if wide else b"0".ljust(8)) + header.encode()
    record = width * (sum(rates) + annotation)
    place = len(start) + width * sum(rates)

    def lists():
        for number in range(records):
            onset = onsets(number) if onsets else number * seconds if number == 0 else None
            if onset is not None:
                yield place + number * record, f"+{onset:g}".encode() + b"\x14\x14\x00"

    sparse(path, start, len(start) + records * record, lists() if annotation else ())


def main():
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    rf64(folder / "wave16.rf64", 1, 16, 2, 48000)
    rf64(folder / "wave24.rf64", 1, 24, 2, 48000)
    rf64(folder / "float32.rf64", 3, 32, 2, 48000)
    bin_file(folder / "bin32.bin", 32, 1000.0)
    edf(folder / "edf32.edf", "", [256] * 32, SIZE // (32 * 256 * 2), 1)
    edf(folder / "edf512.edf", "", [512, 256, 64, 1] * 128, SIZE // (833 * 128 * 2), 1)
    # 50 bytes in a record; its number has eight digits at most.
    edf(folder / "short-records.edf", "C", [10], 99_999_999, 0.1, annotation=15)
    edf(folder / "bdf32.bdf", "", [256] * 32, SIZE // (32 * 256 * 3), 1, wide=True)
    # Every record is a stretch: half of its time lies before the next one.
    edf(folder / "stretches.edf", "D", [3200] * 32, 20_000, 10, annotation=60, onsets=lambda number: number * 20)


if __name__ == "__main__":
    main()
