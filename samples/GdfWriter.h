#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "RecordingWriters.h"

/// GDF files, field by field.
namespace quillon::samples {

struct GdfChannel {
    std::string label;
    std::string unit;            ///< as the first edition has it
    std::uint32_t unitCode = 0;  ///< as the second does
    double physicalMinimum = -1.0;
    double physicalMaximum = 1.0;
    double digitalMinimum = -1.0;
    double digitalMaximum = 1.0;
    std::uint32_t samplesPerRecord = 1;
    std::uint32_t type = 3;  ///< 3: 16 bits
};

struct GdfEvent {
    std::uint32_t position = 1;  ///< from 1
    std::uint32_t type = 0;
    std::uint32_t channel = 0;   ///< from 1; 0: all
    std::uint32_t duration = 0;  ///< in samples
};

struct GdfDuration {
    std::uint32_t numerator = 1;
    std::uint32_t denominator = 1;
};

/// `version` is "1.25" or another one up to "2.20". Starts on 4 April 2011 12:57:02.
inline Bytes GdfHeader(std::string_view version, const std::vector<GdfChannel>& channels, std::int64_t records,
                       GdfDuration duration) {
    const bool second = version >= "1.91";
    Bytes bytes;
    bytes.Text("GDF ").Text(version, 4).Text("X", 66).Zeros(14).Text("X", 64).Zeros(16);
    const std::uint64_t headerBytes = 256 * (channels.size() + 1);
    if (second) {
        const double days = 40637.0 + ((12 * 60 + 57) * 60 + 2) / 86400.0 + 693960.0;
        bytes.U64(static_cast<std::uint64_t>(days * 4294967296.0))
            .U64(0)
            .U16(static_cast<std::uint32_t>(headerBytes / 256));
        bytes.Zeros(50);
    } else {
        bytes.Text("2011040412570200").U64(headerBytes).Zeros(44);
    }
    bytes.U64(static_cast<std::uint64_t>(records)).U32(duration.numerator).U32(duration.denominator);
    bytes.U32(static_cast<std::uint32_t>(channels.size()));
    const auto every = [&](auto add) {
        for (const GdfChannel& channel : channels) add(channel);
    };
    const auto limit = [&](double number) {
        second ? bytes.Double(number) : bytes.U64(static_cast<std::uint64_t>(static_cast<std::int64_t>(number)));
    };
    every([&](const GdfChannel& channel) { bytes.Text(channel.label, 16); });
    bytes.Zeros(80 * channels.size());
    if (second) {
        every([&](const GdfChannel&) { bytes.Zeros(6); });
        every([&](const GdfChannel& channel) { bytes.U16(channel.unitCode); });
    } else {
        every([&](const GdfChannel& channel) { bytes.Text(channel.unit, 8); });
    }
    every([&](const GdfChannel& channel) { bytes.Double(channel.physicalMinimum); });
    every([&](const GdfChannel& channel) { bytes.Double(channel.physicalMaximum); });
    every([&](const GdfChannel& channel) { limit(channel.digitalMinimum); });
    every([&](const GdfChannel& channel) { limit(channel.digitalMaximum); });
    bytes.Zeros(80 * channels.size());
    every([&](const GdfChannel& channel) { bytes.U32(channel.samplesPerRecord); });
    every([&](const GdfChannel& channel) { bytes.U32(channel.type); });
    return bytes.Zeros(32 * channels.size());
}

/// The table that follows the last record, with channels and durations where `detailed`. `rate`: of the positions.
inline Bytes GdfEventTable(std::string_view version, bool detailed, float rate, const std::vector<GdfEvent>& events) {
    const auto count = static_cast<std::uint32_t>(events.size());
    Bytes bytes;
    bytes.Number(detailed ? 3 : 1, 1);
    if (version >= "1.94") {
        bytes.Number(count, 3).Float(rate);
    } else {
        bytes.Number(static_cast<std::uint32_t>(rate), 3).U32(count);
    }
    for (const GdfEvent& event : events) bytes.U32(event.position);
    for (const GdfEvent& event : events) bytes.U16(event.type);
    if (!detailed) return bytes;
    for (const GdfEvent& event : events) bytes.U16(event.channel);
    for (const GdfEvent& event : events) bytes.U32(event.duration);
    return bytes;
}

}  // namespace quillon::samples
