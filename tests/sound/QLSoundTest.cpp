#include "sound/QLSound.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "kvsound/private/PlayPosition.h"
#include "support/FakeRecording.h"

namespace quillon::testing {
namespace {

class QLSoundTest : public ::testing::Test {
  protected:
    /// Two channels: 0, 1, 2 ... and 0, -1, -2 ...
    void SetUp() override {
        fake->samples.resize(2);
        for (int at = 0; at < 10000; ++at) {
            fake->samples[0].push_back(static_cast<std::int16_t>(at));
            fake->samples[1].push_back(static_cast<std::int16_t>(-at));
        }
        view.block = view.stored = fake;
        view.sampleCount = 10000;
        view.sampleRate = 100.0;
        view.channelCount = 2;
        sound.emplace(view, services, [this](SoundOutputEvents events) {
            device.events = std::move(events);
            return std::make_unique<FakeOutput>(device);
        });
        sound->onStarted = [this] { raised.emplace_back("started"); };
        sound->onStopped = [this] { raised.emplace_back("stopped"); };
        sound->onPlayProgress = [this](std::int32_t sample) { raised.push_back(std::to_string(sample)); };
    }

    std::vector<std::string> TakeCalls() { return std::exchange(device.calls, {}); }

    using Lines = std::vector<std::string>;
    std::shared_ptr<FakeBlock> fake = std::make_shared<FakeBlock>();
    ViewBlock view;
    FakeServices services;
    DeviceState device;
    std::vector<std::string> raised;
    std::optional<QLSound> sound;
};

TEST_F(QLSoundTest, FeedsTheRangeOnDemandInPieces) {
    sound->Play(2, 1001, 8500);
    EXPECT_TRUE(sound->Playing());
    EXPECT_EQ(TakeCalls(), Lines({"open 1 100"}));
    EXPECT_EQ(device.writes, std::vector<std::int32_t>({4096})) << "nothing is read ahead of demand";
    for (int wanted = 0; wanted < 4; ++wanted) device.events.moreWanted();
    EXPECT_EQ(device.writes, std::vector<std::int32_t>({4096, 4096, 308})) << "and nothing past the end";
    ASSERT_EQ(device.written.size(), 8500U);
    EXPECT_TRUE(std::equal(device.written.begin(), device.written.end(), fake->samples[1].begin() + 1000));

    // All channels, interleaved; what the block does not have is left out.
    device.written.clear();
    sound->Play(0, 9998, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(TakeCalls(), Lines({"stop", "open 2 100"})) << "what was playing ends first";
    EXPECT_EQ(device.written, std::vector<std::int16_t>({9997, -9997, 9998, -9998, 9999, -9999}));
}

TEST_F(QLSoundTest, RateIsRoundedAndLimitedByTheDevice) {
    const auto opened = [this](double rate, std::int32_t maximum) {
        view.sampleRate = rate;
        device.maximumRate = maximum;
        sound->Play(1, 1, 100);
        return device.calls.back();
    };
    EXPECT_EQ(opened(250.5, 192000), "open 1 250");
    EXPECT_EQ(opened(251.5, 192000), "open 1 252");
    EXPECT_EQ(opened(1e300, 192000), "open 1 192000");
    EXPECT_EQ(opened(9.5, 8), "open 1 8");
    EXPECT_EQ(opened(9.4, 8), "open 1 9") << "a rate below 10 is tried as it is";
    for (const double none : {0.5, -3.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(opened(none, 192000), "open 1 0") << none;
}

TEST_F(QLSoundTest, WhatCannotBePlayedLeavesItIdleWithAReason) {
    sound->Play(3, 1, 100);
    EXPECT_TRUE(device.calls.empty()) << "no such channel";
    EXPECT_EQ(sound->ErrorText(), u"");

    device.refusal = u"no such format";
    sound->Play(1, 1, 100);
    EXPECT_FALSE(sound->Playing());
    EXPECT_EQ(sound->ErrorText(), u"no such format");
    sound->Stop();
    EXPECT_EQ(sound->ErrorText(), u"");
    device.refusal.clear();

    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
    for (const auto& [first, count] :
         {std::pair{1, 2}, {9999, 100}, {1, -5}, {kLowest, 5000}, {kHighest, kHighest}, {0, 100}}) {
        TakeCalls();
        sound->Play(1, first, count);
        EXPECT_EQ(sound->ErrorText(), services.Text(5400)) << first << ' ' << count;
        EXPECT_EQ(TakeCalls(), Lines({"open 1 100", "stop"})) << "the device is freed";
    }
    sound->Play(1, 9998, 100);
    EXPECT_TRUE(sound->Playing()) << "three samples are enough";
    sound->Play(0, 9999, 100);
    EXPECT_TRUE(sound->Playing()) << "of all channels together";
    EXPECT_EQ(sound->ErrorText(), u"");

    view = {};
    TakeCalls();
    sound->Play(0, 1, 100);
    EXPECT_EQ(TakeCalls(), Lines({"stop"})) << "no block";
}

TEST_F(QLSoundTest, AReadErrorEndsThePlaybackAndFreesTheRecording) {
    sound->Play(1, 1, 10000);
    fake->failing = {"ReadFrames", "ReadCodes"};
    TakeCalls();
    device.events.moreWanted();
    EXPECT_EQ(TakeCalls(), Lines({"stop"}));
    EXPECT_FALSE(sound->Playing());
    device.events.stopped();
    EXPECT_EQ(sound->ErrorText(), services.Text(5401) + u": ReadCodes") << "kept for the window";
    EXPECT_EQ(raised, Lines({"stopped"}));
    sound->Play(0, 1, 10000);
    EXPECT_FALSE(sound->Playing());
    EXPECT_EQ(sound->ErrorText(), services.Text(5401) + u": ReadFrames");
    EXPECT_EQ(fake.use_count(), 3) << "held by the view, twice, and the test alone";
}

TEST_F(QLSoundTest, EventsReportThePositionAndTheEnd) {
    sound->Play(1, 101, 200);
    device.events.started();
    for (const std::int64_t played : {0, 50, 40, 199, 100000}) device.events.writeProgress(played);
    EXPECT_EQ(std::exchange(raised, {}), Lines({"started", "101", "151", "151", "300", "300"}));
    // The viewer may load another block meanwhile.
    view = {};
    EXPECT_EQ(fake.use_count(), 2);
    device.errorText = u"pulled out";
    device.events.stopped();
    EXPECT_FALSE(sound->Playing());
    EXPECT_EQ(sound->ErrorText(), u"pulled out");
    EXPECT_EQ(fake.use_count(), 1);

    device.events.writeProgress(7);
    EXPECT_EQ(raised, Lines({"stopped"})) << "a late position raises no event";
}

TEST_F(QLSoundTest, TheChosenDeviceIsTheOneOfThatName) {
    device.count = 3;
    device.names = {u"loudspeaker", u"headphones", u"headphones", u"monitor"};
    sound->PutDevice(2);
    // Devices as they come and go, each with where the chosen one is then.
    const std::pair<std::vector<std::u16string>, std::int16_t> changes[] = {
        {{u"loudspeaker", u"headphones", u"headphones"}, 2},
        {{u"headphones", u"loudspeaker"}, 0},
        {{u"loudspeaker", u"monitor"}, -1},
        {{u"monitor"}, -1},
        {{u"monitor", u"loudspeaker", u"headphones"}, 2}};
    for (const auto& [names, index] : changes) {
        device.names = names;
        device.count = static_cast<std::int16_t>(names.size());
        TakeCalls();
        sound->Play(1, 1, 100);
        EXPECT_EQ(sound->Playing(), index >= 0);
        EXPECT_EQ(sound->Device(), index);
        EXPECT_EQ(sound->ErrorText(), index >= 0 ? u"" : u"headphones: " + services.Text(5402));
        const Lines calls = TakeCalls();
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "open 1 100"), index < 0 ? 0 : 1);
    }
    // Another choice takes its place; one that there is not changes nothing.
    sound->PutDevice(0);
    sound->PutDevice(3);
    EXPECT_EQ(sound->Device(), 0);
    sound->Play(1, 1, 100);
    device.count = 0;
    EXPECT_FALSE(sound->Refresh());
    TakeCalls();
    sound->Stop();
    EXPECT_EQ(TakeCalls(), Lines({"stop"})) << "all are gone, but what plays has to be stopped";
    QLSound silent(view, services, [](SoundOutputEvents) -> std::unique_ptr<SoundOutput> { throw std::exception(); });
    silent.Play(0, 1, 100);
    EXPECT_FALSE(silent.Available() || silent.Playing());
}

TEST(PlayPosition, CountsOnWhenTheDeviceStartsAgainAndNeverBack) {
    PlayPosition position;
    EXPECT_EQ(position.Advance(1000), 1000);
    EXPECT_EQ(position.Advance(990), 1000);
    std::int64_t at = 1000;
    // Three times round, in steps of an odd size.
    while (at < (std::int64_t{3} << 32)) {
        at += 1'234'567'891;
        ASSERT_EQ(position.Advance(static_cast<std::uint32_t>(at)), at);
        ASSERT_EQ(position.Advance(static_cast<std::uint32_t>(at - 500)), at);
    }
}

}  // namespace
}  // namespace quillon::testing
