#include "norvik/private/ReadRecording.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "base/FilePath.h"
#include "base/Text.h"
#include "norvik/private/AiffReader.h"
#include "norvik/private/AuReader.h"
#include "norvik/private/BinReader.h"
#include "norvik/private/BrainVisionHeader.h"
#include "norvik/private/BrainVisionReader.h"
#include "norvik/private/EdfReader.h"
#include "norvik/private/FlacReader.h"
#include "norvik/private/GdfReader.h"
#include "norvik/private/TableReader.h"
#include "norvik/private/W64Chunks.h"
#include "norvik/private/WaveReader.h"
#include "norvik/private/WfdbHeader.h"
#include "norvik/private/WfdbReader.h"

namespace quillon {

namespace {

constexpr std::size_t kStartBytes = 4096;

/// Of a recording that is one file.
template <RecordingContent (*Read)(const std::shared_ptr<ByteSource>& source)>
RecordingContent ReadOne(const RecordingFile& file) {
    return Read(file.source);
}

RecordingContent ReadEdfFile(const RecordingFile& file) {
    return ReadEdf(file.source, file.budget);
}

constexpr std::array<FileType, 12> kFileTypes{{
    {{u"Binary Files", u"Двоичные файлы"}, u"*.bin", LooksLikeBin, ReadOne<ReadBin>},
    {{u"Waveform Audio", u"Звуковые файлы"}, u"*.wav;*.rf64", LooksLikeWave, ReadOne<ReadWave>},
    {{u"European Data Format", u"Европейский формат данных"}, u"*.edf", LooksLikeEdf, ReadEdfFile},
    {{u"BDF 24-bit", u"BDF, 24 бита"}, u"*.bdf", LooksLikeEdf, ReadEdfFile},
    {{u"BrainVision Recordings", u"Записи BrainVision"},
     u"*.vhdr;*.ahdr",
     LooksLikeBrainVision,
     ReadBrainVision,
     u"*.eeg;*.dat;*.vmrk;*.amrk"},
    {{u"FLAC Audio", u"Звук FLAC"}, u"*.flac", LooksLikeFlac, ReadOne<ReadFlac>},
    {{u"GDF Biosignals", u"Биосигналы GDF"}, u"*.gdf", LooksLikeGdf, ReadOne<ReadGdf>},
    {{u"W64 Audio", u"Звук W64"}, u"*.w64", LooksLikeW64, ReadOne<ReadW64>},
    {{u"AIFF Audio", u"Звук AIFF"}, u"*.aif;*.aiff;*.aifc", LooksLikeAiff, ReadOne<ReadAiff>},
    {{u"AU Audio", u"Звук AU"}, u"*.au;*.snd", LooksLikeAu, ReadOne<ReadAu>},
    {{u"WFDB Records", u"Записи WFDB"},
     u"*.hea",
     LooksLikeWfdb,
     ReadWfdb,
     u"*.dat;*.mat;*.atr;*.ari;*.ecg;*.qrs;*.st;*.apn;*.ann"},
    {{u"Text Tables", u"Текстовые таблицы"}, u"*.txt;*.csv;*.tsv", LooksLikeTable, ReadTable},
}};

/// The extensions of masks: ".ext".
std::vector<std::u16string_view> Extensions(std::u16string_view masks) {
    std::vector<std::u16string_view> extensions;
    for (std::size_t at = 0; at < masks.size();) {
        const std::size_t end = std::min(masks.find(u';', at), masks.size());
        extensions.push_back(masks.substr(at + 1, end - at - 1));
        at = end + 1;
    }
    return extensions;
}

/// `name` in lower case.
bool HasExtension(std::u16string_view masks, std::u16string_view name) {
    const auto extensions = Extensions(masks);
    return std::any_of(extensions.begin(), extensions.end(),
                       [&](std::u16string_view extension) { return name.ends_with(extension); });
}

RecordingContent ReadHeader(const FileType& type, const RecordingFile& header) {
    try {
        return type.read(header);
    } catch (const ReadError&) {
        throw;
    } catch (const FormatError& error) {
        // The user has opened another file.
        const std::u16string name = FileNameOf(header.name) + u": ";
        throw FormatError({name + error.Reason().english, name + error.Reason().russian});
    }
}

/// Reads a recording by the header beside one of its other files. Nothing where it is no such file; throws where the
/// header is missing. `name` is that of the file in lower case.
std::optional<RecordingContent> ReadByHeader(const RecordingFile& member, std::u16string_view name) {
    std::u16string missing;
    for (const FileType& type : kFileTypes) {
        if (!HasExtension(type.members, name)) continue;
        for (const std::u16string_view extension : Extensions(type.masks)) {
            const std::u16string header = BareNameOf(member.name) + std::u16string(extension);
            Bilingual ignored;
            if (const auto source = member.companions.Open(header, ignored))
                return ReadHeader(type, {source, FolderOf(member.name) + header, member.companions, member.budget,
                                         FileNameOf(member.name)});
            missing += (missing.empty() ? u"" : u", ") + header;
        }
    }
    if (missing.empty()) return std::nullopt;
    throw FormatError(Say(u"part of a recording whose header is not beside it: %1",
                          u"часть записи, рядом с которой нет её заголовка: %1", {missing}));
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
        if (HasExtension(type.masks, name)) return type.read(file);
    }
    if (std::optional<RecordingContent> content = ReadByHeader(file, name)) return std::move(*content);
    RefuseUnknown(start);
}

}  // namespace quillon
