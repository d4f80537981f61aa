#include <gmock/gmock.h>

#include <map>

#include "HolterRecording.h"
#include "base/DateTime.h"
#include "norvik/BlockChecks.h"
#include "norvik/MemoryFolder.h"
#include "norvik/WfdbBuilder.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

Folder OpenedBy(const std::string& header) {
    Folder folder;
    folder.header = u"a.hea";
    folder.files[u"a.hea"] = header;
    return folder;
}

/// Bits of the format's samples.
int BitsOf(int format) {
    const std::map<int, int> bits{{8, 7},    {24, 24},  {32, 32}, {80, 8},  {212, 12},
                                  {310, 10}, {311, 10}, {508, 8}, {524, 24}};
    const auto found = bits.find(format);
    return found == bits.end() ? 16 : found->second;
}

/// Fills the signals, and writes them into a folder whose header gives signal n the gain n + 2 and baseline 5.
Folder Write(std::vector<WfdbTestSignal>& signals, std::size_t frames) {
    std::mt19937 random(static_cast<unsigned>(frames));
    std::map<std::string, std::vector<const WfdbTestSignal*>> files;
    std::string header = "# first\n\na " + std::to_string(signals.size()) + " 100 " + std::to_string(frames) + "\r\n";
    int number = 1;
    for (WfdbTestSignal& signal : signals) {
        std::int32_t sample = 7;
        for (std::size_t at = 0; at < frames * signal.perFrame; ++at) {
            const std::int32_t noise = static_cast<std::int32_t>(random()) >> (32 - BitsOf(signal.format));
            // Sums that stay within 16 bits.
            const bool back = (noise > 0) == (sample > 0);
            sample = signal.format == 8 ? sample + (back ? -noise : noise) : noise;
            signal.samples.push_back(sample);
        }
        files[signal.file].push_back(&signal);
        header += signal.file + "\t" + std::to_string(signal.format);
        if (signal.perFrame != 1) header += "x" + std::to_string(signal.perFrame);
        header +=
            "+3  " + std::to_string(number + 1) + "(5)/uV 12 0 7 0 0 Signal  " + std::to_string(number) + " \n# -\n";
        ++number;
    }
    Folder folder = OpenedBy(header);
    for (const auto& [name, of] : files) folder.files[FromLatin1(name)] = "+++" + WfdbFile(of, frames);
    return folder;
}

/// Every signal comes back, by every way of reading it.
void ExpectSignals(const Folder& folder, const std::vector<WfdbTestSignal>& signals) {
    const RecordingContent content = folder.Read();
    std::map<std::int16_t, std::size_t> seen;
    for (const auto& block : content.blocks) {
        std::vector<Codes> codes;
        for (std::int16_t channel = 1; channel <= block->ChannelCount(); ++channel) {
            const auto ordinal = static_cast<std::size_t>(block->InputNumber(channel) - 1);
            const WfdbTestSignal& signal = signals.at(ordinal);
            ++seen[block->InputNumber(channel)];
            SCOPED_TRACE(::testing::Message() << "signal from 0 " << ordinal << ", format " << signal.format);
            EXPECT_EQ(Utf8(block->ChannelTitle(channel)), "Signal  " + std::to_string(ordinal + 1));
            EXPECT_EQ(block->ChannelUnit(channel), u"uV");
            EXPECT_EQ(block->SampleRate(), 100.0 * static_cast<double>(signal.perFrame));
            codes.push_back(AllCodes(*block, channel));
            ASSERT_EQ(codes.back().size(), signal.samples.size());
            const double gain = static_cast<double>(ordinal) + 2.0;
            const double step = static_cast<double>(block->ChannelScale(channel));
            const bool constant = std::ranges::count(signal.samples, signal.samples[0]) == std::ssize(signal.samples);
            const bool exact = BitsOf(signal.format) <= 16 && !constant;
            EXPECT_TRUE(!exact || block->ChannelScale(channel) == static_cast<float>(1.0 / gain));
            for (std::size_t at = 0; at < signal.samples.size(); ++at) {
                if (exact) {
                    ASSERT_EQ(codes.back()[at], signal.samples[at]) << at;
                } else {
                    const double value = codes.back()[at] * step + static_cast<double>(block->ChannelOffset(channel));
                    const double stored = (signal.samples[at] - 5.0) / gain;
                    ASSERT_NEAR(value, stored, 0.51 * step + std::fabs(stored) * 1e-7) << at;
                }
            }
        }
        if (codes[0].size() < 10000) {
            ExpectReads(*block, codes);
            continue;
        }
        // Of many, those in front again, behind which the last ones have led.
        Codes again(3000);
        block->ReadCodes(1, 500, 3000, again.data());
        EXPECT_TRUE(std::equal(again.begin(), again.end(), codes[0].begin() + 500));
    }
    EXPECT_EQ(seen.size(), signals.size());
}

