// Real files of many writers, read through the command line, each against what an independent program reads out of it
// (NAME.ref.json beside the file).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "cli/CommandLine.h"

namespace quillon {
namespace {

using nlohmann::json;
using testing::RunLine;

const std::filesystem::path kRecordings = "../shared/recordings";

bool IsAnnotation(const json& signal) {
    return signal.at("label").get<std::string>().ends_with(" Annotations");
}

std::string Crc32(const std::string& bytes) {
    std::uint32_t state = 0xFFFFFFFFU;
    for (const char byte : bytes) {
        state ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit) state = (state >> 1) ^ ((state & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    char text[16];
    std::snprintf(text, sizeof text, "%08x", static_cast<unsigned>(~state));
    return text;
}

void CompareSignal(const std::filesystem::path& path, const json& file, const json& expected, const json& block,
                   const json& channel) {
    const bool sound = file.contains("container") || file.value("format", "") == "FLAC";
    if (file.value("format", "") == "text") {
        // The other program reads the numbers alone.
        const std::string header = file.at("header").dump();
        EXPECT_NE(header.find(channel.at("title").get<std::string>()), std::string::npos);
        EXPECT_NE(header.find(channel.at("unit").get<std::string>()), std::string::npos);
    } else {
        EXPECT_EQ(channel.at("title"), expected.at("label"));
        // A unit that the file does not name, but its format does.
        const std::string unit = sound ? "FS" : expected.at("unit").get<std::string>();
        EXPECT_EQ(channel.at("unit"), unit.substr(0, unit.find(" (default)")));
    }
    EXPECT_EQ(block.at("samples"), expected.at("samples"));
    const float scale = channel.at("scale");
    const std::string place = " % " + block.at("number").dump() + ' ' + channel.at("number").dump();
    if (expected.contains("crc32_int16le")) {
        EXPECT_EQ(Crc32(RunLine("codes" + place, {path}).out), expected.at("crc32_int16le").get<std::string>());
        const float full = file.value("bits_per_sample", 16) == 8 ? 128.0F : 32768.0F;
        EXPECT_EQ(scale, sound ? 1.0F / full : expected.at("scale_K").get<float>());
        EXPECT_EQ(channel.at("offset").get<float>(), sound ? 0.0F : expected.at("offset_B").get<float>());
        return;
    }
    // Wider samples: values within one step of the scale that was chosen for them.
    for (std::size_t at = 0; expected.contains("physical") && at < expected.at("positions").size(); ++at) {
        const std::string bytes = RunLine("values" + place + ' ' + expected["positions"][at].dump() + " 1", {path}).out;
        float value = 0.0F;
        ASSERT_EQ(bytes.size(), sizeof value);
        std::memcpy(&value, bytes.data(), sizeof value);
        EXPECT_NEAR(value, expected["physical"][at].get<double>(), std::fabs(scale));
    }
}

void CompareMarks(const json& file, const json& block) {
    std::multiset<std::pair<double, std::string>> expected;
    std::multiset<std::pair<double, std::string>> read;
    const double onset = file.value("first_record_onset", 0.0);
    for (const json& annotation : file.value("annotations", json::array())) {
        if (annotation.is_array()) {
            const std::string note = annotation[2];
            expected.emplace(annotation[0], annotation[1].get<std::string>() + (note.empty() ? "" : " ") + note);
            continue;
        }
        const double position =
            std::nearbyint((annotation.at("onset").get<double>() - onset) * block.at("rate").get<double>());
        if (position < 0.0 || position >= block.at("samples")) continue;
        expected.emplace(position, annotation.at("text").get<std::string>());
    }
    for (const json& cue : file.value("cue_points", json::array()))
        expected.emplace(cue.at("sample_offset").get<double>(), cue.at("labl").get<std::string>());
    for (const json& marker : file.value("markers", json::array())) {
        // The first tells the start.
        if (marker == file["markers"].front()) continue;
        const std::string text = marker.at("description");
        expected.emplace(marker.at("position").get<double>() - 1.0, text.empty() ? marker.at("type") : json(text));
    }
    for (const json& mark : block.at("marks"))
        read.emplace(mark.at("position").get<double>(), mark.at("text").get<std::string>());
    EXPECT_EQ(read, expected);
}

/// `file` is what the other program reads.
void Compare(const std::filesystem::path& path, const json& file) {
    const auto info = RunLine("info %", {path});
    ASSERT_EQ(info.code, cli::kDone) << info.error;
    const json blocks = json::parse(info.out).at("blocks");
    // Signals keep their order inside the blocks of one rate; none of these files has gaps.
    std::vector<std::size_t> taken(blocks.size());
    const auto offers = [&](std::size_t at, const json& signal) {
        const double difference = blocks[at].at("rate").get<double>() - signal.at("rate_hz").get<double>();
        return std::fabs(difference) < 1e-6 && taken[at] < blocks[at].at("channels").size();
    };
    for (const json& signal : file.at("signals")) {
        if (IsAnnotation(signal)) continue;
        SCOPED_TRACE(signal.at("label").get<std::string>());
        std::size_t at = 0;
        while (at < blocks.size() && !offers(at, signal)) ++at;
        ASSERT_LT(at, blocks.size()) << "a signal without a place";
        CompareSignal(path, file, signal, blocks[at], blocks[at].at("channels")[taken[at]++]);
    }
    for (std::size_t at = 0; at < blocks.size(); ++at) {
        EXPECT_EQ(taken[at], blocks[at].at("channels").size());
        EXPECT_LE(taken[at], 32U);
        CompareMarks(file, blocks[at]);
        const std::string start = blocks[at].at("start");
        EXPECT_EQ(start.substr(0, 19), file.value("start", start).substr(0, 19));
        const std::string date = file.contains("markers") ? file["markers"][0].value("date", "") : "";
        const auto isDigit = [](char letter) { return letter >= '0' && letter <= '9'; };
        std::string digits;
        std::copy_if(start.begin(), start.end(), std::back_inserter(digits), isDigit);
        EXPECT_EQ(date.empty() ? date : digits.substr(0, 14), date.substr(0, 14));
    }
}

TEST(RealRecordings, AreReadAsTheIndependentProgramReadsThem) {
    if (!std::filesystem::exists(kRecordings)) GTEST_SKIP() << "no reference recordings in " << kRecordings;
    int read = 0;
    int refused = 0;
    for (const char* folder :
         {"edf", "bdf", "wav", "brainvision", "flac", "wfdb", "gdf", "text", "malformed", "malformed-derived"}) {
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
                Compare(entry.path(), file);
            } else if (!file.value("annotations", json::array()).empty()) {
                ++read;
                const json blocks = json::parse(RunLine("info %", {entry.path()}).out).at("blocks");
                ASSERT_EQ(blocks.size(), 1U);
                EXPECT_EQ(blocks[0].at("marks").size(), file.at("annotations").size());
                CompareMarks(file, blocks[0]);
            } else {
                ++refused;
                const auto english = RunLine("info %", {entry.path()});
                EXPECT_EQ(english.code, cli::kRefused);
                EXPECT_NE(english.error, RunLine("info % --language=ru", {entry.path()}).error);
            }
        }
    }
    EXPECT_GE(read, 38);
    EXPECT_GE(refused, 8);
}

}  // namespace
}  // namespace quillon
