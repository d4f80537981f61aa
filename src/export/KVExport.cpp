#include "export/KVExport.h"

#include <array>
#include <exception>
#include <new>
#include <string_view>

#include "base/Bilingual.h"
#include "base/Text.h"

namespace quillon {

namespace {

struct FileType {
    std::u16string_view description;
    std::u16string_view extension;
    bool (KV_Export::*write)(RecordingBlock*, const std::u16string&, std::int32_t, std::int32_t);
};

// Descriptions and LastError are the same in every language; Reason is in the user's.
constexpr std::array kFileTypes = {
    FileType{u"Supported Files (*.bin;*.wav;*.edf)", u"", nullptr},
    FileType{u"Binary Files", u"*.bin", &KV_Export::WriteBinFile},
    FileType{u"Waveform Audio", u"*.wav", &KV_Export::WriteWavFile},
    FileType{u"European Data Format", u"*.edf", &KV_Export::WriteEdfFile},
};

/// Null where there is none of that index.
const FileType* TypeAt(std::int32_t index) {
    const bool known = index >= 0 && index < static_cast<std::int32_t>(kFileTypes.size());
    return known ? &kFileTypes[static_cast<std::size_t>(index)] : nullptr;
}

/// Null where the name ends like none. Capitals match nothing, as in the family's other programs.
const FileType* TypeOfName(std::u16string_view fileName) {
    for (const FileType& type : kFileTypes) {
        if (type.write != nullptr && fileName.ends_with(type.extension.substr(1))) return &type;
    }
    return nullptr;
}

}  // namespace

std::u16string KVExport::Version() {
    return Decimal(VersionMajor()) + u"." + Decimal(VersionMinor()) + u"." + Decimal(VersionRevision());
}

std::u16string KVExport::FileTypeDescription(std::int32_t index) {
    const FileType* type = TypeAt(index);
    return type != nullptr ? std::u16string(type->description) : std::u16string();
}

std::u16string KVExport::FileTypeExtension(std::int32_t index) {
    const FileType* type = TypeAt(index);
    return type != nullptr ? std::u16string(type->extension) : std::u16string();
}

bool KVExport::Export(RecordingBlock* block, const std::u16string& fileName, std::int32_t firstSample,
                      std::int32_t sampleCount, std::int32_t fileType) {
    return Run(block, [&] {
        const FileType* type = fileType > 0 ? TypeAt(fileType) : nullptr;
        if (type == nullptr) type = TypeOfName(fileName);
        if (type != nullptr) return (m_writers.*type->write)(block, fileName, firstSample, sampleCount);
        m_writers.SetLastFailure(u"File type is unknown!");
        return false;
    });
}

bool KVExport::ExportEdfPlus(RecordingBlock* block, const std::u16string& fileName, const EdfPlusRequest& request) {
    return Run(block, [&] { return EdfPlusWriter(m_writers).Write(block, fileName, request); });
}

bool KVExport::Run(const RecordingBlock* block, const std::function<bool()>& write) {
    m_writers.Clear();
    m_reason.clear();
    m_sourceFailed = false;
    if (Try(block, write)) return true;
    if (Stopped()) return false;
    if (LastError().empty()) FailWith(m_writers.WriteFailure());
    m_services.ShowMessage(m_reason.empty() ? LastError() : LastError() + u"\n\n" + m_reason, LibraryName());
    return false;
}

bool KVExport::ExportWithDialog(RecordingBlock* block, std::int32_t firstSample, std::int32_t sampleCount,
                                SaveFileDialog& dialog) {
    return dialog.Show() && Export(block, dialog.fileName, firstSample, sampleCount, dialog.filterIndex);
}

void KVExport::FailWith(const std::u16string& reason) {
    m_writers.SetLastFailure(u"Error of file export!");
    m_sourceFailed = m_writers.SourceFailed();
    m_reason = m_sourceFailed && !m_recording.empty() ? m_recording + u": " + reason : reason;
}

bool KVExport::Try(const RecordingBlock* block, const std::function<bool()>& write) {
    if (block == nullptr) {
        m_writers.SetLastFailure(u"Block is nothing!");
        return false;
    }
    try {
        return write();
    } catch (const std::bad_alloc&) {
        FailWith(Say(u"there is not enough memory", u"не хватает памяти").In(m_writers.TextLanguage()));
    } catch (const FormatError& error) {
        FailWith(error.Reason().In(m_writers.TextLanguage()));
    } catch (const std::exception& error) {
        // A block that cannot be read, or values that no header of the format can hold.
        FailWith(Utf16(error.what()));
    }
    return false;
}

}  // namespace quillon
