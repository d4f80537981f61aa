#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "norvik/private/ByteSource.h"
#include "norvik/private/Companions.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

/// A file to be read as a recording.
struct RecordingFile {
    std::shared_ptr<ByteSource> source;
    std::u16string name;         ///< with or without its folder
    Companions companions = {};  ///< the files beside it
    ReadBudget budget = {};
    /// Name of the file that the user has opened, where it is not this one but another of the recording.
    std::u16string member{};
};

struct TypeName {
    std::u16string_view english;
    std::u16string_view russian;
};

/// A type of file: how it is offered, known and read.
struct FileType {
    TypeName name;
    std::u16string_view masks;  ///< "*.ext", separated by semicolons
    /// Tells by the file's first bytes, 4096 of them where there are as many.
    bool (*looksLike)(std::span<const std::uint8_t> start);
    RecordingContent (*read)(const RecordingFile& file);
    /// Masks of the other files of such a recording, which is read by the one of `masks` that has the same bare name.
    std::u16string_view members{};
};

/// All types, in the order in which they are offered.
[[nodiscard]] std::span<const FileType> FileTypes();

/// Reads a file by the first type that its bytes look like. The extension of its name only decides who tells what is
/// wrong with a file that begins like none, and by which file beside it a recording of several is read. Throws
/// FormatError for a file that cannot be read, ReadError when the device fails.
[[nodiscard]] RecordingContent ReadRecording(const RecordingFile& file);

}  // namespace quillon
