#include <gmock/gmock.h>

#include <bit>
#include <functional>

#include "EvokedRecording.h"
#include "base/DateTime.h"
#include "norvik/BlockChecks.h"
#include "norvik/MemoryFolder.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::string Header(const std::string& common, const std::string& format, std::size_t channels) {
    std::string text =
        "Brain Vision Data Exchange Header File Version 2.0\n; comment\n[Common Infos]\nDataFile=a.eeg\n"
        "MarkerFile=a.vmrk\nSamplingInterval=4000\nNumberOfChannels=" +
        std::to_string(channels) + "\n" + common + "\n[Binary Infos]\nBinaryFormat=" + format +
        "\n[ASCII Infos]\nDecimalSymbol=,\nSkipLines=1\nSkipColumns=1\n[Channel Infos]\n";
    for (std::size_t at = 1; at <= channels; ++at)
        text += "Ch" + std::to_string(at) + "=C" + std::to_string(at) + ",,0." + std::to_string(at) + ",mV\n";
    return text + "[Comment]\nCh1=no,,channel\n[Common Infos]\nNumberOfChannels=x\n";
}

/// Two channels of three samples: 1 2 3 and 10 20 30.
Folder Small() {
    Folder folder;
    folder.files[u"a.vhdr"] = Header("", "INT_16", 2);
    folder.files[u"a.eeg"] = FileBytes().Codes({1, 10, 2, 20, 3, 30}).Get();
    folder.files[u"a.vmrk"] = "[Marker Infos]\n";
    return folder;
}

struct Case {
    const char* format;
    bool vectorized;
    bool bigEndian;
};

class BrainVisionSamples : public ::testing::TestWithParam<Case> {};

TEST_P(BrainVisionSamples, AreReadAlikeByEveryCallAndToTheNearestCode) {
    const auto& [name, vectorized, bigEndian] = GetParam();
    const std::string format = name;
    constexpr std::size_t channels = 35;
    constexpr std::size_t count = 9001;
    const std::size_t width = format.ends_with("16") ? 2 : format.ends_with("64") ? 8 : 4;
    std::mt19937_64 random(5);
    std::vector<std::vector<double>> values(channels);  // as they are stored
    std::vector<std::string> stored(channels);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (std::size_t at = 0; at < count; ++at) {
            const std::uint64_t bits = random();
            const double real = std::ldexp(static_cast<double>(static_cast<std::int32_t>(bits)), -12);
            std::uint64_t number = bits & (width == 2 ? 0xFFFFU : 0xFFFFFFFFU);
            double value = format == "UINT_16"  ? static_cast<double>(number)
                           : format == "INT_16" ? static_cast<double>(static_cast<std::int16_t>(number))
                                                : static_cast<double>(static_cast<std::int32_t>(number));
            if (format == "IEEE_FLOAT_32") number = std::bit_cast<std::uint32_t>(static_cast<float>(real));
            if (format == "IEEE_FLOAT_64") number = std::bit_cast<std::uint64_t>(real);
            if (format.starts_with("IEEE")) value = real;
            std::string bytes = FileBytes().Number(number, width).Get();
            if (bigEndian) std::reverse(bytes.begin(), bytes.end());
            values[channel].push_back(value);
            stored[channel] += bytes;
        }
    }
    Folder folder;
    const std::string orientation = vectorized ? "VECTORIZED" : "MULTIPLEXED";
    folder.files[u"a.vhdr"] = Header("DataOrientation=" + orientation,
                                     format + "\nUseBigEndianOrder=" + (bigEndian ? "YES" : "NO"), channels);
    std::string& data = folder.files[u"a.eeg"];
    for (std::size_t channel = 0; vectorized && channel < channels; ++channel) data += stored[channel];
    for (std::size_t at = 0; !vectorized && at < count; ++at)
        for (std::size_t channel = 0; channel < channels; ++channel) data += stored[channel].substr(at * width, width);

    const RecordingContent content = folder.Read();
    ASSERT_EQ(content.blocks.size(), 2U);
    EXPECT_EQ(content.blocks[1]->Title(), u"33-35");
    std::size_t ordinal = 0;
    for (const auto& block : content.blocks) {
        std::vector<Codes> codes;
        for (std::int16_t channel = 1; channel <= block->ChannelCount(); ++channel, ++ordinal) {
            codes.push_back(AllCodes(*block, channel));
            ASSERT_EQ(codes.back().size(), count);
            const double resolution = std::stod("0." + std::to_string(ordinal + 1));
            const double step = static_cast<double>(block->ChannelScale(channel));
            for (std::size_t at = 0; at < count; ++at) {
                const double read = codes.back()[at] * step + static_cast<double>(block->ChannelOffset(channel));
                const double exact = values[ordinal][at] * resolution;
                ASSERT_NEAR(read, exact, width == 2 ? std::fabs(exact) * 1e-6 + step * 1e-2 : 0.51 * step) << at;
            }
            EXPECT_TRUE(width != 2 || block->ChannelScale(channel) == static_cast<float>(resolution));
        }
        ExpectReads(*block, codes);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, BrainVisionSamples,
                         ::testing::Values(Case{"INT_16", false, false}, Case{"INT_16", true, true},
                                           Case{"UINT_16", false, true}, Case{"UINT_16", true, false},
                                           Case{"INT_32", false, false}, Case{"INT_32", true, false},
                                           Case{"IEEE_FLOAT_32", false, true}, Case{"IEEE_FLOAT_32", true, false},
                                           Case{"IEEE_FLOAT_64", true, true}, Case{"IEEE_FLOAT_64", false, false}));

