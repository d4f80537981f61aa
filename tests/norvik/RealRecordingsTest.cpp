// Real files of many writers, each with what an independent program reads out of it beside it (NAME.ref.json).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/BlockChecks.h"
#include "norvik/RecordingLibrary.h"

namespace quillon {
namespace {

using nlohmann::json;
using testing::AllCodes;

const std::filesystem::path kRecordings = "../shared/recordings";

/// A channel of the recording; several blocks where the signal has gaps.
struct ReadSignal {
    std::vector<std::pair<std::shared_ptr<RecordingBlock>, std::int16_t>> parts;
};

/// Signals in their order in the file. A block's channels are numbered by ordinal modulo 32; inputs count on from 1.
std::map<int, ReadSignal> SignalsOf(Recording& recording) {
    std::map<int, ReadSignal> signals;
    for (std::int16_t number = 1; number <= recording.BlockCount(); ++number) {
        const auto block = recording.GetBlock(number);
        for (std::int16_t channel = 1; channel <= block->ChannelCount(); ++channel) {
            const int ordinal = block->InputNumber(channel) - 1;
            EXPECT_EQ(block->ChannelNumber(channel), ordinal % 32);
            signals[ordinal].parts.emplace_back(block, channel);
        }
    }
    return signals;
}

class Crc32 {
  public:
    void Add(std::uint8_t byte) {
        m_state ^= byte;
        for (int bit = 0; bit < 8; ++bit) m_state = (m_state >> 1) ^ ((m_state & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    [[nodiscard]] std::string Hexadecimal() const {
        char text[16];
        std::snprintf(text, sizeof text, "%08x", static_cast<unsigned>(~m_state));
        return text;
    }

  private:
    std::uint32_t m_state = 0xFFFFFFFFU;
};

std::string Crc32OfCodes(const std::vector<std::int16_t>& codes) {
    Crc32 sum;
    for (const std::int16_t code : codes) {
        sum.Add(static_cast<std::uint8_t>(code & 0xFF));
        sum.Add(static_cast<std::uint8_t>((code >> 8) & 0xFF));
    }
    return sum.Hexadecimal();
}

std::int64_t SampleCount(const ReadSignal& signal) {
    std::int64_t samples = 0;
    for (const auto& [block, channel] : signal.parts) samples += block->SampleCount();
    return samples;
}

void CompareCodes(const json& expected, const ReadSignal& signal) {
    std::vector<std::int16_t> codes;
    for (const auto& [block, channel] : signal.parts) {
        const auto part = AllCodes(*block, channel);
        codes.insert(codes.end(), part.begin(), part.end());
    }
    EXPECT_EQ(Crc32OfCodes(codes), expected.at("crc32_int16le").get<std::string>());
}

/// Values of samples wider than 16 bits, at the reference's positions, within one step.
void CompareValues(const json& expected, const ReadSignal& signal) {
    const auto& positions = expected.at("positions");
    const auto& physical = expected.at("physical");
    ASSERT_EQ(signal.parts.size(), 1U);
    const auto& [block, channel] = signal.parts.front();
    for (std::size_t at = 0; at < positions.size(); ++at) {
        float value = 0.0F;
        block->ReadValues(channel, positions[at].get<std::int32_t>(), 1, &value);
        EXPECT_NEAR(static_cast<double>(value), physical[at].get<double>(),
                    std::abs(static_cast<double>(block->ChannelScale(channel))));
    }
}

void CompareSignal(const json& expected, const ReadSignal& signal, const json& file) {
    const bool wave = file.contains("container");
    ASSERT_FALSE(signal.parts.empty());
    const auto& [block, channel] = signal.parts.front();
    EXPECT_EQ(Utf8(block->ChannelTitle(channel)), expected.at("label").get<std::string>());
    EXPECT_EQ(Utf8(block->ChannelUnit(channel)), wave ? "FS" : expected.at("unit").get<std::string>());
    EXPECT_NEAR(block->SampleRate(), expected.at("rate_hz").get<double>(), 1e-9 * block->SampleRate());
    EXPECT_EQ(SampleCount(signal), expected.at("samples").get<std::int64_t>());
    const bool narrow = expected.contains("crc32_int16le");
    if (narrow) CompareCodes(expected, signal);
    if (narrow && !wave) {
        EXPECT_EQ(block->ChannelScale(channel), expected.at("scale_K").get<float>());
        EXPECT_EQ(block->ChannelOffset(channel), expected.at("offset_B").get<float>());
    }
    if (narrow && wave) {
        EXPECT_EQ(block->ChannelScale(channel), file.at("bits_per_sample") == 8 ? 1.0F / 128 : 1.0F / 32768);
    }
    if (!narrow && expected.contains("physical")) CompareValues(expected, signal);
}

using Marks = std::vector<std::pair<std::int64_t, std::string>>;

Marks MarksOf(RecordingBlock& block) {
    Marks marks;
    for (int mark = 1; mark <= block.MarkCount(); ++mark) {
        marks.emplace_back(block.MarkPosition(mark), Utf8(block.MarkText(mark)));
    }
    std::sort(marks.begin(), marks.end());
    return marks;
}

void CompareMarks(const json& file, RecordingBlock& block) {
    Marks expected;
    const double onset = file.value("first_record_onset", 0.0);
    for (const json& annotation : file.value("annotations", json::array())) {
        const double position = std::nearbyint((annotation.at("onset").get<double>() - onset) * block.SampleRate());
        const bool inside = position >= 0.0 && position < block.SampleCount();
        if (inside)
            expected.emplace_back(static_cast<std::int64_t>(position), annotation.at("text").get<std::string>());
    }
    for (const json& cue : file.value("cue_points", json::array())) {
        expected.emplace_back(cue.at("sample_offset").get<std::int64_t>(), cue.at("labl").get<std::string>());
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(MarksOf(block), expected);
}

void CompareFile(const json& file, Recording& recording) {
    std::vector<json> expected;
    for (const json& signal : file.at("signals")) {
        if (!signal.at("label").get<std::string>().ends_with(" Annotations")) expected.push_back(signal);
    }
    const auto signals = SignalsOf(recording);
    ASSERT_EQ(signals.size(), expected.size());
    for (const auto& [ordinal, signal] : signals) {
        SCOPED_TRACE("signal " + std::to_string(ordinal));
        CompareSignal(expected.at(static_cast<std::size_t>(ordinal)), signal, file);
    }
    for (std::int16_t number = 1; number <= recording.BlockCount(); ++number) {
        const auto block = recording.GetBlock(number);
        EXPECT_LE(block->ChannelCount(), 32);
        CompareMarks(file, *block);
        if (file.contains("start")) {
            EXPECT_EQ(Iso8601(block->StartTime()).substr(0, 19), file.at("start").get<std::string>().substr(0, 19));
        }
    }
}

/// True when there is an ordinary signal to read.
bool IsReadable(const json& file) {
    const json signals = file.value("signals", json::array());
    return std::any_of(signals.begin(), signals.end(), [](const json& signal) {
        return !signal.at("label").get<std::string>().ends_with(" Annotations");
    });
}

TEST(RealRecordings, AreReadAsTheIndependentProgramReadsThem) {
    if (!std::filesystem::exists(kRecordings)) GTEST_SKIP() << "no reference recordings in " << kRecordings;
    const auto english = MakeRecordingLibrary(Language::English);
    const auto russian = MakeRecordingLibrary(Language::Russian);
    int read = 0;
    int refused = 0;
    for (const char* folder : {"edf", "bdf", "wav", "malformed", "malformed-derived"}) {
        for (const auto& entry : std::filesystem::directory_iterator(kRecordings / folder)) {
            std::filesystem::path reference = entry.path();
            reference += ".ref.json";
            if (!std::filesystem::exists(reference)) continue;
            SCOPED_TRACE(entry.path().string());
            std::ifstream stream(reference);
            const json file = json::parse(stream);
            std::shared_ptr<Recording> recording;
            const bool opened = english->OpenRecording(entry.path().u16string(), recording);
            EXPECT_EQ(opened, IsReadable(file)) << Utf8(english->LastErrorText());
            if (opened && IsReadable(file)) {
                ++read;
                CompareFile(file, *recording);
            } else if (!opened) {
                ++refused;
                std::shared_ptr<Recording> none;
                EXPECT_FALSE(russian->OpenRecording(entry.path().u16string(), none));
                EXPECT_FALSE(english->LastErrorText().empty());
                EXPECT_FALSE(russian->LastErrorText().empty());
                EXPECT_NE(english->LastErrorText(), russian->LastErrorText());
            }
        }
    }
    EXPECT_GE(read, 30);
    EXPECT_GE(refused, 9);
}

}  // namespace
}  // namespace quillon
