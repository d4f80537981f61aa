#pragma once

#include <cstdint>
#include <string>

#include "base/SampleSpan.h"
#include "export/ExportRun.h"
#include "norvik/NorvikCore.h"
#include "norvik/OutputFile.h"

namespace quillon {

/// The writers of ".bin", WAVE and EDF, which KVExport calls. Each writes samples firstSample (from 1) to firstSample +
/// sampleCount - 1 of all channels of a block as the 16-bit codes that they are. A first sample below 1 is 1; a count
/// below 1 or beyond the end means: to the end.
///
/// False, with the reason in LastFailure, when there is no such range, the format cannot hold a channel's scale or the
/// file cannot be created; with the reason in WriteFailure when a write fails, which ends the export at once.
/// FormatError reports other values that the header cannot hold. Exceptions of the block pass through; SourceFailed
/// distinguishes them from others. False without a reason where the progress has stopped it: see Stopped. On any
/// failure existing files are unchanged.
class KV_Export : public ExportRun {
  public:
    using ExportRun::ExportRun;

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

    [[nodiscard]] bool WriteFrames(RecordingBlock& block, const SampleSpan& range, OutputFile& file);
    [[nodiscard]] bool WriteRecords(RecordingBlock& block, const SampleSpan& range, const Records& records,
                                    OutputFile& file);
    [[nodiscard]] bool WriteLargeRecord(RecordingBlock& block, const SampleSpan& range, std::int32_t done,
                                        std::int32_t samples, OutputFile& file);
};

}  // namespace quillon
