#include "export/KV_Export.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "base/Bilingual.h"
#include "base/DateTime.h"
#include "base/Rounding.h"
#include "export/EdfHeaderBytes.h"
#include "export/EdfLimits.h"
#include "export/EdfText.h"

namespace quillon {

namespace {

constexpr std::int32_t kChunkFrames = 1024;
constexpr std::size_t kRecordCodes = std::size_t{1} << 20;
constexpr std::int32_t kPieceCodes = std::int32_t{1} << 16;  ///< of records larger than that
constexpr double kShortestRecord = 1e-9;                     ///< seconds that readers take
constexpr double kLongestRecord = 1e9;
constexpr std::uint32_t kWaveBytesBeforeData = 36;  ///< of the RIFF chunk's content

/// Bytes of the frames; throws FormatError where `headerBytes` more do not fit the 32 bits of a size field.
std::uint32_t DataBytes(const RecordingBlock& block, std::int32_t count, std::uint32_t headerBytes) {
    const std::int64_t bytes = std::int64_t{2} * block.ChannelCount() * count;
    if (bytes + headerBytes > std::numeric_limits<std::uint32_t>::max()) {
        throw FormatError(Say(u"the data are too large for the format", u"данных больше, чем вмещает формат"));
    }
    return static_cast<std::uint32_t>(bytes);
}

/// Sunday is 0.
int DayOfWeek(double date) {
    // Day 0 of automation dates, 30 December 1899, was a Saturday.
    const int day = static_cast<int>(std::fmod(std::floor(date), 7.0));
    return ((day + 6) % 7 + 7) % 7;
}

ByteWriter BinHeader(const RecordingBlock& block, const SampleSpan& range, const ExportSystem& system) {
    const auto rate = static_cast<float>(block.SampleRate());
    if (!std::isfinite(rate) || rate <= 0.0F) RefuseExportRate(block.SampleRate());
    double start = block.StartTime();
    if (range.first > 0) start += range.first / static_cast<double>(rate) / kSecondsPerDay;
    const CivilTime time = CivilFromDate(start);
    // The day of the rounded time: a start less than a millisecond before midnight may belong to the next.
    const int weekday = DayOfWeek(DateFromCivil({time.year, time.month, time.day}));
    // The family counts from 1 here, and from the system's first day, unlike the usual form of this record of a date.
    const int day = (weekday - system.firstDayOfWeek + 7) % 7 + 1;

    ByteWriter header;
    header.Text("ABIN").U16(3).U16(3);
    for (const int part : {time.year, time.month, day, time.day, time.hour, time.minute, time.second, 0}) {
        header.U16(static_cast<std::uint16_t>(part));
    }
    header.Float(rate).U32(0).U16(static_cast<std::uint16_t>(block.ChannelCount())).Zeros(30);
    const auto field = [&](std::u16string_view text, std::size_t size) {
        header.Text(system.fieldText(text, size), size, '\0');
    };
    field(block.DeviceName(), 16);
    header.Zeros(48);
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        header.Text("ADCh").U32(static_cast<std::uint32_t>(block.InputNumber(channel) - 1));
        field(block.ChannelTitle(channel), 32);
        field(block.ChannelUnit(channel), 24);
        header.Float(block.ChannelScale(channel)).Float(block.ChannelOffset(channel)).Zeros(8);
    }
    header.Text("data").U32(DataBytes(block, range.count, 0));
    return header;
}

ByteWriter WaveHeader(const RecordingBlock& block, std::int32_t count) {
    const std::uint32_t dataBytes = DataBytes(block, count, kWaveBytesBeforeData);
    const double exact = std::nearbyint(block.SampleRate());
    if (!(exact >= 1.0)) RefuseExportRate(block.SampleRate());
    const std::int64_t frameBytes = 16 * block.ChannelCount() / 8;
    // Bytes per second have 32 bits.
    if (exact * static_cast<double>(frameBytes) > std::numeric_limits<std::uint32_t>::max()) {
        throw FormatError(Say(u"the rate is too high for the format", u"частота выше, чем допускает формат"));
    }
    const auto rate = static_cast<std::int64_t>(exact);
    ByteWriter header;
    header.Text("RIFF").U32(kWaveBytesBeforeData + dataBytes).Text("WAVE");
    header.Text("fmt ").U32(16).U16(1).U16(static_cast<std::uint16_t>(block.ChannelCount()));
    header.U32(static_cast<std::uint32_t>(rate)).U32(static_cast<std::uint32_t>(rate * frameBytes));
    header.U16(static_cast<std::uint16_t>(frameBytes)).U16(16);
    header.Text("data").U32(dataBytes);
    return header;
}

/// Where the block starts. The first day that two digits of a year tell stands for a date that is unknown or beyond.
std::string StartOf(const RecordingBlock& block) {
    CivilTime time = CivilFromDate(block.StartTime());
    if (!IsEdfYear(time.year)) {
        time.year = 1985;
        time.month = time.day = 1;
    }
    return EdfDateTime(time);
}

ByteWriter EdfHeader(const RecordingBlock& block, std::int32_t samplesPerRecord, const std::string& recordSeconds,
                     std::int32_t records, std::span<const EdfLimits> limits) {
    const std::int16_t channels = block.ChannelCount();
    // Other programs of the family read the size as a signed 16-bit number, which ends at 126 channels.
    static_cast<void>(RoundHalfEven<std::int16_t>((channels + 1) * 256.0));
    EdfHeaderFields fields;
    fields.patient = u"Kelvara Block: " + block.BlockName();
    fields.recording = u"ADC: " + block.DeviceName();
    fields.start = StartOf(block);
    fields.records = records;
    fields.seconds = recordSeconds;
    for (std::int16_t channel = 1; channel <= channels; ++channel) {
        const std::u16string unit = block.ChannelUnit(channel);
        fields.signals.push_back({.label = block.ChannelTitle(channel),
                                  .unit = unit.empty() ? u"V" : unit,
                                  .limits = limits[static_cast<std::size_t>(channel) - 1],
                                  .samples = samplesPerRecord});
    }
    return EdfHeaderBytes(fields);
}

}  // namespace

