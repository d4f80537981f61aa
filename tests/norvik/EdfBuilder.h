#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "norvik/ByteSource.h"

namespace quillon {

/// Makes small EDF and BDF files in memory. Every field can be set to a lie.
struct EdfBuilder {
    struct Signal {
        std::string label = "EEG";
        std::string unit = "uV";
        std::string physicalMinimum = "-32768";
        std::string physicalMaximum = "32767";
        std::string digitalMinimum = "-32768";
        std::string digitalMaximum = "32767";
        std::size_t samplesPerRecord = 4;
        std::vector<std::int32_t> samples{};  ///< zeros after the last one
        std::vector<std::string> lists{};     ///< annotation bytes of each record instead of samples
    };

    bool bdf = false;
    std::string patient{};
    std::string recording{};
    std::string date = "01.02.20";
    std::string time = "12.00.00";
    std::string reserved{};
    std::string records{};  ///< empty: the true count
    std::string seconds = "1";
    std::size_t recordCount = 1;
    std::vector<Signal> signals{};

    /// Adds an annotation signal; `lists` holds the bytes of each record.
    void Annotate(std::vector<std::string> lists) {
        const char* const label = bdf ? "BDF Annotations" : "EDF Annotations";
        signals.push_back({.label = label, .samplesPerRecord = 30, .lists = std::move(lists)});
    }

    [[nodiscard]] std::vector<std::uint8_t> Bytes() const {
        std::string out = bdf ? "\377BIOSEMI" : Field("0", 8);
        out += Field(patient, 80) + Field(recording, 80) + Field(date, 8) + Field(time, 8);
        out += Field(std::to_string(256 * (signals.size() + 1)), 8) + Field(reserved, 44);
        out += Field(records.empty() ? std::to_string(recordCount) : records, 8) + Field(seconds, 8);
        out += Field(std::to_string(signals.size()), 4);
        const auto every = [&](std::string Signal::*text, std::size_t width) {
            for (const Signal& signal : signals) out += Field(signal.*text, width);
        };
        every(&Signal::label, 16);
        out.append(80 * signals.size(), ' ');
        every(&Signal::unit, 8);
        every(&Signal::physicalMinimum, 8);
        every(&Signal::physicalMaximum, 8);
        every(&Signal::digitalMinimum, 8);
        every(&Signal::digitalMaximum, 8);
        out.append(80 * signals.size(), ' ');
        for (const Signal& signal : signals) out += Field(std::to_string(signal.samplesPerRecord), 8);
        out.append(32 * signals.size(), ' ');
        const std::size_t width = bdf ? 3 : 2;
        for (std::size_t record = 0; record < recordCount; ++record) {
            for (const Signal& signal : signals) {
                std::string part = record < signal.lists.size() ? signal.lists[record] : std::string();
                for (std::size_t at = 0; signal.lists.empty() && at < signal.samplesPerRecord * width; ++at) {
                    const std::size_t index = record * signal.samplesPerRecord + at / width;
                    const std::int32_t sample = index < signal.samples.size() ? signal.samples[index] : 0;
                    part.push_back(static_cast<char>(sample >> (8 * (at % width)) & 0xFF));
                }
                part.resize(signal.samplesPerRecord * width, '\0');
                out += part;
            }
        }
        return {out.begin(), out.end()};
    }

    [[nodiscard]] std::shared_ptr<ByteSource> Source() const { return std::make_shared<MemorySource>(Bytes()); }

  private:
    static std::string Field(std::string text, std::size_t width) {
        text.resize(width, ' ');
        return text;
    }
};

}  // namespace quillon
