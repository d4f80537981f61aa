#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "norvik/BlockChecks.h"
#include "norvik/EdfBuilder.h"
#include "norvik/EdfReader.h"

namespace quillon {
namespace {

/// Keeps account of the reads, and fails them on demand.
class CountingSource final : public ByteSource {
  public:
    explicit CountingSource(std::vector<std::uint8_t> bytes) : m_memory(std::move(bytes)) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_memory.Size(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        if (broken) throw ReadError({u"pulled out", u"вынут"});
        largest = std::max(largest, count);
        total += count;
        return m_memory.ReadAt(offset, buffer, count);
    }
    std::size_t largest = 0;
    std::uint64_t total = 0;
    bool broken = false;

  private:
    MemorySource m_memory;
};

struct Shape {
    bool bdf;
    std::size_t samplesPerRecord;
    std::size_t channels;
    std::size_t filler;  ///< samples of a signal at another rate in the middle of the record
    std::size_t records;
};

void ExpectReads(const Shape& shape) {
    const auto [bdf, samplesPerRecord, channels, filler, records] = shape;
    std::mt19937 random(20240607);
    EdfBuilder file{.bdf = bdf, .recordCount = records};
    std::vector<std::vector<std::int16_t>> codes(channels);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (channel == 1 && filler > 0) file.signals.push_back({.samplesPerRecord = filler});
        // Few values, so that runs hold ties. The 24-bit ones span 16 bits far from zero, or more than 16 bits.
        const bool wide = bdf && channel % 2 == 1;
        const std::int32_t step = wide ? 640000 : 5000;
        const std::int32_t middle = bdf && !wide ? 3000000 : 0;
        EdfBuilder::Signal signal{.samplesPerRecord = samplesPerRecord};
        for (std::size_t at = 0; at < records * samplesPerRecord; ++at) {
            const std::int32_t value = static_cast<std::int32_t>((at + random() % 2) % 11) - 5;
            signal.samples.push_back(middle + value * step);
            codes[channel].push_back(static_cast<std::int16_t>(value * (wide ? 6400 : step)));
        }
        file.signals.push_back(std::move(signal));
    }
    const auto source = std::make_shared<CountingSource>(file.Bytes());
    const auto block = ReadEdf(source).blocks[0];
    const std::int32_t total = block->SampleCount();
    const auto below = [&](std::int32_t bound) {
        return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(bound));
    };
    for (int round = 0; round < 24 && !::testing::Test::HasFailure(); ++round) {
        const std::int32_t first = below(total);
        const std::int32_t count = 1 + below(round % 2 == 0 ? total - first : std::min(total - first, 40));
        ::quillon::testing::ExpectRangeReads(*block, codes, first, count, 1 + below(round % 4 == 0 ? count : 7));
        // One channel of many is read in a way of its own.
        const std::size_t channel = random() % channels;
        const auto number = static_cast<std::int16_t>(channel + 1);
        RunExtremes extremes;
        RunExtremes* out = &extremes;
        ASSERT_TRUE(block->ColumnExtremes({&number, 1}, first, count, count, {&out, 1}));
        const std::int16_t* const from = codes[channel].data() + first;
        EXPECT_EQ(extremes, ::quillon::testing::PlainExtremes(from, from + count));
        float value = 0;
        block->ReadValues(number, first, 1, &value);
        EXPECT_EQ(value, file.signals[channel + (channel > 0 && filler > 0)].samples[static_cast<std::size_t>(first)]);
    }
    EXPECT_LE(source->largest, kPieceBytes);

    const std::vector<std::int16_t> numbers{1, 2};
    std::vector<RunExtremes> extremes(2);
    const std::vector<RunExtremes*> out{&extremes[0], &extremes[1]};
    source->total = 0;
    ASSERT_TRUE(block->ColumnExtremes(numbers, 0, total, total, out));
    const std::uint64_t wanted = 2 * records * samplesPerRecord * (bdf ? 3 : 2);
    EXPECT_LE(source->total, filler > samplesPerRecord ? 4 * wanted : source->Size()) << "one pass over what is needed";
    source->broken = true;
    EXPECT_THROW(block->ColumnExtremes(numbers, 0, 1, 1, out), ReadError);
}

TEST(EdfRecordBlock, EveryWayToReadAgreesWithTheStoredSamples) {
    const Shape shapes[] = {{false, 1, 3, 0, 5000},     // as good as frames
                            {false, 250, 5, 3, 40},     // small records
                            {false, 700, 6, 9000, 30},  // parts far apart in long records
                            {false, 20000, 2, 0, 9},    // few records to a piece
                            {false, 200001, 2, 1, 3},   // parts longer than a piece
                            {true, 101, 4, 5, 50},      // an odd size of records
                            {true, 5001, 3, 50000, 8}, {true, 100001, 2, 0, 3}};
    for (const Shape& shape : shapes) {
        SCOPED_TRACE(::testing::Message() << "shape " << &shape - shapes);
        ExpectReads(shape);
    }
}

/// A file of many gigabytes that exists nowhere: the header, then 16-bit samples made out of their place.
class VastSource final : public ByteSource {
  public:
    VastSource(std::string header, std::uint64_t dataBytes) : m_header(std::move(header)), m_dataBytes(dataBytes) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_header.size() + m_dataBytes; }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        if (offset < m_header.size()) return m_header.copy(static_cast<char*>(buffer), count, offset);
        for (std::size_t at = 0; at < count; ++at) {
            const std::uint64_t place = offset - m_header.size() + at;
            const std::int32_t sample = Sample(place / 2);
            static_cast<std::uint8_t*>(buffer)[at] = static_cast<std::uint8_t>(sample >> (8 * (place % 2)) & 0xFF);
        }
        return count;
    }
    static std::int16_t Sample(std::uint64_t index) { return static_cast<std::int16_t>(index * 2654435761U >> 13); }

  private:
    std::string m_header;
    std::uint64_t m_dataBytes;
};

TEST(EdfVastFile, OffsetsAndSampleCountsBeyond32Bits) {
    const std::uint64_t perRecord = 1000000;
    EdfBuilder file{.records = "2500", .seconds = "10", .signals = {{}, {}}};
    for (auto& signal : file.signals) signal.samplesPerRecord = perRecord;
    const auto blocks = ReadEdf(std::make_shared<VastSource>(file.Header(), 2500 * perRecord * 2 * 2)).blocks;
    ASSERT_EQ(blocks.size(), 2U);
    EXPECT_EQ(blocks[0]->SampleCount(), 2147000000);
    EXPECT_EQ(blocks[1]->SampleCount(), 353000000);
    EXPECT_NE(blocks[0]->Title(), blocks[1]->Title());
    EXPECT_NEAR(blocks[1]->StartTime() - blocks[0]->StartTime(), 21470 / 86400.0, 1e-9);
    for (const std::int32_t at : {0, 1999998, 352999999}) {
        std::int16_t code = 0;
        blocks[1]->ReadCodes(2, at, 1, &code);
        const auto sample = static_cast<std::uint64_t>(at) + 2147000000U;
        EXPECT_EQ(code, VastSource::Sample((sample / perRecord * 2 + 1) * perRecord + sample % perRecord)) << at;
    }
}

}  // namespace
}  // namespace quillon
