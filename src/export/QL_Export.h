#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Language.h"
#include "data/QL_Types.h"
#include "data/ShownSettings.h"
#include "data/UserServices.h"
#include "export/TextExportSettings.h"
#include "export/TextRows.h"
#include "format/QL_Format.h"
#include "norvik/NorvikCore.h"
#include "norvik/SaveFileDialog.h"
#include "norvik/TextSink.h"

/// The text export: samples as text, into a file or onto the clipboard, and the save dialogs' filter and names. Binary
/// files are written by KVExport.
namespace quillon {

/// Input of one run.
struct TextExportRequest {
    std::u16string target;  ///< full file name, or kClipboardTarget
    bool rowOfSize = false;
    bool rowOfRate = false;
    bool rowOfStep = false;
    bool titleRow = false;
    bool xColumn = false;
    std::int16_t xFormat = 0;            ///< 0 time, else sample number
    bool rawCodes = false;               ///< codes instead of values
    std::vector<std::int16_t> channels;  ///< acquisition numbers, from 0
    std::int32_t first = 1;              ///< sample, from 1
    std::int32_t count = 0;
    // One percentage runs over all files of a command.
    std::int32_t file = 0;  ///< which of them this is, from 0
    std::int32_t files = 1;
};

/// Environment of the export: document state and callbacks.
struct TextExportContext {
    const ChannelSlots& slots;
    const FormatOptions& format;
    bool rawCodes = false;  ///< the view shows codes
    UserServices& services;
    TextSinkFactory open;
    /// Lets pending window messages run, between chunks; false stops the export. May be empty.
    std::function<bool()> runPending{};
    /// Write a byte order mark, so that programs do not read the UTF-8 text in the system's code page.
    bool utf8Mark = true;
    std::string_view lineEnd = kTextLineEnd;
    /// How the block's samples are shown, which the first line tells of the channels that are written; null: as stored.
    const ShownSettings* shown = nullptr;
    Language language = Language::English;  ///< of that line
    bool stopped = false;                   ///< by runPending
    bool ended = false;                     ///< stopped, or a write has failed
    // To be reported by the caller: targets written completely, and those not written, each with the reason.
    std::vector<std::u16string> written{};
    std::vector<std::u16string> failures{};
};

/// Name of the file of one channel: the number, from 1, before the extension.
[[nodiscard]] std::u16string ChannelFileName(const std::u16string& target, std::int16_t channelNumber);

/// Exports samples first .. first+count-1 (from 1) as the settings say. Returns whether any text was written. A file
/// that cannot be opened leaves the others to be written; a write that fails ends the export. Exceptions of the block
/// go through. Files that are not completed are as they were before.
bool ExportText(const std::u16string& target, RecordingBlock& block, std::int32_t first, std::int32_t count,
                const TextExportSettings& settings, TextExportContext& context);

/// Writes one text. False, with nothing opened, when the block has none of the channels or the range has no sample in
/// it; false when the target does not open or cannot be written, or the export is ended: then the last progress stays
/// in the status.
bool WriteTextExport(RecordingBlock& block, const TextExportRequest& request, TextExportContext& context);

/// The files that ExportText with these settings would write for a target that is a file.
[[nodiscard]] std::vector<std::u16string> TextExportFiles(const std::u16string& target, const RecordingBlock& block,
                                                          const TextExportSettings& settings,
                                                          const ChannelSlots& slots);

/// Filter of the dialog that saves recordings: the types of KVExport in their order, so that an index is the type, then
/// text and EDF+ with marks.
[[nodiscard]] std::u16string BuildSaveFilter();
inline constexpr std::int32_t kEdfPlusFilterIndex = 5;

/// Asks for the file of the fast export, `fileName` in and out; false when the user cancels.
bool FastExportDialog(SaveFileDialog& dialog, const UserServices& services, std::u16string& fileName);

}  // namespace quillon