class WfdbFormats : public ::testing::TestWithParam<int> {};

TEST_P(WfdbFormats, AreReadAlikeByEveryCallInEveryLayout) {
    const int format = GetParam();
    // Frames of one file, of more than a piece; of other lengths modulo every group of samples.
    for (const std::size_t frames : {66001U, 1018U, 1019U, 1U}) {
        SCOPED_TRACE(frames);
        std::vector<WfdbTestSignal> plain{{"a.dat", format}, {"a.dat", format}};
        ExpectSignals(Write(plain, frames), plain);
        if (frames > 2000) continue;
        std::vector<WfdbTestSignal> one{{"a.dat", format}};
        ExpectSignals(Write(one, frames), one);
        // Several numbers of samples per frame, files whose lines do not follow each other, and another format.
        const bool flac = format > 500;
        std::vector<WfdbTestSignal> mixed{{"a.dat", format, 3}, {"b.dat", 16, 3}, {"a.dat", format, flac ? 3U : 1U},
                                          {"c.dat", 80, 1},     {"b.dat", 16, 2}, {"a.dat", format, 3}};
        const Folder folder = Write(mixed, frames);
        ExpectSignals(folder, mixed);
        const RecordingContent content = folder.Read();
        EXPECT_EQ(content.blocks.size(), 3U);
        EXPECT_EQ(content.blocks.front()->Title(), u"300 Hz");
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, WfdbFormats,
                         ::testing::Values(8, 16, 24, 32, 61, 80, 160, 212, 310, 311, 508, 516, 524));

TEST(WfdbReader, ManySignalsFormSeveralBlocks) {
    std::vector<WfdbTestSignal> signals(35, {"a.dat", 212});
    const Folder folder = Write(signals, 500);
    ExpectSignals(folder, signals);
    EXPECT_EQ(folder.Read().blocks.at(1)->Title(), u"33-35");
    std::vector<WfdbTestSignal> files;
    for (int file = 0; file < 40; ++file) files.push_back({"f" + std::to_string(file), file % 2 == 0 ? 16 : 32});
    ExpectSignals(Write(files, 300), files);
}

/// Two signals of three samples: 1 2 3 and 10 20 30.
Folder Small(const std::string& header = "a 2 250 3\na.dat 16\na.dat 16\n") {
    Folder folder = OpenedBy(header);
    folder.files[u"a.dat"] = FileBytes().Codes({1, 10, 2, 20, 3, 30}).Get();
    return folder;
}

/// "scale offset unit title" of every channel.
std::vector<std::string> Channels(FileBlock& block) {
    block.Prepare();
    std::vector<std::string> channels;
    const auto text = [](float number) { return Utf8(ShortestDecimal(static_cast<double>(number))) + " "; };
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        channels.push_back(text(block.ChannelScale(channel)) + text(block.ChannelOffset(channel)) +
                           Utf8(block.ChannelUnit(channel) + u" " + block.ChannelTitle(channel)));
    }
    return channels;
}

