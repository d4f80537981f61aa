#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/ShownSettings.h"
#include "export/EdfPlusMarks.h"
#include "export/EdfPlusRecords.h"
#include "export/ExportRun.h"
#include "norvik/NorvikCore.h"
#include "norvik/OutputFile.h"

namespace quillon {

/// What goes into a file of EDF+.
struct EdfPlusRequest {
    std::int32_t first = 1;                ///< sample, from 1; below is 1
    std::int32_t count = 0;                ///< below 1 or beyond the end: to the end
    std::vector<std::int16_t> channels{};  ///< of the block, from 1, in the order of the file
    const ShownSettings* shown = nullptr;  ///< how the block's samples are shown; null: as stored
    std::vector<bool> averaged{};          ///< of which channels an average is, from 0; empty: of all
};

/// The writer of EDF+ with marks (continuous, "EDF+C"): every sample of some channels over a range as the 16-bit code
/// that it is, the range's own start to a fraction of a second, and the marks in the range as annotations. Where no
/// records of equal length hold the range, the last is filled with each channel's last code, and the header tells how
/// many samples are not fill; our own readers leave it out.
///
/// Failures are those of KV_Export; no channel is one as well.
class EdfPlusWriter {
  public:
    explicit EdfPlusWriter(ExportRun& run) : m_run(run) {}
    [[nodiscard]] bool Write(RecordingBlock* block, const std::u16string& fileName, const EdfPlusRequest& request);

  private:
    struct File {
        RecordingBlock& block;
        const EdfPlusRequest& request;
        SampleSpan range;
        EdfPlusMarks marks;
        EdfPlusRecords records{};
    };
    static void Plan(File& file);
    [[nodiscard]] bool WriteRecords(File& file, OutputFile& output);
    /// A record of those that the rows hold, counted from 0 there, with the next marks.
    [[nodiscard]] bool WriteRecord(File& file, std::int32_t record, std::size_t stride, OutputFile& output);
    /// A row of `size` codes from sample `first` of the range on for each of the channels, the rows `stride` apart.
    void ReadRows(const File& file, std::int32_t first, std::int32_t size, std::size_t stride);

    ExportRun& m_run;
    std::vector<std::int16_t> m_rows;
    std::vector<std::int16_t> m_all;  ///< rows of all channels of the block
};

}  // namespace quillon
