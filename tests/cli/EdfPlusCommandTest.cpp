#include <gtest/gtest.h>

#include <numeric>

#include "RecordingWriters.h"
#include "cli/Cli.h"
#include "cli/CommandLine.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::cli {
namespace {

/// Three channels of 1000 samples at 100 Hz.
class EdfPlusCommand : public ::testing::Test {
  protected:
    EdfPlusCommand() {
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(
            100.0F, "",
            {{"EEG Fp1-REF", "uV", 0.5F, 0.0F}, {"EEG F7-REF", "uV", 0.5F, 0.0F}, {"SpO2", "%", 1.0F, 0.0F}}, 1000));
        std::vector<std::int16_t> codes(3000);
        std::iota(codes.begin(), codes.end(), std::int16_t{0});
        m_recording = m_folder.Write(u"a.bin", bytes.Codes(codes).Get());
    }
    void ExpectRefused(int code, const std::string& line, const std::string& part) const {
        const testing::Answer answer = testing::RunLine(line, {m_recording, m_out});
        EXPECT_EQ(answer.code, code) << line;
        EXPECT_NE(answer.error.find(part), std::string::npos) << answer.error;
        EXPECT_FALSE(std::filesystem::exists(m_out));
    }
    [[nodiscard]] std::string Samples(const std::filesystem::path& file, const std::string& line) const {
        return testing::RunLine("codes % 1 " + line, {file}).out;
    }

    testing::TemporaryFolder m_folder;
    std::filesystem::path m_recording;
    std::filesystem::path m_out = m_folder.File(u"out");
};

TEST_F(EdfPlusCommand, ExportTakesChannelsByNumberOrTitleAsStoredOrAsShown) {
    const auto run = [&](const std::string& options) {
        const testing::Answer answer =
            testing::RunLine("export % % --force --type=edf+ " + options, {m_recording, m_out});
        EXPECT_EQ(answer.code, kDone) << answer.error;
        EXPECT_EQ(answer.error, "");
    };
    run("--channels=3,fp1 --first=101 --count=317");
    EXPECT_EQ(Samples(m_out, "1"), Samples(m_recording, "3 100 317"));
    EXPECT_EQ(Samples(m_out, "2"), Samples(m_recording, "1 100 317"));
    EXPECT_NE(testing::RunLine("info %", {m_out}).out.find("2011-04-04T12:57:03.000"), std::string::npos);
    const auto values = [](const std::filesystem::path& file, const std::string& line) {
        return testing::RunLine("values % 1 " + line, {file}).out;
    };
    run("--low-pass=20 --reference=average");
    EXPECT_EQ(values(m_out, "2"), values(m_recording, "2 --low-pass=20 --reference=average"));
    EXPECT_NE(testing::Contents(m_out).find("LP:20Hz "), std::string::npos);
    EXPECT_NE(testing::Contents(m_out).find("Reference: average "), std::string::npos);
    run("--montage=F7-Fp1 --channels=F7-Fp1");
    EXPECT_EQ(values(m_out, "1"), values(m_recording, "1 --montage=F7-Fp1"));
}

TEST_F(EdfPlusCommand, WhatOtherTypesDoNotTakeIsAMistake) {
    for (const std::string option : {"--channels=1", "--low-pass=20", "--both-ways", "--montage=Fp1-F7"}) {
        const std::string name = option.substr(0, option.find('='));
        ExpectRefused(kUsage, "export % % --type=edf " + option, "'" + name + "' needs --type=edf+");
        ExpectRefused(kUsage, "split % --folder % --size=100 " + option, "'" + name + "' needs --type=edf+");
    }
    ExpectRefused(kUsage, "split % --folder % --size=100 --type=wav", "'wav' is not edf+");
    ExpectRefused(kUsage, "export % % --type=edf+ --channels=1,Fp1", "'Fp1' is given twice");
    ExpectRefused(kRefused, "export % % --type=edf+ --channels=4", "channel 4 (channels 1 to 3)");
    ExpectRefused(kRefused, "export % % --type=edf+ --channels=Cz", "Cz");
    ExpectRefused(kRefused, "export % % --type=edf+ --montage=Fp1-F7 --channels=2", "channels 1 to 1");
    ExpectRefused(kUsage, "export % % --type=edf+ --notch=50", "50 Hz");
}

TEST_F(EdfPlusCommand, SplitWritesPiecesThatBeginWhereTheyDo) {
    const testing::Answer answer = testing::RunLine(
        "split % --folder % --size=300 --names=samples --base=p --type=edf+ --channels=2", {m_recording, m_out});
    EXPECT_EQ(answer.out, "p_0000-0299.edf\t1\t300\np_0300-0599.edf\t301\t300\np_0600-0899.edf\t601\t300\n")
        << answer.error;
    EXPECT_EQ(Samples(m_out / "p_0300-0599.edf", "1"), Samples(m_recording, "2 300 300"));
    EXPECT_NE(testing::RunLine("info %", {m_out / "p_0600-0899.edf"}).out.find("12:57:08.000"), std::string::npos);
}

}  // namespace
}  // namespace quillon::cli