TEST(WfdbReader, FieldsOfSignalsAreUnderstoodAsTheirWritersMeantThem) {
    const auto channels = [](const std::string& line) {
        return Channels(*Small("a 2\n" + line + "\na.dat 16\n").Read().blocks.front())[0];
    };
    EXPECT_EQ(channels("a.dat 16"), "0.004999999888241291 0 mV record a, signal 0");
    EXPECT_EQ(channels("a.dat 16 0 12"), "0.004999999888241291 0 mV record a, signal 0");
    EXPECT_EQ(channels("a.dat 16 4 12 8 0 0 0 V 5"), "0.25 -2 mV V 5") << "the middle is the default of the baseline";
    EXPECT_EQ(channels("a.dat 16 4(-8)/NU 12 8 0 0 0 V"), "0.25 2  V");
    EXPECT_EQ(channels("a.dat 16 -1.6e+01(70000)/\xB5V/m 0 0 Title"), "-0.0625 4375 \xC2\xB5V/m Title");
    EXPECT_THAT(channels("a.dat 16 1e-300(3) 0 0 0 0 0 T"), HasSubstr(" mV T"));
    EXPECT_THAT(Small("a 1\na.dat 16 1e-300\n").Refused(), HasSubstr("gain '1e-300' taken as 200"));
    // A signal without samples is passed over, whatever its place.
    Folder folder =
        Small("a 3\na.dat 16\n~ 0\na.dat 16 200 12 0 0 0 0 last\n# 60 M\n#\n#  tape 3\nnot this\n# nor this\n");
    EXPECT_THAT(Channels(*folder.Read().blocks.front()), ElementsAre(HasSubstr("signal 0"), HasSubstr("last")));
    EXPECT_EQ(
        folder.Refused(),
        "read: WFDB, format 16, 2 channels at 250 Hz, 3 samples; start taken from the file's time; note: 60 M tape 3");
    EXPECT_THAT(Small("a 2\na.dat 16\na.dat 16:3\n").Refused(), HasSubstr("signal 2 is stored 3 samples late"));
    EXPECT_THAT(Small("a 2 250 9\na.dat 16\na.dat 16\n").Refused(), HasSubstr("cut short: 3 of 9 samples"));
    EXPECT_THAT(Small("a 2 250 2\na.dat 16\na.dat 16\n").Refused(), HasSubstr("at 250 Hz, 2 samples"));
}

TEST(WfdbReader, RatesAndDatesOfManyForms) {
    const auto block = [](const std::string& rest) {
        return Small("a 2 " + rest + "\na.dat 16\na.dat 16\n").Read().blocks.front();
    };
    EXPECT_EQ(block("0.0166666666667/125(7) 3")->SampleRate(), 0.0166666666667);
    EXPECT_EQ(block("1e3")->SampleRate(), 1000.0);
    const auto start = [&](const std::string& rest) { return Iso8601(block("250 3 " + rest)->StartTime()); };
    EXPECT_EQ(start("23:59:58.25 29/02/2024"), "2024-02-29T23:59:58.250");
    EXPECT_EQ(start("31:51.982"), "1899-12-30T00:31:51.982");
    EXPECT_EQ(start("7 1/2/1989"), "1989-02-01T00:00:07.000");
    for (const std::string odd : {"29-02-2024 23:59:58", "1:2:3:4", "12:00:00 31/02/2024", "12:00:00 2024", "x"}) {
        const Folder folder = Small("a 2 250 3 " + odd + "\na.dat 16\na.dat 16\n");
        EXPECT_THAT(folder.Refused(), HasSubstr("; start '" + odd)) << odd;
    }
}

TEST(WfdbReader, SingleDefectsAreRefusedWithTheirPlace) {
    const std::string good = "a 2 250 3\na.dat 16+0 200(0)/mV\na.dat 16\n";
    const std::vector<std::array<std::string, 3>> defects{
        {good, "# nothing\n", "no record line"},
        {"a 2", "a 0", "the record has no signals"},
        {"a 2", "a x", "line 1: number of signals 'x'"},
        {"a 2", "a 3", "3 signals are announced, lines for 2 follow"},
        {"a 2", "a 70000", "line 1: number of signals '70000'"},
        {"250", "0", "line 1: sampling rate '0'"},
        {"250", "-1", "line 1: sampling rate '-1'"},
        {"250", "inf", "line 1: sampling rate 'inf'"},
        {"16+0", "17", "format 17 in line 2 is not known"},
        {"16+0", "16x0", "line 2: format '16x0'"},
        {"16+0", "16x65535", "line 3: frames of more than 65535 samples"},
        {"16+0", "16x", "line 2: format '16x'"},
        {"16+0", "16+12", "line 2: byte 12, where samples are to begin, lies beyond the end of 'a.dat'"},
        {"16+0", "212", "lines 2 and 3 tell different formats of 'a.dat'"},
        {"16+0", "16x7", "'a.dat' holds no whole sample of every signal"},
        {"200(0)", "abc", "line 2: gain 'abc/mV'"},
        {"200(0)", "200(z)", "line 2: gain '200(z)/mV'"},
        {"a.dat 16+0", "b.dat 16", "names the file of samples 'b.dat', which cannot be opened in its folder: missing"},
        {"a.dat 16+0 200(0)/mV\na.dat 16", "~ 0\n~ 0", "no signal of the record has samples"},
        {"a.dat 16+0 200(0)/mV\na.dat 16", "a.dat 516\na.dat 516", "a.dat: no \"fLaC\" at byte 0"},
        {"a 2", "a/2 2", "line 2: number of samples '16+0'"},
        {"a 2", "a/0 2", "line 1: number of segments 'a/0'"},
        {good, "a/2 2\nx 3\ny 3\n", "no segment can be read; x.hea: missing"},
    };
    for (const auto& [from, to, part] : defects)
        EXPECT_THAT(Small(With(good, from, to)).Refused(), HasSubstr(part)) << to;

    Folder folder = Small("a 2\na.dat 524\na.dat 524\n");
    FlacBuilder flac{.channels = 2, .depth = 16};
    flac.Record(100);
    flac.Encode();
    folder.files[u"a.dat"] = flac.File();
    EXPECT_EQ(folder.Refused(), "'a.dat' holds 2 channels of 16 bits, the header tells of 2 of 24");
    folder.files[u"a.hea"] = "a 2\na.dat 516x2\na.dat 516\n";
    EXPECT_THAT(folder.Refused(), HasSubstr("lines 2 and 3 tell different formats"));
}

