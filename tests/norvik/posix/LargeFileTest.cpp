// Sparse files: elsewhere a file that grows may be filled with written zeros, here 9 GiB of them.
#include <gtest/gtest.h>

#include "RecordingWriters.h"
#include "base/Text.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"

namespace quillon {
namespace {

using FileBytes = samples::Bytes;

TEST(LargeFile, SamplesBeyondFourGibibytesAreReached) {
    const testing::TemporaryFolder folder;
    constexpr std::uint64_t size = 9ULL << 30;  // so that the second block, too, begins beyond 32 bits
    // The size has wrapped in the first and the third file; in the second the long size is the true one.
    FileBytes wrapped;
    wrapped.Text("RIFF").U32(0).Text("WAVEfmt ").U32(16).U16(1).U16(2).U32(100).U32(400).U16(4).U16(16);
    wrapped.Text("data").U32(static_cast<std::uint32_t>(size - 44));
    FileBytes longer;
    longer.Text("RF64").U32(0xFFFFFFFF).Text("WAVEds64").U32(28).U64(size - 8).U64(size - 80).U64(0).U32(0);
    longer.Text("fmt ").U32(16).U16(1).U16(2).U32(100).U32(400).U16(4).U16(16).Text("data").U32(0xFFFFFFFF);
    const FileBytes binary = FileBytes().Text(samples::BinHeader(100.0F, "", {{"A", ""}, {"B", ""}}, (size - 296) / 4));
    samples::EdfSignal signal;
    signal.samplesPerRecord = 1000000;
    const FileBytes edf = FileBytes().Text(samples::EdfHeader({signal, signal}, 2500));
    const auto library = MakeRecordingLibrary(Language::English);
    using Case = std::tuple<FileBytes, std::uint64_t, std::u16string>;  // header, file size, title of the second block
    for (const auto& [header, fileSize, title] :
         {Case(wrapped, size, u"2/2"), Case(longer, size, u"2/2"), Case(binary, size, u"2/2"),
          Case(edf, 768 + 2500 * 4000000ULL, u"13:32:49")}) {
        const std::int32_t samples = title == u"2/2" ? 2147483647 : 2147000000;
        const std::u16string path = folder.Write(u"large", header.Get());
        std::filesystem::resize_file(path, fileSize - 2);
        std::ofstream(std::filesystem::path(path), std::ios::binary | std::ios::app).write("\x34\x12", 2);
        std::shared_ptr<Recording> recording;
        ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
        ASSERT_EQ(recording->BlockCount(), 2) << Utf8(recording->FileInfo());
        const auto last = recording->GetBlock(2);
        last->Prepare();
        EXPECT_EQ(recording->GetBlock(1)->SampleCount(), samples);
        EXPECT_EQ(last->Title(), title);
        EXPECT_NEAR(last->StartTime() - recording->GetBlock(1)->StartTime(), samples / last->SampleRate() / 86400.0,
                    1e-6);
        std::int16_t code = 0;
        last->ReadCodes(last->ChannelCount(), last->SampleCount() - 1, 1, &code);
        EXPECT_EQ(code, 0x1234);
    }
}

}  // namespace
}  // namespace quillon
