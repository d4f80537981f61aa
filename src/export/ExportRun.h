#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Language.h"
#include "base/SampleSpan.h"
#include "base/Text.h"
#include "export/ByteWriter.h"
#include "export/EdfLimits.h"
#include "export/ExportOutcome.h"
#include "norvik/NorvikCore.h"
#include "norvik/OutputFile.h"

namespace quillon {

/// Called after each chunk with the samples per channel done and to do; false stops the export. It is called on, with
/// the same numbers, while an unfinished file of many gigabytes is removed. It may run pending messages provided that
/// they neither start another export with the same object nor close the recording.
using ExportProgress = std::function<bool(std::int32_t done, std::int32_t total)>;

/// System services that the writers need.
struct ExportSystem {
    OutputFileFactory makeFile;
    /// Text of ".bin" fields in the system's bytes: at most `size` of them, ended behind a whole character.
    std::function<std::string(std::u16string_view text, std::size_t size)> fieldText = Utf8Within;
    /// The day that ".bin" files count as 1: 0 is Sunday, 1 Monday ... 6.
    int firstDayOfWeek = 1;
    ExportProgress progress = {};
    /// Language of the failure reasons that are given in both languages.
    Language language = Language::English;
};

/// Refuses a rate, in Hz, with a FormatError.
[[noreturn]] void RefuseExportRate(double rate);

/// All channels of a block in its order, from 1.
[[nodiscard]] std::vector<std::int16_t> AllChannels(const RecordingBlock& block);

/// What the writers of all formats have in common: how a file is begun, read for, reported and ended, and why the last
/// one has failed.
class ExportRun {
  public:
    explicit ExportRun(ExportSystem system) : m_system(std::move(system)) {}

    /// Clears the last failure.
    void Clear();
    [[nodiscard]] const std::u16string& LastFailure() const { return m_lastFailure; }
    void SetLastFailure(std::u16string_view text) { m_lastFailure = text; }
    [[nodiscard]] Language TextLanguage() const { return m_system.language; }
    void SetProgress(ExportProgress progress) { m_system.progress = std::move(progress); }
    /// Which file could not be written, and why; empty without a write failure.
    [[nodiscard]] const std::u16string& WriteFailure() const { return m_writeFailure; }
    /// Whether an exception came from reading the block's samples.
    [[nodiscard]] bool SourceFailed() const { return m_reading; }
    /// Whether the progress callback has ended it.
    [[nodiscard]] bool Stopped() const { return m_stopped; }
    /// Of the last file that was written.
    [[nodiscard]] const ExportOutcome& Outcome() const { return m_outcome; }

    // For the writers.

    [[nodiscard]] const ExportSystem& System() const { return m_system; }
    [[nodiscard]] ExportOutcome& Outcome() { return m_outcome; }
    /// The range of samples that is meant: a first sample below 1 is 1; a count below 1 or beyond the end means: to the
    /// end. False, with the reason in LastFailure, where there is none. Begins the outcome.
    bool FindRange(const RecordingBlock* block, std::int32_t firstSample, std::int32_t sampleCount, SampleSpan& range);
    /// Header, samples, and the end. Existing files are unchanged on any failure.
    bool WriteFile(const std::u16string& fileName, const ByteWriter& header,
                   const std::function<bool(OutputFile&)>& writeSamples);
    /// Runs a call of the block that reads samples.
    template <typename Call>
    void Read(Call call) {
        m_reading = true;
        call();
        m_reading = false;
    }
    /// False when the export is to stop.
    [[nodiscard]] bool Report(std::int64_t done, std::int32_t total);
    /// One for each of the channels, as `find` (of EdfLimits.h) makes them; none, with the reason in LastFailure, where
    /// the format cannot hold a channel's scale.
    [[nodiscard]] std::vector<EdfLimits> FindLimits(const RecordingBlock& block, std::span<const std::int16_t> channels,
                                                    std::int32_t total, EdfLimitsFinder find);

  private:
    ExportSystem m_system;
    std::u16string m_lastFailure;
    std::u16string m_writeFailure;
    bool m_reading = false;
    bool m_stopped = false;
    std::int32_t m_reported = 0;  ///< what the progress was told last
    std::int32_t m_reportedOf = 0;
    ExportOutcome m_outcome;
};

}  // namespace quillon