TEST(WfdbReader, FilesAreFoundInTheFolderAloneAndUnderTheHeadersOwnName) {
    for (const std::string name : {"../a.dat", "..\\..\\x", "/etc/passwd", "C:\\Windows\\x.dat", "\\\\host\\share\\x",
                                   "CON", "nul.dat", "a:b", ".."}) {
        const Folder folder = Small("a/1 2\n" + name + " 3\n");
        EXPECT_THAT(folder.Refused(), HasSubstr("no segment")) << name;
        const Folder data = Small("b 1\n" + name + " 16\n");
        EXPECT_THAT(data.Refused(), HasSubstr(name == "../a.dat" ? "read: " : "the header names the file")) << name;
        for (const Folder* tried : {&folder, &data})
            for (const std::u16string& asked : tried->asked) EXPECT_TRUE(IsPlainFileName(asked)) << Utf8(asked);
    }
    Folder folder = Small("old 2\nold.dat 16\nold.dat 16\n");
    EXPECT_THAT(folder.Refused(), HasSubstr("3 samples; a.dat read instead of 'old.dat'"));
    // Any of the files opens the record; where the header is missing, it is named.
    EXPECT_EQ(folder.Read(u"a.dat").format, u"WFDB");
    folder.files[u"a.atr"] = "some";
    EXPECT_EQ(folder.Read(u"a.atr").blocks.size(), 1U);
    folder.files.erase(u"a.hea");
    EXPECT_EQ(folder.Refused(u"a.atr"), "part of a recording whose header is not beside it: a.hea");
    EXPECT_THAT(folder.Refused(u"a.dat"), HasSubstr("a.vhdr, a.ahdr, a.hea"));
    // A header is known by its first lines, and numbers alone are none.
    folder.files[u"x.log"] = "# comment\n\na 2 360\na.dat 16 200\na.dat 16\n";
    EXPECT_EQ(folder.Read(u"x.log").format, u"WFDB");
    folder.files[u"x.log"] = "1 2\n3 16\n";
    EXPECT_THAT(folder.Refused(u"x.log"), HasSubstr("not a recording of a known format"));
}

