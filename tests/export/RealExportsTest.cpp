// Every real recording is exported to each format and read back.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "base/Text.h"
#include "export/KVExport.h"
#include "norvik/BlockChecks.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"
#include "support/FakeRecording.h"

namespace quillon::testing {
namespace {

const std::filesystem::path kRecordings = "../shared/recordings";
constexpr double kSecond = 1.0 / 86400.0;

class RealExports : public ::testing::Test {
  protected:
    /// The block of an exported file; null after a failed expectation.
    std::shared_ptr<RecordingBlock> Exported(RecordingBlock& block, const std::u16string& name) {
        const std::u16string path = m_folder.File(name).u16string();
        EXPECT_TRUE(m_exporter.Export(&block, path, 1, 0, 0)) << Utf8(m_exporter.LastError());
        EXPECT_EQ(m_exporter.FailedWrites(), 0U);
        m_library->CloseRecording(m_written);
        EXPECT_TRUE(m_library->OpenRecording(path, m_written)) << Utf8(m_library->LastErrorText());
        return m_written ? m_written->GetBlock(1) : nullptr;
    }

    static void CompareCodes(RecordingBlock& block, RecordingBlock& read, std::int32_t samples) {
        ASSERT_EQ(read.SampleCount(), samples);
        ASSERT_EQ(read.ChannelCount(), block.ChannelCount());
        for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
            Codes expected = AllCodes(block, channel);
            expected.resize(static_cast<std::size_t>(samples));
            ASSERT_EQ(AllCodes(read, channel), expected) << "channel " << channel;
        }
    }

    void ToBin(RecordingBlock& block) {
        const auto read = Exported(block, u"out.bin");
        ASSERT_TRUE(read);
        CompareCodes(block, *read, block.SampleCount());
        EXPECT_EQ(read->SampleRate(), static_cast<double>(static_cast<float>(block.SampleRate())));
        EXPECT_NEAR(read->StartTime(), block.StartTime(), kSecond);
        for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
            EXPECT_EQ(read->ChannelScale(channel), block.ChannelScale(channel));
            EXPECT_EQ(read->ChannelOffset(channel), block.ChannelOffset(channel));
            EXPECT_EQ(read->ChannelUnit(channel), Utf16(Utf8Within(block.ChannelUnit(channel), 24)));
        }
    }

    void ToWave(RecordingBlock& block) {
        const auto read = Exported(block, u"out.wav");
        if (read) CompareCodes(block, *read, block.SampleCount());
    }

    void ToEdf(RecordingBlock& block) {
        const auto read = Exported(block, u"out.edf");
        ASSERT_TRUE(read);
        // Samples beyond the last whole record are not kept.
        EXPECT_GT(read->SampleCount(), block.SampleCount() / 2);
        CompareCodes(block, *read, read->SampleCount());
        EXPECT_NEAR(read->StartTime(), block.StartTime(), kSecond);
        for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
            // Numbers of 8 characters hold the range to 5 digits or better.
            const double scale = static_cast<double>(block.ChannelScale(channel));
            const double largest =
                32000 * std::fabs(scale) + std::fabs(static_cast<double>(block.ChannelOffset(channel)));
            EXPECT_NEAR(static_cast<double>(read->ChannelScale(channel)), scale, largest * 2e-5 / 32000);
            EXPECT_NEAR(static_cast<double>(read->ChannelOffset(channel)),
                        static_cast<double>(block.ChannelOffset(channel)), largest * 2e-5);
        }
    }

    FakeServices m_services;
    TemporaryFolder m_folder;
    KVExport m_exporter{m_services, {MakeOutputFile}};
    std::shared_ptr<RecordingLibrary> m_library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> m_written;
};

TEST_F(RealExports, AreReadBackWithNothingLost) {
    if (!std::filesystem::exists(kRecordings)) GTEST_SKIP() << "no reference recordings in " << kRecordings;
    int blocks = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kRecordings)) {
        std::shared_ptr<Recording> recording;
        if (!entry.is_regular_file() || !m_library->OpenRecording(entry.path().u16string(), recording)) continue;
        for (std::int16_t number = 1; number <= recording->BlockCount(); ++number) {
            SCOPED_TRACE(entry.path().string() + " block " + std::to_string(number));
            const auto block = recording->GetBlock(number);
            if (block->SampleCount() == 0) continue;
            ++blocks;
            ToBin(*block);
            ToWave(*block);
            ToEdf(*block);
            if (HasFatalFailure()) return;
        }
    }
    EXPECT_GE(blocks, 30);
    EXPECT_TRUE(m_services.messages.empty());
}

}  // namespace
}  // namespace quillon::testing