bool KV_Export::WriteFrames(RecordingBlock& block, const SampleSpan& range, OutputFile& file) {
    const auto channels = static_cast<std::size_t>(block.ChannelCount());
    std::vector<std::int16_t> buffer(channels * static_cast<std::size_t>(std::min(kChunkFrames, range.count)));
    for (std::int32_t done = 0; done < range.count;) {
        const std::int32_t size = std::min(kChunkFrames, range.count - done);
        Read([&] { block.ReadFrames(range.first + done, size, buffer.data()); });
        if (!file.Write(std::as_bytes(std::span(buffer).first(channels * static_cast<std::size_t>(size)))))
            return false;
        done += size;
        if (!Report(done, range.count)) return false;
    }
    return true;
}

bool KV_Export::WriteBinFile(RecordingBlock* block, const std::u16string& fileName, std::int32_t firstSample,
                             std::int32_t sampleCount) {
    SampleSpan range;
    if (!FindRange(block, firstSample, sampleCount, range)) return false;
    return WriteFile(fileName, BinHeader(*block, range, System()),
                     [&](OutputFile& file) { return WriteFrames(*block, range, file); });
}

bool KV_Export::WriteWavFile(RecordingBlock* block, const std::u16string& fileName, std::int32_t firstSample,
                             std::int32_t sampleCount) {
    SampleSpan range;
    if (!FindRange(block, firstSample, sampleCount, range)) return false;
    Outcome().ratedAs = std::nearbyint(block->SampleRate());
    return WriteFile(fileName, WaveHeader(*block, range.count),
                     [&](OutputFile& file) { return WriteFrames(*block, range, file); });
}