/// "1 2 3|10 20 30": the values of every channel of a block.
std::string Values(FileBlock& block) {
    block.Prepare();
    std::string text;
    std::vector<float> values(static_cast<std::size_t>(block.SampleCount()));
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        block.ReadValues(channel, 0, block.SampleCount(), values.data());
        for (const float value : values)
            text += Utf8(ShortestDecimal(std::nearbyint(static_cast<double>(value) * 1000.0) / 1000.0)) + " ";
        text.back() = '|';
    }
    return text;
}

TEST(BrainVisionReader, TextIsReadInBothOrientationsUpToADamagedLine) {
    Folder folder = Small();
    const auto read = [&](const std::string& orientation, const std::string& data) {
        folder.files[u"a.vhdr"] = Header("DataFormat=ASCII\nDataOrientation=" + orientation, "", 2);
        folder.files[u"a.eeg"] = data;
        const std::string refused = folder.Refused();
        return refused.starts_with("read: ") ? Values(*folder.Read().blocks.front()) : refused;
    };
    EXPECT_EQ(read("MULTIPLEXED", "C1 C2\r\n0 1,5\t-20\r\n\r\n4 +2 3e1\r\n"), "0.15 0.2|-4 6|");
    EXPECT_EQ(read("MULTIPLEXED", "C1 C2\n0;1;20\n4;2;-30"), "0.1 0.2|4 -6|");
    EXPECT_EQ(read("VECTORIZED", "\nC1 1,25 2 3\nC2 10 20\n"), "0.125 0.2|2 4|") << "as far as both reach";
    EXPECT_EQ(read("MULTIPLEXED", "\n0 1 2\n0 3\n0 5 6\n"), "0.1|0.4|");
    EXPECT_THAT(Utf8(folder.Read().info.english), HasSubstr("line 3 of the samples: 1 numbers of 2"));
    EXPECT_THAT(read("MULTIPLEXED", "\n0 1 x\n"), HasSubstr("line 2 of the samples: 'x' is no number"));
    EXPECT_THAT(read("VECTORIZED", "\nC1 1 2 3\n"), HasSubstr("1 lines of samples of 2"));
    EXPECT_THAT(read("MULTIPLEXED", "\n0 1 " + std::string(100, '9')), HasSubstr("is no number"));

    // More than a piece of 256 KiB: every number as it was written, through every call.
    std::mt19937 random(3);
    std::vector<Codes> codes(2);
    std::string lines = "head\n";
    for (int at = 0; at < 40000; ++at) {
        lines += std::to_string(at);
        for (Codes& channel : codes) {
            channel.push_back(static_cast<std::int16_t>(random()));
            lines += " " + std::to_string(channel.back());
        }
        lines += "\n";
    }
    static_cast<void>(read("MULTIPLEXED", lines));
    ExpectReads(*folder.Read().blocks.front(), codes);
}

