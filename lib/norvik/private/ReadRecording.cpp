#include "norvik/private/ReadRecording.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/Text.h"
#include "norvik/private/BinReader.h"
#include "norvik/private/EdfReader.h"
#include "norvik/private/WaveReader.h"

namespace quillon {

namespace {

constexpr std::size_t kStartBytes = 4096;

RecordingContent ReadBinFile(const RecordingFile& file) {
    return ReadBin(file.source);
}

RecordingContent ReadWaveFile(const RecordingFile& file) {
    return ReadWave(file.source);
}

RecordingContent ReadEdfFile(const RecordingFile& file) {
    return ReadEdf(file.source, file.budget);
}

constexpr std::array<FileType, 4> kFileTypes{{
    {{u"Binary Files", u"Двоичные файлы"}, u"*.bin", LooksLikeBin, ReadBinFile},
    {{u"Waveform Audio", u"Звуковые файлы"}, u"*.wav;*.rf64", LooksLikeWave, ReadWaveFile},
    {{u"European Data Format", u"Европейский формат данных"}, u"*.edf", LooksLikeEdf, ReadEdfFile},
    {{u"BDF 24-bit", u"BDF, 24 бита"}, u"*.bdf", LooksLikeEdf, ReadEdfFile},
}};

/// `name` in lower case.
bool HasExtension(const FileType& type, std::u16string_view name) {
    for (std::size_t at = 0; at < type.masks.size();) {
        const std::size_t end = std::min(type.masks.find(u';', at), type.masks.size());
        if (name.ends_with(type.masks.substr(at + 1, end - at - 1))) return true;
        at = end + 1;
    }
    return false;
}

std::vector<std::uint8_t> ReadStart(ByteSource& source) {
    std::vector<std::uint8_t> start(kStartBytes);
    start.resize(source.ReadAt(0, start.data(), start.size()));
    return start;
}

[[noreturn]] void RefuseUnknown(std::span<const std::uint8_t> start) {
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    std::u16string bytes;
    for (const std::uint8_t byte : start.first(std::min<std::size_t>(start.size(), 4))) {
        if (!bytes.empty()) bytes += u' ';
        bytes += digits[byte >> 4];
        bytes += digits[byte & 15];
    }
    throw FormatError(Say(u"not a recording of a known format (the file begins with %1)",
                          u"не запись известного формата (файл начинается с %1)", {bytes}));
}

}  // namespace

std::span<const FileType> FileTypes() {
    return kFileTypes;
}

RecordingContent ReadRecording(const RecordingFile& file) {
    const std::vector<std::uint8_t> start = ReadStart(*file.source);
    if (start.empty()) throw FormatError(Say(u"the file is empty", u"файл пуст"));
    for (const FileType& type : kFileTypes) {
        if (type.looksLike(start)) return type.read(file);
    }
    const std::u16string name = LowerCase(file.name);
    for (const FileType& type : kFileTypes) {
        if (HasExtension(type, name)) return type.read(file);
    }
    RefuseUnknown(start);
}

}  // namespace quillon
