#include <gtest/gtest.h>

#include <random>

#include "norvik/BlockChecks.h"
#include "norvik/EdfBuilder.h"
#include "norvik/EdfReader.h"
#include "norvik/WideScale.h"

namespace quillon {
namespace {

/// Keeps account of the reads.
class CountingSource final : public ByteSource {
  public:
    explicit CountingSource(std::vector<std::uint8_t> bytes) : m_memory(std::move(bytes)) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_memory.Size(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        largest = std::max(largest, count);
        total += count;
        return m_memory.ReadAt(offset, buffer, count);
    }
    std::size_t largest = 0;
    std::uint64_t total = 0;

  private:
    MemorySource m_memory;
};

/// BDF, samples per record, channels, samples of a signal at another rate in the middle of the record, records.
using Shape = std::tuple<bool, std::size_t, std::size_t, std::size_t, std::size_t>;

void ExpectReads(const Shape& shape) {
    const auto [bdf, samplesPerRecord, channels, filler, records] = shape;
    std::mt19937 random(20240607);
    EdfBuilder file{.bdf = bdf, .recordCount = records};
    std::vector<testing::Codes> codes(channels);
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
    testing::ExpectReads(*block, codes);
    float value = 0;
    block->ReadValues(static_cast<std::int16_t>(channels), block->SampleCount() - 1, 1, &value);
    EXPECT_EQ(value, file.signals.back().samples.back());
    EXPECT_LE(source->largest, kPieceBytes);

    RunExtremes extremes[2];
    RunExtremes* const out[] = {&extremes[0], &extremes[1]};
    const std::int16_t numbers[] = {1, 2};
    source->total = 0;
    ASSERT_TRUE(block->ColumnExtremes(numbers, 0, block->SampleCount(), block->SampleCount(), out));
    const std::uint64_t wanted = 2 * records * samplesPerRecord * (bdf ? 3 : 2);
    EXPECT_LE(source->total, filler > samplesPerRecord ? 4 * wanted : source->Size()) << "one pass over what is needed";
}

TEST(EdfRecordBlock, EveryWayToReadAgreesWithTheStoredSamples) {
    for (const Shape& shape : {Shape(false, 1, 3, 0, 5000),     // as good as frames
                               Shape(false, 250, 5, 3, 40),     // small records
                               Shape(false, 700, 6, 9000, 30),  // parts far apart in long records
                               Shape(false, 20000, 2, 0, 9),    // few records to a piece
                               Shape(false, 200001, 2, 1, 3),   // parts longer than a piece
                               Shape(true, 101, 4, 5, 50),      // an odd size of records
                               Shape(true, 5001, 3, 50000, 8), Shape(true, 100001, 2, 0, 3)}) {
        SCOPED_TRACE(::testing::PrintToString(shape));
        ExpectReads(shape);
    }
}

TEST(WideScale, ASpanOfSixteenBitsIsKeptExactlyAndHalvesGoToTheEvenCode) {
    for (const double minimum : {-32768.0, 0.0, 1.0, -1.0, 1835008.0, -8388608.0, 2147418112.0}) {
        for (const double span : {1.0, 65534.0, 65535.0}) {
            const WideScale scale = ChooseWideScale(minimum, minimum + span, true, 0.5, 3.0);
            for (const double sample : {minimum, minimum + 1.0, minimum + span})
                EXPECT_EQ(scale.Code(sample) + scale.shift, sample) << minimum << ' ' << span;
            EXPECT_EQ(scale.offset, static_cast<float>(scale.shift * 0.5 + 3.0));
        }
    }
    EXPECT_EQ(ChooseWideScale(-32768, 32767, true, 1, 0).shift, 0.0) << "what fits is not moved";
    EXPECT_EQ(ChooseWideScale(0, 65536, true, 1, 0).Code(0), -32000) << "one too many for 16 bits";
    EXPECT_EQ((WideScale{0.0, 2.0, 2.0F, 0.0F}.Code(1.0)), 0);
}

}  // namespace
}  // namespace quillon
