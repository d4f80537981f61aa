#pragma once

#include <cstddef>
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

/// The writers of ".bin", WAVE and EDF, which KVExport calls. Each writes samples firstSample (from 1) to firstSample +
/// sampleCount - 1 of all channels of a block as the 16-bit codes that they are. A first sample below 1 is 1; a count
/// below 1 or beyond the end means: to the end.
///
/// False, with the reason in LastFailure, when there is no such range, the format cannot hold a channel's scale or the
/// file cannot be created; with the reason in WriteFailure when a write fails, which ends the export at once.
/// FormatError reports other values that the header cannot hold. Exceptions of the block pass through; SourceFailed
/// distinguishes them from others. False without a reason where the progress has stopped it: see Stopped. On any
/// failure existing files are unchanged.
class KV_Export {
  public:
    explicit KV_Export(ExportSystem system) : m_system(std::move(system)) {}

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

    /// The family's binary block format, which loses nothing.
    bool WriteBinFile(RecordingBlock* block, const std::u16string& fileName, std::int32_t firstSample,
                      std::int32_t sampleCount);
    /// WAVE, PCM of 16 bits: samples, channel count and the rate as a whole number, nothing else.
    bool WriteWavFile(RecordingBlock* block, const std::u16string& fileName, std::int32_t firstSample,
                      std::int32_t sampleCount);
    /// European Data Format: as many whole data records as the range holds. The start is always that of the block.
    bool WriteEdfFile(RecordingBlock* block, const std::u16string& fileName, std::int32_t firstSample,
                      std::int32_t sampleCount);

  private:
    struct Records {
        std::int32_t samples = 0;  ///< per channel and record
        double seconds = 0.0;
        std::int32_t count = 0;
    };
    static Records CutIntoRecords(const RecordingBlock& block, std::int32_t sampleCount);

    bool FindRange(const RecordingBlock* block, std::int32_t firstSample, std::int32_t sampleCount, SampleSpan& range);
    bool WriteFile(const std::u16string& fileName, const ByteWriter& header,
                   const std::function<bool(OutputFile&)>& writeSamples);
    [[nodiscard]] bool WriteFrames(RecordingBlock& block, const SampleSpan& range, OutputFile& file);
    [[nodiscard]] bool WriteRecords(RecordingBlock& block, const SampleSpan& range, const Records& records,
                                    OutputFile& file);
    [[nodiscard]] bool WriteLargeRecord(RecordingBlock& block, const SampleSpan& range, std::int32_t done,
                                        std::int32_t samples, OutputFile& file);
    /// One for each channel; none, with the reason in LastFailure, where the format cannot hold a channel's scale.
    [[nodiscard]] std::vector<EdfLimits> FindLimits(const RecordingBlock& block, std::int32_t total);
    /// Runs a call of the block that reads samples.
    template <typename Call>
    void Read(Call call) {
        m_reading = true;
        call();
        m_reading = false;
    }
    /// False when the export is to stop.
    [[nodiscard]] bool Report(std::int64_t done, std::int32_t total);

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