TEST(WfdbReader, AnnotationsBecomeMarks) {
    // 3000 frames at 100 Hz, one signal at 400 Hz.
    Folder folder = OpenedBy("a 2 100\na.dat 16\na.dat 16x4\n");
    folder.files[u"a.dat"] = std::string(30000, '\1');
    const auto marks = [&](const WfdbAnnotationBytes& bytes, std::size_t block = 0) {
        folder.files[u"a.atr"] = bytes.Get();
        EXPECT_THAT(folder.Refused(), HasSubstr("; annotations of a.atr"));
        return Marks(*folder.Read().blocks.at(block));
    };
    WfdbAnnotationBytes plain;
    plain.Add(28, 18, "(N")
        .Add(1, 1023)
        .Add(60, 3)
        .Add(61, 1)
        .Add(62, 1023)
        .Add(63, 0)
        .Add(8, 0)
        .Add(22, 2, std::string("a\0b", 3));
    plain.Skip(1000).Skip(-1).Add(0, 500).Add(41, 1, "x y").Add(45, 1).Add(22, 0).Skip(-2000).Add(5, 0);
    plain.Skip(2000000000).Skip(2000000000).Skip(2000000000).Add(1, 1).Skip(-2000000000).Skip(-2000000000);
    plain.Skip(-2000000000).Add(15, 5);
    EXPECT_THAT(marks(plain), ElementsAre("18 + (N", "544 V", "550 [15]", "1041 N", "1041 A", "1043 a", "2543 r x y",
                                          "2544 [45]", "2544 \""));
    EXPECT_EQ(marks(plain, 1).at(1), "2176 V") << "at the rate of the block";

    WfdbAnnotationBytes own;
    own.Add(22, 0, "## time resolution: 1000").Add(22, 0, "## annotation type definitions");
    own.Add(22, 0, "10 X other").Add(22, 0, "45 CAL Calibration").Add(22, 0, "## end of definitions");
    own.Skip(-1).Add(0, 1).Add(22, 0, "3 is a note").Add(10, 1004).Add(45, 10).Add(1, 0);
    EXPECT_THAT(marks(own), ElementsAre("0 3 is a note", "100 X", "101 CAL", "101 N"));
    EXPECT_THAT(marks(own, 1), ElementsAre("0 3 is a note", "402 X", "406 CAL", "406 N"));

    // What does not end as it should is told, and the next annotator tried; the one that was opened is the first.
    const std::string whole = plain.Get();
    folder.files[u"a.qrs"] = own.Get();
    EXPECT_THAT(folder.Refused(u"a.qrs"), HasSubstr("; annotations of a.qrs"));
    EXPECT_THAT(folder.Refused(u"a.atr"), HasSubstr("; annotations of a.atr"));
    for (const std::string& damaged : {whole.substr(0, whole.size() - 2), whole + "x", whole.substr(0, 9),
                                       std::string("1"), std::string(), std::string(16, '\xFF')}) {
        folder.files[u"a.atr"] = damaged;
        EXPECT_THAT(folder.Refused(), HasSubstr("; annotations in a.atr not read; annotations of a.qrs"))
            << damaged.size();
    }
    folder.files[u"a.atr"] = whole + std::string(6, '\0');
    EXPECT_THAT(folder.Refused(), HasSubstr("annotations of a.atr"));
}

TEST(WfdbReader, SegmentsAreStretchesWithTheirOwnSignals) {
    Folder folder = OpenedBy("a/6 2 100 32 10:00 1/1/2020\nlayout 0\none 10\n~ 5\ntwo 7\n# ?\none 4\nthree 6\n");
    folder.files[u"layout.hea"] = "layout 2 100 0\n~ 0 200/mV 0 0 0 0 0 I\n~ 0 200/mV 0 0 0 0 0 II\n";
    folder.files[u"one.hea"] = "one 2 100 10\none.dat 16 10 0 0 0 0 0 I\none.dat 16x2 10 0 0 0 0 0 II\n";
    folder.files[u"two.hea"] = "two 1 100 99\ntwo.dat 80:3 20/V 0 0 0 0 0 II\n";
    for (std::int16_t at = 0; at < 30; ++at) folder.files[u"one.dat"] += FileBytes().Codes({at}).Get();
    folder.files[u"two.dat"] = "\x80\x81\x82\x83\x84";
    folder.files[u"a.atr"] = WfdbAnnotationBytes().Add(1, 0).Add(5, 9).Add(1, 3).Add(1, 4).Add(1, 3).Add(1, 4).Get();
    const std::string info = folder.Refused();
    EXPECT_THAT(info, HasSubstr("read: WFDB, 3 segments, 32 samples at 100 Hz"));
    EXPECT_THAT(info, HasSubstr("signal 1 is stored 3 samples late, and is shown so; "
                                "1 segments left out, first three.hea: missing; 1 segments cut short"));
    const RecordingContent content = folder.Read();
    ASSERT_EQ(content.blocks.size(), 5U);
    const auto titles = [&](std::size_t at) { return Utf8(content.blocks[at]->Title()); };
    EXPECT_EQ(titles(0) + "|" + titles(1) + "|" + titles(2) + "|" + titles(3),
              "2/6, 100 Hz|2/6, 200 Hz|4/6|5/6, 100 Hz");
    EXPECT_EQ(AllCodes(*content.blocks[1], 1),
              (Codes{1, 2, 4, 5, 7, 8, 10, 11, 13, 14, 16, 17, 19, 20, 22, 23, 25, 26, 28, 29}));
    EXPECT_EQ(AllCodes(*content.blocks[2], 1), (Codes{0, 1, 2, 3, 4}));
    EXPECT_EQ(AllCodes(*content.blocks[3], 1), (Codes{0, 3, 6, 9}));
    EXPECT_EQ(Channels(*content.blocks[2])[0], "0.05000000074505806 0 V II");
    EXPECT_EQ(content.blocks[2]->ChannelNumber(1), 1) << "as the layout numbers it";
    EXPECT_EQ(Iso8601(content.blocks[2]->StartTime()), "2020-01-01T00:10:00.150");
    EXPECT_THAT(Marks(*content.blocks[1]), ElementsAre("0 N", "18 V"));
    EXPECT_THAT(Marks(*content.blocks[2]), ElementsAre("1 N", "4 N")) << "without the one in the gap";
    EXPECT_THAT(Marks(*content.blocks[3]), ElementsAre("1 N"));

    // Of the same times as the other segments, though more files are open by turns.
    folder.files[u"three.hea"] = "three/1 1\none 3\n";
    EXPECT_THAT(folder.Refused(), HasSubstr("first three.hea: a segment that has segments itself"));
    folder.files[u"a.hea"] = "a/9 2\none 3\ntwo 3\n";
    EXPECT_THAT(folder.Refused(), HasSubstr("9 segments are announced, lines for 2 follow"));
}

