// Real files of many writers, read through the command line, each against what an independent program reads out of it
// (NAME.ref.json beside the file).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "base/Text.h"
#include "cli/Cli.h"

namespace quillon {
namespace {

using nlohmann::json;

const std::filesystem::path kRecordings = "../shared/recordings";

/// What a command writes.
std::string Answer(std::vector<std::u16string> words, int exitCode = 0) {
    std::ostringstream out;
    std::ostringstream error;
    cli::CliIo io{out, error};
    EXPECT_EQ(cli::RunCli(words, io), exitCode) << error.str();
    return exitCode == 0 ? out.str() : error.str();
}

bool IsAnnotation(const json& signal) {
    return signal.at("label").get<std::string>().ends_with(" Annotations");
}

/// Equal for rates that differ by rounding only.
double RateKey(const json& rate) {
    return std::round(rate.get<double>() * 1e6);
}

/// Where a signal of the file is to be found: a block and a channel of it, counted from 1; several where it has gaps.
struct Place {
    json block;
    json channel;
};

class RecordingFile {
  public:
    RecordingFile(std::filesystem::path path, json reference)
        : m_path(path.u16string()), m_reference(std::move(reference)) {}

    void Compare() {
        m_info = json::parse(Answer({u"info", m_path}));
        std::vector<json> expected = m_reference.at("signals");
        std::erase_if(expected, IsAnnotation);
        const auto signals = Signals(expected);
        ASSERT_EQ(signals.size(), expected.size());
        for (std::size_t signal = 0; signal < signals.size(); ++signal) {
            SCOPED_TRACE("signal " + std::to_string(signal));
            CompareSignal(expected[signal], signals[signal]);
        }
        for (const json& block : m_info.at("blocks")) {
            EXPECT_LE(block.at("channels").size(), 32U);
            CompareMarks(block);
            if (m_reference.contains("start")) {
                EXPECT_EQ(block.at("start").get<std::string>().substr(0, 19),
                          m_reference.at("start").get<std::string>().substr(0, 19));
            }
        }
    }

  private:
    /// Signals keep their order inside the blocks of one rate; none of these files has gaps.
    std::vector<Place> Signals(const std::vector<json>& expected) const {
        std::map<double, std::vector<Place>> byRate;
        for (const json& block : m_info.at("blocks")) {
            for (const json& channel : block.at("channels")) {
                byRate[RateKey(block.at("rate"))].push_back({block, channel});
            }
        }
        std::map<double, std::size_t> taken;
        std::vector<Place> places;
        for (const json& signal : expected) {
            const double rate = RateKey(signal.at("rate_hz"));
            if (taken[rate] < byRate[rate].size()) places.push_back(byRate[rate][taken[rate]++]);
        }
        return places;
    }

    std::string Samples(const char16_t* command, const Place& place, std::vector<std::u16string> range = {}) const {
        std::vector<std::u16string> words{command, m_path, Decimal(place.block.at("number").get<int>()),
                                          Decimal(place.channel.at("number").get<int>())};
        words.insert(words.end(), range.begin(), range.end());
        return Answer(words);
    }

    static std::string Crc32(const std::string& bytes) {
        std::uint32_t state = 0xFFFFFFFFU;
        for (const char byte : bytes) {
            state ^= static_cast<std::uint8_t>(byte);
            for (int bit = 0; bit < 8; ++bit) state = (state >> 1) ^ ((state & 1U) != 0 ? 0xEDB88320U : 0U);
        }
        char text[16];
        std::snprintf(text, sizeof text, "%08x", static_cast<unsigned>(~state));
        return text;
    }

    void CompareSignal(const json& expected, const Place& place) const {
        const bool wave = m_reference.contains("container");
        EXPECT_EQ(place.channel.at("title"), expected.at("label"));
        EXPECT_EQ(place.channel.at("unit"), wave ? json("FS") : expected.at("unit"));
        EXPECT_EQ(place.block.at("samples"), expected.at("samples"));
        const float scale = place.channel.at("scale").get<float>();
        const bool narrow = expected.contains("crc32_int16le");
        if (narrow) {
            EXPECT_EQ(Crc32(Samples(u"codes", place)), expected.at("crc32_int16le").get<std::string>());
        }
        if (narrow && wave) {
            EXPECT_EQ(scale, m_reference.at("bits_per_sample") == 8 ? 1.0F / 128 : 1.0F / 32768);
        }
        if (narrow && !wave) {
            EXPECT_EQ(scale, expected.at("scale_K").get<float>());
            EXPECT_EQ(place.channel.at("offset").get<float>(), expected.at("offset_B").get<float>());
        }
        if (narrow || !expected.contains("physical")) return;
        // Wider samples: values within one step of the scale that was chosen for them.
        for (std::size_t at = 0; at < expected.at("positions").size(); ++at) {
            const std::string bytes =
                Samples(u"values", place, {Decimal(expected.at("positions")[at].get<int>()), u"1"});
            float value = 0.0F;
            ASSERT_EQ(bytes.size(), sizeof value);
            std::memcpy(&value, bytes.data(), sizeof value);
            EXPECT_NEAR(static_cast<double>(value), expected.at("physical")[at].get<double>(),
                        std::fabs(static_cast<double>(scale)));
        }
    }

    void CompareMarks(const json& block) const {
        std::vector<std::pair<std::int64_t, std::string>> expected;
        std::vector<std::pair<std::int64_t, std::string>> read;
        const double onset = m_reference.value("first_record_onset", 0.0);
        for (const json& annotation : m_reference.value("annotations", json::array())) {
            const double position =
                std::nearbyint((annotation.at("onset").get<double>() - onset) * block.at("rate").get<double>());
            if (position < 0.0 || position >= block.at("samples").get<double>()) continue;
            expected.emplace_back(static_cast<std::int64_t>(position), annotation.at("text").get<std::string>());
        }
        for (const json& cue : m_reference.value("cue_points", json::array())) {
            expected.emplace_back(cue.at("sample_offset").get<std::int64_t>(), cue.at("labl").get<std::string>());
        }
        for (const json& mark : block.at("marks")) {
            read.emplace_back(mark.at("position").get<std::int64_t>(), mark.at("text").get<std::string>());
        }
        std::sort(expected.begin(), expected.end());
        std::sort(read.begin(), read.end());
        EXPECT_EQ(read, expected);
    }

    std::u16string m_path;
    json m_reference;
    json m_info;
};

TEST(RealRecordings, AreReadAsTheIndependentProgramReadsThem) {
    if (!std::filesystem::exists(kRecordings)) GTEST_SKIP() << "no reference recordings in " << kRecordings;
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
            const json signals = file.value("signals", json::array());
            if (!std::all_of(signals.begin(), signals.end(), IsAnnotation)) {
                ++read;
                RecordingFile(entry.path(), file).Compare();
            } else {
                ++refused;
                const std::u16string path = entry.path().u16string();
                EXPECT_NE(Answer({u"info", path}, 1), Answer({u"info", path, u"--language=ru"}, 1));
            }
        }
    }
    EXPECT_GE(read, 30);
    EXPECT_GE(refused, 9);
}

}  // namespace
}  // namespace quillon