KV_Export::Records KV_Export::CutIntoRecords(const RecordingBlock& block, std::int32_t sampleCount) {
    const double rate = block.SampleRate();
    if (!std::isfinite(rate) || rate <= 0.0 || sampleCount < 1)
        throw FormatError(
            Say(u"without samples and a rate there is no data record", u"без отсчётов и частоты нет записи данных"));
    double samples = std::nearbyint(rate);
    double seconds = 1.0;
    if (rate < 10.0) {
        // Slow recordings get long records, so that a record is not of a few samples only.
        do {
            seconds *= 10.0;
            samples = std::nearbyint(seconds * rate);
        } while (samples < 100.0);
    }
    if (sampleCount < samples) {
        samples = sampleCount;
        seconds = sampleCount / rate;
    }
    const std::int32_t whole = RoundHalfEven(samples);
    if (!(seconds >= kShortestRecord && seconds <= kLongestRecord)) RefuseExportRate(block.SampleRate());
    return {whole, seconds, sampleCount / whole};
}

bool KV_Export::WriteLargeRecord(RecordingBlock& block, const SampleSpan& range, std::int32_t done,
                                 std::int32_t samples, OutputFile& file) {
    std::vector<std::int16_t> buffer(kPieceCodes);
    const std::int16_t channels = block.ChannelCount();
    for (std::int16_t channel = 1; channel <= channels; ++channel) {
        for (std::int32_t at = 0; at < samples; at += kPieceCodes) {
            const std::int32_t size = std::min(kPieceCodes, samples - at);
            Read([&] { block.ReadCodes(channel, range.first + done + at, size, buffer.data()); });
            if (!file.Write(std::as_bytes(std::span(buffer).first(static_cast<std::size_t>(size))))) return false;
            const std::int64_t inRecord = (std::int64_t{samples} * (channel - 1) + at + size) / channels;
            if (!Report(done + inRecord, range.count)) return false;
        }
    }
    return true;
}

bool KV_Export::WriteRecords(RecordingBlock& block, const SampleSpan& range, const Records& records, OutputFile& file) {
    const auto samples = static_cast<std::size_t>(records.samples);
    const std::size_t codes = samples * static_cast<std::size_t>(block.ChannelCount());
    // A record of a usual size is read at once, a larger one channel by channel in pieces.
    std::vector<std::int16_t> buffer(codes <= kRecordCodes ? codes : 0);
    for (std::int32_t number = 0; number < records.count; ++number) {
        const std::int32_t done = number * records.samples;
        if (buffer.empty()) {
            if (!WriteLargeRecord(block, range, done, records.samples, file)) return false;
            continue;
        }
        Read([&] { block.ReadRows(range.first + done, records.samples, buffer.data()); });
        if (!file.Write(std::as_bytes(std::span(buffer)))) return false;
        if (!Report(std::int64_t{done} + records.samples, range.count)) return false;
    }
    return true;
}

bool KV_Export::WriteEdfFile(RecordingBlock* block, const std::u16string& fileName, std::int32_t firstSample,
                             std::int32_t sampleCount) {
    SampleSpan range;
    if (!FindRange(block, firstSample, sampleCount, range)) return false;
    const Records records = CutIntoRecords(*block, range.count);
    const std::vector<EdfLimits> limits = FindLimits(*block, AllChannels(*block), range.count, FindEdfLimits);
    if (limits.empty()) return false;
    std::string seconds = EdfNumber(records.seconds, 8);
    if (!IsSameRate(block->SampleRate(), EdfRate(records.samples, seconds)))
        seconds = NearestNumber(records.seconds, 8);
    Outcome().written = records.count * records.samples;
    Outcome().earlier = range.first > 0;
    Outcome().otherDate = block->StartTime() != 0.0 && !IsEdfYear(CivilFromDate(block->StartTime()).year);
    Outcome().ratedAs = EdfRate(records.samples, seconds);
    return WriteFile(fileName, EdfHeader(*block, records.samples, seconds, records.count, limits),
                     [&](OutputFile& file) { return WriteRecords(*block, range, records, file); });
}

}  // namespace quillon