TEST(BrainVisionReader, HeadersOfOtherWritersAreUnderstood) {
    Folder folder = Small();
    std::string& header = folder.files[u"a.vhdr"];
    header = With(header, "Brain Vision Data Exchange Header File Version 2.0",
                  "\xEF\xBB\xBF"
                  "Brain Vision Data Exchange Header File, Version 1.0\r");
    header = With(header, "[Common Infos]", "[Common infos]\r\n Data orientation = VECTORIZED \nunderstood=no");
    header = With(header, "Ch1=C1,,0.1,mV", "ch1 = F\\1z , Cz ,,\nCh1=F\\1z,Cz,,,0,x");
    header = With(header, "C2,,0.2,mV", ",,0,\xB5V");
    const RecordingContent content = folder.Read();
    FileBlock& block = *content.blocks.front();
    EXPECT_EQ(content.format, u"BrainVision");
    EXPECT_THAT(Utf8(content.info.english), HasSubstr("BrainVision 1.0 (INT_16, multiplexed), 2 channels at 250 Hz"));
    EXPECT_THAT(Utf8(content.info.english), HasSubstr("no usable resolution in some channels, first in Ch2"));
    EXPECT_EQ(Values(block), "1 2 3|10 20 30|");
    EXPECT_EQ(block.ChannelTitle(1), u"F,z-Cz");
    EXPECT_EQ(block.ChannelTitle(2), u"Ch 2");
    EXPECT_EQ(block.ChannelUnit(1), u"\u00B5V");
    EXPECT_EQ(block.ChannelUnit(2), u"\u00B5V");

    // The amplifier's variant holds a number more in every frame.
    header = With(With(header, "Exchange ", ""), "Data Header", "V-Amp Data Header");
    folder.files[u"a.eeg"] = FileBytes().Codes({1, 10, 99, 2, 20, 99}).Get();
    EXPECT_EQ(Values(*folder.Read().blocks.front()), "1 2|10 20|");
}

TEST(BrainVisionReader, MarkersBecomeMarksStartsAndStretches) {
    Folder folder;
    folder.files[u"a.vhdr"] = Header("", "INT_16", 1);
    folder.files[u"a.eeg"] = std::string(2000, '\1');  // 4 s
    std::string& markers = folder.files[u"a.vmrk"];
    markers =
        "[Marker Infos]\n; comment\nMk1=New Segment,,1,1,0,20240229235959500000\nMk7=Stimulus,S  1,11,1,0\n\n"
        "Mk3=Comment,a\\1b \xE9,5,50,1\nMk4=Response,,11,0,0,,extra,fields\nMk5=Stimulus,late,1001,1,0\nMk6=x,y,0,1,0\n"
        "Mk8=New Segment,,251,1,0,20240301000000500000\n"   // a second of samples later: no gap
        "Mk9=New Segment,,501,1,0,20240301000000900000\n"   // earlier than its samples: a bad clock
        "Mk10=New Segment,,751,1,0,20240301000004500000\n"  // two seconds were not recorded
        "Mk11=New Segment,,901,1,0,00000000000304120000\n"  // no date
        "Mk12=Stimulus,end,1000,1,0\n";
    const RecordingContent content = folder.Read();
    EXPECT_THAT(Utf8(content.info.english), HasSubstr("2 markers outside the samples left out"));
    ASSERT_EQ(content.blocks.size(), 3U);
    FileBlock& first = *content.blocks[0];
    EXPECT_THAT(Marks(first), ElementsAre("4 Comment: a,b \xC3\xA9@@C1", "10 S  1", "10 Response", "250 New Segment",
                                          "500 New Segment"));
    EXPECT_EQ(first.MarkDuration(1), 0.2);
    EXPECT_EQ(first.MarkDuration(2), 0.0);
    EXPECT_THAT(Marks(*content.blocks[2]), ElementsAre("99 end"));
    EXPECT_EQ(Iso8601(first.StartTime()), "2024-02-29T23:59:59.500");
    EXPECT_EQ(first.SampleCount(), 750);
    EXPECT_EQ(Iso8601(content.blocks[1]->StartTime()), "2024-03-01T00:00:04.500");
    EXPECT_EQ(Iso8601(content.blocks[2]->StartTime()), "2024-03-01T00:00:05.100") << "where the samples before it end";

    // Segments of the header, each a stretch, in both orientations.
    markers = "[Marker Infos]\nMk1=New Segment,,1,1,0,20240301000000000000\nMk2=Stimulus,S,402,1,0\n";
    for (const std::string orientation : {"MULTIPLEXED", "VECTORIZED"}) {
        folder.files[u"a.vhdr"] =
            Header("SegmentationType=MARKERBASED\nSegmentDataPoints=400\nDataOrientation=" + orientation, "INT_16", 2);
        FileBytes bytes;
        for (std::int16_t at = 0; at < 2000; ++at)
            bytes.Codes({static_cast<std::int16_t>(orientation[0] == 'V' ? at : at / 2 + at % 2 * 1000)});
        folder.files[u"a.eeg"] = bytes.Get();
        const RecordingContent segments = folder.Read();
        ASSERT_EQ(segments.blocks.size(), 3U);
        EXPECT_EQ(segments.blocks[1]->Title(), u"2/3");
        EXPECT_THAT(Marks(*segments.blocks[1]), ElementsAre("1 S"));
        EXPECT_EQ(AllCodes(*segments.blocks[1], 2).front(), 1400);
        EXPECT_EQ(AllCodes(*segments.blocks[2], 2).back(), 1999);
        EXPECT_EQ(segments.blocks[2]->SampleCount(), 200);
        EXPECT_EQ(Iso8601(segments.blocks[2]->StartTime()), "2024-03-01T00:00:03.200");
    }
}

