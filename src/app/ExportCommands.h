#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "data/Document.h"
#include "export/KVExport.h"
#include "export/TextExportSettings.h"
#include "format/QL_Format.h"
#include "norvik/SaveFileDialog.h"
#include "norvik/TextSink.h"
#include "view/WaveformView.h"

namespace quillon {

struct TextExportContext;

/// Writes the selection, or the whole block, as a recording or as text, and reports the outcome in the panel "Status".
/// Asks before it overwrites a file.
class ExportCommands {
  public:
    /// Objects it works with; all must outlive it.
    struct Parts {
        const Document& document;
        const WaveformView& view;
        TextExportSettings& settings;  ///< format and target paths; the names chosen by the user are stored back
        const FormatOptions& format;
        RecordingLibrary& library;
        KVExport& exporter;
        SaveFileDialog& saveDialog;
        const TextSinkFactory& openText;
        Language language;
        UserServices& services;
    };
    explicit ExportCommands(const Parts& parts) : m_parts(parts) {}

    // To be set by the owner.
    std::function<void()> onDialog;                                 ///< a dialog is going to be shown
    std::function<void(const std::function<void()>& work)> onWork;  ///< runs work that takes long
    /// Called first by the work: completes what it needs of the block; false when the user has stopped it.
    std::function<bool()> onPrepare;
    std::function<bool()> onPending;  ///< called periodically by long work; false stops it
    std::function<bool()> isGone;     ///< whether the window is destroyed

    void SaveAs();
    void FastExport();
    /// As text to the clipboard.
    void CopyData();
    /// The text of the values panel to the clipboard.
    void CopyReadout(const std::u16string& text);

  private:
    /// Range to export: the selection, or without one the whole block.
    [[nodiscard]] SampleSpan Range() const;
    /// Runs a writer. "Status" tells the summary before, and where it is done the name, the summary and what the format
    /// does not keep.
    void WriteRecording(const std::u16string& name, const std::u16string& summary,
                        const std::function<bool(KVExport&)>& write);
    /// The shown channels, as stored or, if the settings of the text export say so, as shown.
    void WriteEdfPlus(const std::u16string& name, const SampleSpan& range);
    /// Whether the channel of the block, stored, is shown; its number is that of RecordingBlock.
    [[nodiscard]] bool IsShown(std::int16_t channel) const;
    [[nodiscard]] std::vector<std::int16_t> ShownChannels() const;
    /// What an EDF+ file of that range and those channels holds, in the user's language.
    [[nodiscard]] std::u16string EdfPlusLine(const SampleSpan& range, const std::vector<std::int16_t>& channels) const;
    /// How the block is shown.
    [[nodiscard]] ShownSettings ShownOfBlock() const;
    /// The block as the settings say: shown or stored.
    [[nodiscard]] std::shared_ptr<RecordingBlock> BlockToWrite() const;
    void WriteText(const std::u16string& target, const SampleSpan& range);
    /// In "Status", the words of the string table first.
    void Tell(int text, const std::u16string& what) const;
    /// What a text export that was stopped has written.
    void TellStopped(const std::u16string& target, const RecordingBlock& block, const TextExportContext& context) const;
    /// Asks once, for all of the files that exist, whether to overwrite them.
    [[nodiscard]] bool MayReplace(std::vector<std::u16string> files) const;
    /// The same for files that the fast export would overwrite and that the user did not name for it.
    [[nodiscard]] bool MayReplaceFastFiles(const RecordingBlock& block, const std::u16string& target);
    [[nodiscard]] bool IsRecording(const std::u16string& path) const;
    /// Asks for confirmation when the text may be too large for the clipboard.
    [[nodiscard]] bool MayCopy(std::int32_t samples) const;

    Parts m_parts;
    std::int32_t m_saveType = 1;              ///< chosen last in the Save As dialog
    std::vector<std::u16string> m_fastFiles;  ///< that the fast export may overwrite without asking
};

}  // namespace quillon
