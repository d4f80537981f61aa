// Sparse files: elsewhere a file that grows may be filled with written zeros, here 5 GiB of them.
#include <gtest/gtest.h>

#include "base/Text.h"
#include "norvik/EdfBuilder.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"

namespace quillon {
namespace {

using testing::FileBytes;

TEST(LargeFile, SamplesBeyondFourGibibytesAreReached) {
    const testing::TemporaryFolder folder;
    constexpr std::uint64_t size = 5ULL << 30;
    // The size has wrapped in the first and the third file; in the second the long size tells it.
    FileBytes wrapped;
    wrapped.Text("RIFF").U32(0).Text("WAVEfmt ").U32(16).U16(1).U16(1).U32(100).U32(200).U16(2).U16(16);
    wrapped.Text("data").U32(static_cast<std::uint32_t>(size - 44));
    FileBytes longer;
    longer.Text("RF64").U32(0xFFFFFFFF).Text("WAVEds64").U32(28).U64(size - 8).U64(size - 80).U64(0).U32(0);
    longer.Text("fmt ").U32(16).U16(1).U16(1).U32(100).U32(200).U16(2).U16(16).Text("data").U32(0xFFFFFFFF);
    FileBytes binary;
    binary.Text("ABIN").Zeros(20).F32(100.0F).U32(0).U16(1).Zeros(94).Text("ADCh").Zeros(60).F32(1.0F).Zeros(12);
    binary.Text("data").U32(static_cast<std::uint32_t>(size - 216));
    EdfBuilder records{.records = "2500", .seconds = "10000", .signals = {{}, {}}};
    for (auto& signal : records.signals) signal.samplesPerRecord = 1000000;
    const auto library = MakeRecordingLibrary(Language::English);
    struct Case {
        FileBytes header;
        std::uint64_t fileSize;
        std::int32_t samples;  ///< of the first block
        std::u16string title;  ///< of the second
    };
    const FileBytes edf = FileBytes().Text(records.Header());
    for (const auto& [header, fileSize, samples, title] :
         {Case{wrapped, size, 2147483647, u"2/2"}, Case{longer, size, 2147483647, u"2/2"},
          Case{binary, size, 2147483647, u"2/2"}, Case{edf, 768 + 2500 * 4000000ULL, 2147000000, u"23:53:20"}}) {
        const std::u16string path = folder.Write(u"large", header);
        std::filesystem::resize_file(path, fileSize - 2);
        std::ofstream(std::filesystem::path(path), std::ios::binary | std::ios::app).write("\x34\x12", 2);
        std::shared_ptr<Recording> recording;
        ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
        ASSERT_EQ(recording->BlockCount(), 2) << Utf8(recording->FileInfo());
        const auto last = recording->GetBlock(2);
        EXPECT_EQ(recording->GetBlock(1)->SampleCount(), samples);
        EXPECT_EQ(last->Title(), title);
        EXPECT_NEAR(last->StartTime() - recording->GetBlock(1)->StartTime(), samples / 100.0 / 86400.0, 1e-6);
        std::int16_t code = 0;
        last->ReadCodes(last->ChannelCount(), last->SampleCount() - 1, 1, &code);
        EXPECT_EQ(code, 0x1234);
    }
}

}  // namespace
}  // namespace quillon