TEST(BrainVisionReader, SingleDefectsAreRefusedWithTheirPlace) {
    const std::string good = Small().files[u"a.vhdr"];
    const std::vector<std::array<std::string, 3>> defects{
        {"Data Exchange", "Something", "read"},
        {"Header File", "File", "the first line is not that of a BrainVision header"},
        {"SamplingInterval=4000", "SamplingInterval=0", "line 6: SamplingInterval '0'"},
        {"SamplingInterval=4000\n", "", "[Common Infos] has no SamplingInterval"},
        {"NumberOfChannels=2", "NumberOfChannels=0", "line 7: NumberOfChannels '0'"},
        {"NumberOfChannels=2", "NumberOfChannels=-1", "NumberOfChannels '-1'"},
        {"NumberOfChannels=2", "NumberOfChannels=99999999999999999999", "NumberOfChannels '9999"},
        {"NumberOfChannels=2", "NumberOfChannels=3", "[Channel Infos] has no Ch3"},
        {"NumberOfChannels=2", "NumberOfChannels=2\nDataFormat=BITS", "line 8: DataFormat 'BITS'"},
        {"NumberOfChannels=2", "NumberOfChannels=2\nDataOrientation=ROWS", "line 8: DataOrientation 'ROWS'"},
        {"NumberOfChannels=2", "NumberOfChannels=2\nDataType=FREQUENCYDOMAIN", "DataType 'FREQUENCYDOMAIN'"},
        {"BinaryFormat=INT_16", "BinaryFormat=INT_12", "BinaryFormat 'INT_12'"},
        {"0.2,mV", "x,mV", "Ch2: resolution 'x'"},
        {"DataFile=a.eeg\n", "", "[Common Infos] has no DataFile"},
        {"NumberOfChannels=2", "NumberOfChannels=2\nDataFormat=ASCII", "line 2 of the samples"},
    };
    for (const auto& [from, to, part] : defects) {
        Folder folder = Small();
        folder.files[u"a.vhdr"] = With(good, from, to);
        if (part.starts_with("line 2")) folder.files[u"a.eeg"] = "\n0 1 2 3\n";
        EXPECT_THAT(folder.Refused(), HasSubstr(part)) << to;
    }
    Folder folder = Small();
    folder.files[u"a.eeg"].resize(3);
    EXPECT_THAT(folder.Refused(), HasSubstr("no whole sample of every channel: 3 bytes of 4"));
    folder = Small();
    folder.files[u"a.vhdr"] = With(good, "NumberOfChannels=2", "NumberOfChannels=2\nDataPoints=64");
    EXPECT_THAT(folder.Refused(), HasSubstr("cut short: 3 of 64 samples")) << "the size decides";
    folder.files[u"a.vhdr"] =
        With(With(good, "NumberOfChannels=2", "NumberOfChannels=2\nDataFormat=ASCII"), "=,", "=;");
    EXPECT_THAT(folder.Refused(), HasSubstr("DecimalSymbol ';'"));

    // Of channels that lie one after the other, only the header knows the length where the size does not fit.
    folder = Small();
    folder.files[u"a.eeg"] = FileBytes().Codes({1, 2, 3, 10, 20}).Get();
    const auto vectorized = [&](const std::string& points) {
        folder.files[u"a.vhdr"] =
            With(good, "NumberOfChannels=2", "NumberOfChannels=2\nDataOrientation=VECTORIZED\n" + points);
        return folder.Refused();
    };
    EXPECT_THAT(vectorized(""), HasSubstr("10 bytes of samples are not 2 channels of equal length"));
    EXPECT_THAT(vectorized("DataPoints=9223372036854775807"), HasSubstr("not 2 channels of equal length"));
    EXPECT_THAT(vectorized("DataPoints=3"), HasSubstr("cut short: 2 of 3 samples"));
    EXPECT_EQ(Values(*folder.Read().blocks.front()), "0.1 0.2|2 4|");
    folder.files[u"a.eeg"] = FileBytes().Codes({1, 2, 3, 4, 5, 10, 20, 30}).Get();
    EXPECT_THAT(vectorized("DataPoints=5"), HasSubstr("cut short: 3 of 5 samples")) << "a size that fits by chance";
    EXPECT_EQ(Values(*folder.Read().blocks.front()), "0.1 0.2 0.3|2 4 6|");
    EXPECT_THAT(vectorized("DataPoints=64"), HasSubstr("cut short: 4 of 64 samples")) << "a wrong number";
    EXPECT_EQ(Values(*folder.Read().blocks.front()), "0.1 0.2 0.3 0.4|1 2 4 6|");
}

