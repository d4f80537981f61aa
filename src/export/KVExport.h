#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "data/UserServices.h"
#include "export/EdfPlusWriter.h"
#include "export/KV_Export.h"
#include "norvik/NorvikCore.h"
#include "norvik/SaveFileDialog.h"

namespace quillon {

/// The export object, made once: chooses the writer of KV_Export by type or extension, runs it and tells the user of a
/// failure. Text goes through QL_Export instead.
class KVExport {
  public:
    /// `services` must outlive the object.
    KVExport(UserServices& services, ExportSystem system) : m_services(services), m_writers(std::move(system)) {}

    /// Also the title of the failure message.
    [[nodiscard]] static std::u16string LibraryName() { return u"KVExportLib"; }
    /// "major.minor.revision" of the application. Its parts are kept for callers of the family's interface; the
    /// program itself does not use them.
    [[nodiscard]] static std::u16string Version();
    [[nodiscard]] static std::int16_t VersionMajor() { return QUILLON_VERSION_MAJOR; }
    [[nodiscard]] static std::int16_t VersionMinor() { return QUILLON_VERSION_MINOR; }
    [[nodiscard]] static std::int16_t VersionRevision() { return QUILLON_VERSION_REVISION; }

    /// Type 0, which chooses by the extension, is not counted.
    [[nodiscard]] static std::int32_t FileTypeCount() { return 3; }
    /// Empty for an index that is no type.
    [[nodiscard]] static std::u16string FileTypeDescription(std::int32_t index);
    /// A wildcard pattern; empty for type 0 and for an index that is no type.
    [[nodiscard]] static std::u16string FileTypeExtension(std::int32_t index);

    /// Writes samples firstSample (from 1) and following of all channels; see KV_Export for ranges. `fileType` 1 to 3
    /// names the format; with any other number the extension does, in lower case only. An existing file is replaced
    /// when the new one is complete. On failure shows LastError and Reason, leaves every file as it was and returns
    /// false; the same without a message where the progress callback has stopped it.
    bool Export(RecordingBlock* block, const std::u16string& fileName, std::int32_t firstSample,
                std::int32_t sampleCount, std::int32_t fileType);

    /// The same for EDF+ with marks, which is none of the numbered types and takes some channels only; see
    /// EdfPlusWriter.
    bool ExportEdfPlus(RecordingBlock* block, const std::u16string& fileName, const EdfPlusRequest& request);

    /// Asks for name and type with the dialog as it is set up, then exports; false also when the user cancels. The
    /// dialog's filter is that of BuildSaveFilter. Kept for callers of the family's interface; the program itself does
    /// not use it.
    bool ExportWithDialog(RecordingBlock* block, std::int32_t firstSample, std::int32_t sampleCount,
                          SaveFileDialog& dialog);

    /// Why the last Export failed; empty when it did not.
    [[nodiscard]] std::u16string LastError() const { return m_writers.LastFailure(); }
    /// Details to LastError in the user's language: if writing or reading failed, the file's name and the reason; else
    /// mostly empty.
    [[nodiscard]] const std::u16string& Reason() const { return m_reason; }
    /// Whether the last Export failed because the recording could not be read.
    [[nodiscard]] bool SourceFailed() const { return m_sourceFailed; }
    /// Whether the progress callback has ended the last Export.
    [[nodiscard]] bool Stopped() const { return m_writers.Stopped(); }
    /// Of the last Export that succeeded.
    [[nodiscard]] const ExportOutcome& Outcome() const { return m_writers.Outcome(); }

    /// Full name of the recording whose blocks are exported from now on; reasons why it cannot be read begin with it.
    void SetRecording(std::u16string fileName) { m_recording = std::move(fileName); }

    /// Sets the callback that is called after each chunk; see ExportSystem.
    void SetProgress(ExportProgress progress) { m_writers.SetProgress(std::move(progress)); }

  private:
    /// Runs a writer and tells of its failure.
    bool Run(const RecordingBlock* block, const std::function<bool()>& write);
    bool Try(const RecordingBlock* block, const std::function<bool()>& write);
    void FailWith(const std::u16string& reason);

    UserServices& m_services;
    KV_Export m_writers;
    std::u16string m_reason;
    bool m_sourceFailed = false;
    std::u16string m_recording;
};

}  // namespace quillon
