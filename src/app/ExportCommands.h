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

/// Writes the selection, or the whole block, as a recording or as text, and says in "Status" what came of it. Files
/// that exist are asked about.
class ExportCommands {
  public:
    /// What it works with; all outlive it.
    struct Parts {
        const Document& document;
        const WaveformView& view;
        TextExportSettings& settings;  ///< what and where to; remembers the names that the user chose
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
    std::function<bool()> onPending;  ///< called now and then by such work; false once the window is gone
    std::function<bool()> isGone;     ///< whether the window is

    void SaveAs();
    void FastExport();
    /// As text to the clipboard.
    void CopyData();

  private:
    /// What is to be exported: the selection, or the whole block.
    [[nodiscard]] SampleSpan Range() const;
    void WriteRecording(RecordingBlock& block, const std::u16string& name, const SampleSpan& range, std::int32_t type);
    void WriteText(const std::u16string& target, const SampleSpan& range);
    /// Asks the user once about those of the files that exist.
    [[nodiscard]] bool MayReplace(std::vector<std::u16string> files) const;
    /// The same about files that the fast export would replace and nobody has named for it.
    [[nodiscard]] bool MayReplaceFastFiles(const RecordingBlock& block, const std::u16string& target);
    [[nodiscard]] bool IsRecording(const std::u16string& path) const;
    /// Asks the user where so much text would hardly find room.
    [[nodiscard]] bool MayCopy(std::int32_t samples) const;

    Parts m_parts;
    std::int32_t m_saveType = 1;              ///< chosen last in the Save As dialog
    std::vector<std::u16string> m_fastFiles;  ///< that the fast export may replace unasked
};

}  // namespace quillon
