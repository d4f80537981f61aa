#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "RecordingWriters.h"
#include "norvik/private/ByteSource.h"

namespace quillon {

/// Makes small EDF and BDF files in memory. Every field can be set to a wrong value.
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
        samples::Bytes out;
        const auto field = [&](const std::string& text, std::size_t width) { out.Text(text, width, ' '); };
        field(bdf ? "\377BIOSEMI" : "0", 8);
        field(patient, 80);
        field(recording, 80);
        field(date, 8);
        field(time, 8);
        field(std::to_string(256 * (signals.size() + 1)), 8);
        field(reserved, 44);
        field(records.empty() ? std::to_string(recordCount) : records, 8);
        field(seconds, 8);
        field(std::to_string(signals.size()), 4);
        const auto every = [&](std::string Signal::*text, std::size_t width) {
            for (const Signal& signal : signals) field(signal.*text, width);
        };
        every(&Signal::label, 16);
        field("", 80 * signals.size());
        every(&Signal::unit, 8);
        every(&Signal::physicalMinimum, 8);
        every(&Signal::physicalMaximum, 8);
        every(&Signal::digitalMinimum, 8);
        every(&Signal::digitalMaximum, 8);
        field("", 80 * signals.size());
        for (const Signal& signal : signals) field(std::to_string(signal.samplesPerRecord), 8);
        field("", 32 * signals.size());
        const std::size_t width = bdf ? 3 : 2;
        for (std::size_t record = 0; record < recordCount; ++record) {
            for (const Signal& signal : signals) {
                const std::size_t size = signal.samplesPerRecord;
                if (!signal.lists.empty())
                    out.Text(record < signal.lists.size() ? signal.lists[record] : "", size * width);
                for (std::size_t at = record * size; signal.lists.empty() && at < (record + 1) * size; ++at)
                    out.Number(at < signal.samples.size() ? static_cast<std::uint64_t>(signal.samples[at]) : 0, width);
            }
        }
        return {out.Get().begin(), out.Get().end()};
    }

    [[nodiscard]] std::shared_ptr<ByteSource> Source() const { return std::make_shared<MemorySource>(Bytes()); }
};

}  // namespace quillon