TEST(WfdbReader, TheSampleComesBackAsItWasMade) {
    const samples::WfdbFiles files = samples::HolterFiles("a");
    Folder folder = OpenedBy(files.header);
    folder.files[u"a.dat"] = files.samples;
    folder.files[u"a.atr"] = files.annotations;
    EXPECT_EQ(folder.Refused(),
              "read: WFDB, format 212, 2 channels at 250 Hz, 150000 samples; annotations of a.atr; "
              "note: Simulated");
    const RecordingContent content = folder.Read();
    FileBlock& block = *content.blocks.front();
    const Codes first = AllCodes(block, 1);
    const Codes second = AllCodes(block, 2);
    std::vector<std::int32_t> samples;
    for (std::size_t at = 0; at < first.size(); ++at) {
        samples.push_back(first[at]);
        samples.push_back(second[at]);
    }
    EXPECT_EQ(WfdbBytes(212, samples), files.samples);
    EXPECT_EQ(Iso8601(block.StartTime()), "2011-04-04T08:30:00.000");
    // A wave stands out at every beat.
    for (const std::string& mark : Marks(block)) {
        const auto at = static_cast<std::size_t>(std::stoul(mark));
        const bool normal = mark.ends_with(" N") && at > 10;
        EXPECT_TRUE(!normal || first[at] > first[at - 10] + 100) << mark;
    }
}

TEST(WfdbReader, FewOfManyFilesAreOpenAtATime) {
    Folder folder = OpenedBy("a/50 1 100\n");
    for (int at = 0; at < 50; ++at) {
        const std::string name = "s" + std::to_string(at);
        folder.files[u"a.hea"] += name + " 3\n";
        folder.files[FromLatin1(name + ".hea")] = name + " 1 100 3\n" + name + ".dat 16\n";
        folder.files[FromLatin1(name + ".dat")] = FileBytes().Codes({static_cast<std::int16_t>(at), 2, 3}).Get();
    }
    int alive = 0;
    int most = 0;
    const Companions beside([&](const std::u16string& name, Bilingual&) -> std::shared_ptr<ByteSource> {
        if (!folder.files.contains(name)) return nullptr;
        most = std::max(most, ++alive);
        auto source = Folder::Source(folder.files[name]);
        return {source.get(), [source, &alive](ByteSource*) { --alive; }};
    });
    const RecordingContent content = ReadRecording({Folder::Source(folder.files[u"a.hea"]), u"a.hea", beside});
    ASSERT_EQ(content.blocks.size(), 50U);
    for (const int at : {0, 49, 0, 20, 1})
        EXPECT_EQ(AllCodes(*content.blocks[static_cast<std::size_t>(at)], 1).front(), at);
    EXPECT_LE(most, 18);
    folder.files.erase(u"s5.dat");
    EXPECT_THROW(AllCodes(*content.blocks[5], 1), ReadError);
}

}  // namespace
}  // namespace quillon
