#include "norvik/private/ReadRecording.h"

#include <algorithm>
#include <span>
#include <vector>

#include "base/Text.h"
#include "norvik/private/BinReader.h"
#include "norvik/private/EdfReader.h"
#include "norvik/private/WaveReader.h"

namespace quillon {

namespace {

constexpr std::size_t kStartBytes = 4096;

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

RecordingContent ReadRecording(const std::shared_ptr<ByteSource>& source, std::u16string_view fileName) {
    const std::vector<std::uint8_t> start = ReadStart(*source);
    if (start.empty()) throw FormatError(Say(u"the file is empty", u"файл пуст"));
    if (LooksLikeBin(start)) return ReadBin(source);
    if (LooksLikeWave(start)) return ReadWave(source);
    if (LooksLikeEdf(start)) return ReadEdf(source);
    const std::u16string name = LowerCase(fileName);
    if (name.ends_with(u".edf") || name.ends_with(u".bdf")) return ReadEdf(source);
    if (name.ends_with(u".wav") || name.ends_with(u".rf64")) return ReadWave(source);
    if (name.ends_with(u".bin")) return ReadBin(source);
    RefuseUnknown(start);
}

}  // namespace quillon
