#include "data/ShownBlock.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "data/ShownBlocks.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::FloatNear;
using ::testing::Pointwise;
using namespace ::quillon::testing;

using Codes = std::vector<std::int16_t>;

class ShownBlockTest : public ::testing::Test {
  protected:
    /// Slow waves with noise, all far from the limits of 16 bits.
    std::shared_ptr<FakeBlock> Waves(std::size_t channels, std::int32_t samples, bool framed) {
        auto block = std::make_shared<FakeBlock>();
        block->framed = framed;
        for (std::size_t at = 0; at < channels; ++at) {
            Codes& codes = block->samples.emplace_back();
            for (std::int32_t sample = 0; sample < samples; ++sample) {
                const double wave = 5000.0 * std::sin(sample / (300.0 + 40.0 * static_cast<double>(at)));
                codes.push_back(static_cast<std::int16_t>(wave + Any(2000)));
            }
            block->titles.push_back(std::u16string(1, static_cast<char16_t>(u'A' + at)));
            block->scales.push_back(0.5F + 0.25F * static_cast<float>(at));
        }
        return block;
    }
    [[nodiscard]] int Any(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    [[nodiscard]] static Codes Whole(RecordingBlock& block, std::int16_t channel) {
        Codes codes(static_cast<std::size_t>(block.SampleCount()));
        block.ReadCodes(channel, 0, block.SampleCount(), codes.data());
        return codes;
    }
    static std::vector<bool> All(const RecordingBlock& block) {
        return std::vector<bool>(static_cast<std::size_t>(block.ChannelCount()), true);
    }
    /// Any window by any call is a part of the whole.
    void ExpectSameByAllCalls(const std::shared_ptr<FakeBlock>& stored, const ShownSettings& settings) {
        const auto reference = MakeShownBlock(stored, settings, All(*stored));
        ASSERT_NE(reference, stored);
        std::vector<Codes> whole;
        for (std::int16_t channel = 1; channel <= stored->ChannelCount(); ++channel)
            whole.push_back(Whole(*reference, channel));
        const auto block = MakeShownBlock(stored, settings, All(*stored));
        const std::int32_t samples = block->SampleCount();
        for (int window = 0; window < 12; ++window) {
            const std::int32_t first = Any(samples);
            const std::int32_t count = 1 + Any(std::min(samples - first, window % 2 == 0 ? 300 : samples));
            const auto channels = static_cast<std::size_t>(block->ChannelCount());
            Codes frames(static_cast<std::size_t>(count) * channels);
            block->ReadFrames(first, count, frames.data());
            const std::int32_t run = 1 + Any(150);
            std::vector<std::vector<RunExtremes>> extremes(
                channels, std::vector<RunExtremes>(static_cast<std::size_t>(count / run + 1)));
            std::vector<std::int16_t> numbers;
            std::vector<RunExtremes*> out;
            for (std::size_t at = channels; at-- > 0;) {
                numbers.push_back(static_cast<std::int16_t>(at + 1));
                out.push_back(extremes[at].data());
            }
            ASSERT_TRUE(block->ColumnExtremes(numbers, first, count, run, out));
            for (std::size_t at = 0; at < channels; ++at) {
                const Codes part(whole[at].begin() + first, whole[at].begin() + first + count);
                Codes codes(part.size());
                block->ReadCodes(static_cast<std::int16_t>(at + 1), first, count, codes.data());
                ASSERT_EQ(codes, part) << "channel " << at << " from " << first << ", " << count;
                for (std::size_t sample = 0; sample < part.size(); ++sample)
                    ASSERT_EQ(frames[sample * channels + at], part[sample]);
                std::vector<RunExtremes> expected(extremes[at].size());
                nsp::PlanarRunReducer reducer(run, expected.data());
                reducer.Feed(part.data(), part.size());
                reducer.Finish();
                ASSERT_EQ(extremes[at], expected);
            }
        }
    }
    std::mt19937 m_random{19};
};

ShownSettings Filtered(const nsp::FilterSettings& filter) {
    ShownSettings settings;
    settings.filters[u"V"] = filter;
    return settings;
}

TEST_F(ShownBlockTest, AnyWindowByAnyCallIsAPartOfTheWhole) {
    const nsp::FilterSettings band{.highPass = 0.5, .lowPass = 20.0};
    const nsp::FilterSettings both{.highPass = 1.0, .notch = 25.0, .bothWays = true};
    for (const bool framed : {false, true}) {
        SCOPED_TRACE(framed);
        ExpectSameByAllCalls(Waves(3, 21000, framed), Filtered(band));
        ExpectSameByAllCalls(Waves(2, 13000, framed), Filtered(both));
        ShownSettings settings = Filtered(band);
        settings.reference.kind = Reference::Kind::Average;
        settings.unfiltered = {u"B"};
        const auto block = Waves(5, 15000, framed);
        block->units = {u"V", u"V", u"mV", u"%", u"V"};
        ExpectSameByAllCalls(block, settings);
    }
}

TEST_F(ShownBlockTest, TheWayToASampleIsMadeInPiecesAndOnce) {
    constexpr std::int32_t samples = 700000;
    constexpr std::int32_t far = 650001;
    const auto stored = Waves(2, samples, true);
    stored->rate = 20000.0;
    // The whole block is one cell.
    const ShownSettings settings = Filtered({.highPass = 0.1});
    const Codes whole = Whole(*MakeShownBlock(stored, settings, All(*stored)), 1);
    const auto block = MakeShownBlock(stored, settings, All(*stored));
    const auto read = [&](const auto& work) {
        stored->samplesRead = 0;
        work();
        return stored->samplesRead;
    };
    bool isNear = false;
    int steps = 0;
    for (; !isNear && steps < 10; ++steps) EXPECT_LT(read([&] { isNear = block->Approach(far); }), (1 << 20) + 10000);
    EXPECT_TRUE(isNear);
    EXPECT_GT(steps, 1);
    // What is left is little, there and at every place that the way led past.
    for (const std::int32_t first : {far, 300000, 41000, 500000}) {
        Codes codes(100);
        EXPECT_LT(read([&] { block->ReadCodes(1, first, 100, codes.data()); }), 30000) << first;
        EXPECT_EQ(codes, Codes(whole.begin() + first, whole.begin() + first + 100));
        EXPECT_TRUE(block->Approach(first));
    }
}

TEST_F(ShownBlockTest, BothWaysTheWayOverTheEndOfALongCellIsMadeInPiecesToo) {
    constexpr std::int32_t cell = 524288;
    const auto stored = Waves(3, 700000, true);
    stored->rate = 20000.0;
    const ShownSettings settings = Filtered({.highPass = 0.3, .bothWays = true});
    const Codes whole = Whole(*MakeShownBlock(stored, settings, All(*stored)), 2);
    for (const std::int32_t first : {300000, cell - 5000}) {
        const auto block = MakeShownBlock(stored, settings, All(*stored));
        int steps = 1;
        const auto near = [&] {
            stored->samplesRead = 0;
            const bool isNear = block->Approach(first);
            EXPECT_LT(stored->samplesRead, (2 << 20) + 10000) << "both cells";
            return isNear;
        };
        for (; steps < 20 && !near();) ++steps;
        EXPECT_GT(steps, 1);
        EXPECT_LT(steps, 20);
        stored->samplesRead = 0;
        Codes codes(10000);
        block->ReadCodes(2, first, 10000, codes.data());
        EXPECT_EQ(codes, Codes(whole.begin() + first, whole.begin() + first + 10000));
        EXPECT_LT(stored->samplesRead, 50000) << first;
    }
}

TEST_F(ShownBlockTest, ChannelsKeepTheirNumbersAndPairsAreCounted) {
    const auto stored = Waves(2, 100, true);
    stored->numbers = {4, 9};
    ShownSettings settings = Filtered({.lowPass = 5.0});
    EXPECT_EQ(MakeShownBlock(stored, settings, All(*stored))->ChannelNumber(2), 9);
    settings.montage = Montage{u"", u"A-B, B-A"};
    EXPECT_EQ(MakeMontageBlock(stored, settings)->ChannelNumber(2), 1);
}

TEST_F(ShownBlockTest, WhatWasShownLastIsFoundAgainAndOthersAreForgotten) {
    const auto stored = Waves(2, 100, true);
    ShownBlocks blocks;
    const auto of = [&](int corner) {
        return blocks.Of(stored, Filtered({.lowPass = 1.0 + 0.1 * corner}), All(*stored));
    };
    const auto first = of(0);
    EXPECT_EQ(of(0), first);
    EXPECT_NE(of(1), first);
    for (int corner = 2; corner < 100; ++corner) static_cast<void>(of(corner));
    const auto last = of(99);
    EXPECT_TRUE(blocks.Keeps(last.get()));
    EXPECT_FALSE(blocks.Keeps(first.get()));
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_NE(of(0), first);
}

TEST_F(ShownBlockTest, AReferenceIsSubtractedAsAValueOfTheSameUnit) {
    auto block = std::make_shared<FakeBlock>();
    block->samples = {{100, 200, 300}, {10, 10, -40}, {7, 8, 9}, {1, 2, 3}};
    block->titles = {u"A", u"B", u"C", u"D"};
    block->units = {u"V", u"mV", u"%", u"V"};
    block->scales = {0.001F, 1.0F, 1.0F, 0.01F};
    block->offsets = {0.5F, 2.0F, 0.0F, 0.0F};
    // In volts: A 0.6 0.7 0.8; B 0.012 0.012 -0.038; D 0.01 0.02 0.03.
    const auto values = [](RecordingBlock& shown, std::int16_t channel) {
        std::vector<float> found(3);
        shown.ReadValues(channel, 0, 3, found.data());
        return found;
    };
    ShownSettings settings;
    settings.reference = {Reference::Kind::Channel, u"B"};
    auto shown = MakeShownBlock(block, settings, All(*block));
    EXPECT_THAT(values(*shown, 1), Pointwise(FloatNear(0.0006F), {0.588F, 0.688F, 0.838F}));
    EXPECT_THAT(values(*shown, 2), Pointwise(FloatNear(0.001F), {12.0F, 12.0F, -38.0F}));  // itself
    EXPECT_THAT(values(*shown, 3), ElementsAre(7.0F, 8.0F, 9.0F));                         // another unit

    settings.reference = {Reference::Kind::Average, {}};
    shown = MakeShownBlock(block, settings, {true, true, true, false});
    EXPECT_THAT(values(*shown, 1), Pointwise(FloatNear(0.0006F), {0.294F, 0.344F, 0.419F}));
    EXPECT_THAT(values(*shown, 4), Pointwise(FloatNear(0.006F), {-0.296F, -0.336F, -0.351F}));
    // A single channel is not its own average.
    EXPECT_EQ(MakeShownBlock(block, settings, {true, false, true, false}), block);

    settings.reference = {};
    settings.montage = {u"pairs", u"D-A, A-B, A-C, A-X, B-D"};
    const auto pairs = MakeMontageBlock(block, settings);
    ASSERT_EQ(pairs->ChannelCount(), 3);
    EXPECT_EQ(pairs->ChannelTitle(3), u"B-D");
    EXPECT_THAT(values(*pairs, 1), Pointwise(FloatNear(0.006F), {-0.59F, -0.68F, -0.77F}));
    EXPECT_THAT(values(*pairs, 2), Pointwise(FloatNear(0.0006F), {0.588F, 0.688F, 0.838F}));
    EXPECT_THAT(values(*pairs, 3), Pointwise(FloatNear(0.6F), {2.0F, -8.0F, -68.0F}));
    settings.montage->pairs = u"A-C";
    EXPECT_EQ(MakeMontageBlock(block, settings), nullptr);
}

TEST_F(ShownBlockTest, ConstantsVanishBehindAHighPassAndCodesStandAtTheirLimits) {
    auto block = std::make_shared<FakeBlock>();
    block->samples = {Codes(9000, 32767), Codes(9000, -7)};
    std::fill(block->samples[0].begin(), block->samples[0].begin() + 4000, std::int16_t{-32768});
    const auto shown = MakeShownBlock(block, Filtered({.highPass = 0.1}), All(*block));
    EXPECT_EQ(shown->ChannelOffset(2), 0.0F);
    EXPECT_EQ(Whole(*shown, 2), Codes(9000, 0));
    const Codes step = Whole(*shown, 1);
    EXPECT_EQ(step[3999], 0);
    EXPECT_EQ(step[4000], 32767);
    // Wide samples fill the codes, so that deviations from the mean need coarser ones.
    block->fills = true;
    const auto coarser = MakeShownBlock(block, Filtered({.highPass = 0.1}), All(*block));
    EXPECT_EQ(coarser->ChannelScale(1), 2.0F * block->ChannelScale(1));
    const Codes whole = Whole(*coarser, 1);
    EXPECT_NEAR(whole[4000], 32767, 400) << "65535 less what the filter takes at once";
    EXPECT_LT(whole[4000], 32767);
    for (std::size_t at = 4100; at < 9000; at += 100) EXPECT_NEAR(2 * whole[at], step[at], 1);
    block->fills = false;
    // A filter that there is not at the rate leaves the stored block.
    EXPECT_EQ(MakeShownBlock(block, Filtered({.lowPass = 50.0, .notch = 60.0}), All(*block)), block);
}

TEST_F(ShownBlockTest, AnUnreadablePlaceHidesNoOther) {
    const auto block = Waves(2, 40000, false);
    const auto settings = Filtered({.highPass = 2.0, .lowPass = 30.0});
    const Codes whole = Whole(*MakeShownBlock(block, settings, All(*block)), 1);
    block->holeFrom = 20000;
    block->holeTo = 20010;
    const auto shown = MakeShownBlock(block, settings, All(*block));
    Codes codes(5000);
    EXPECT_THROW(shown->ReadCodes(1, 18000, 5000, codes.data()), std::runtime_error);
    shown->ReadCodes(1, 10000, 5000, codes.data());
    EXPECT_TRUE(std::equal(codes.begin(), codes.end(), whole.begin() + 10000));
    shown->ReadCodes(1, 34000, 5000, codes.data());
    EXPECT_TRUE(std::equal(codes.begin(), codes.end(), whole.begin() + 34000));
}

}  // namespace
}  // namespace quillon