TEST(BrainVisionReader, FilesThatWereRenamedAreFoundAndNoneOutsideTheFolderIsAsked) {
    for (const std::string name : {"../a.eeg", "..\\..\\x", "/etc/passwd", "C:\\Windows\\x.eeg", "\\\\host\\share\\x",
                                   "CON", "nul.eeg", "a:b", ".."}) {
        Folder folder = Small();
        folder.files[u"a.vhdr"] = With(folder.files[u"a.vhdr"], "DataFile=a.eeg", "DataFile=" + name);
        folder.files[u"a.vhdr"] = With(folder.files[u"a.vhdr"], "MarkerFile=a.vmrk", "MarkerFile=" + name);
        EXPECT_EQ(Values(*folder.Read().blocks.front()), "0.1 0.2 0.3|2 4 6|") << name;
        for (const std::u16string& asked : folder.asked) EXPECT_TRUE(IsPlainFileName(asked)) << Utf8(asked);
        folder.files.erase(u"a.eeg");
        EXPECT_THAT(folder.Refused(), HasSubstr("the header names the data file '")) << name;
    }
    Folder folder = Small();
    folder.files[u"a.vhdr"] = With(folder.files[u"a.vhdr"], "DataFile=a.eeg", "DataFile=old.dat");
    folder.files[u"a.vhdr"] = With(folder.files[u"a.vhdr"], "MarkerFile=a.vmrk", "MarkerFile=$b.mrk");
    EXPECT_THAT(folder.Refused(), HasSubstr("a.eeg read instead of 'old.dat'; a.vmrk read instead of 'a.mrk'"));
    folder.files.erase(u"a.vmrk");
    EXPECT_THAT(folder.Refused(), HasSubstr("the marker file 'a.mrk' is not here"));
}

TEST(BrainVisionReader, AnyOfTheFilesOpensTheRecording) {
    Folder folder = Small();
    EXPECT_EQ(Values(*folder.Read(u"a.eeg").blocks.front()), "0.1 0.2 0.3|2 4 6|");
    EXPECT_EQ(folder.Read(u"a.vmrk").blocks.size(), 1U);
    folder.files[u"a.vhdr"] = With(folder.files[u"a.vhdr"], "NumberOfChannels=2", "NumberOfChannels=x");
    EXPECT_THAT(folder.Refused(u"a.eeg"), HasSubstr("a.vhdr: line 7: NumberOfChannels 'x'"));
    folder.files.erase(u"a.vhdr");
    EXPECT_EQ(folder.Refused(u"a.eeg"), "part of a recording whose header is not beside it: a.vhdr, a.ahdr");
}

TEST(BrainVisionReader, TheSampleComesBackAsItWasMade) {
    const samples::BrainVisionFiles files = samples::EvokedFiles("b");
    const Folder folder{{{u"b.vhdr", files.header}, {u"b.eeg", files.samples}, {u"b.vmrk", files.markers}}, {}};
    const RecordingContent content = folder.Read(u"b.vhdr");
    EXPECT_EQ(content.info.english, u"BrainVision 1.0 (INT_16, multiplexed), 5 channels at 500 Hz, 30000 samples");
    FileBlock& block = *content.blocks.front();
    block.Prepare();
    Codes frames(5 * 30000);
    block.ReadFrames(0, 30000, frames.data());
    EXPECT_EQ(FileBytes().Codes(frames).Get(), files.samples);
    EXPECT_EQ(block.ChannelUnit(5), u"\u00B5V");
    EXPECT_EQ(Iso8601(block.StartTime()), "2011-04-04T12:57:02.000");
    EXPECT_EQ(static_cast<std::size_t>(block.MarkCount()) + 1,
              static_cast<std::size_t>(std::count(files.markers.begin(), files.markers.end(), '=')) - 2);
}

}  // namespace
}  // namespace quillon
