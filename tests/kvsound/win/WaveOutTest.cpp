#include "kvsound/win/WaveOut.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>

#include "app/win/MainWindowFixture.h"
#include "base/Text.h"
#include "norvik/TemporaryFolder.h"
#include "sound/QLSound.h"
#include "support/FakeRecording.h"

namespace quillon::testing {
namespace {

/// A block whose codes are made as they are read, so that it may be hours long.
class EndlessBlock : public FakeBlock {
  public:
    static std::int16_t CodeAt(std::int32_t sample) { return static_cast<std::int16_t>((sample * 40503LL) >> 3 | 1); }
    std::int32_t ReadCodes(std::int16_t, std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        for (std::int32_t at = first; at < first + count; ++at) *buffer++ = CodeAt(at);
        readTo = first + count;
        return 0;
    }
    std::int32_t readTo = 0;
};

class SoundTest : public ::testing::Test {
  protected:
    void Make() {
        sound.emplace(view, services,
                      [](SoundOutputEvents events) { return MakeSoundOutput(std::move(events), Language::English); });
        sound->onStarted = [this] { ++started; };
        sound->onStopped = [this] { ++stopped; };
        sound->onPlayProgress = [this](std::int32_t sample) { heard.push_back(sample); };
    }

    void Show(std::shared_ptr<RecordingBlock> block, std::int32_t sampleCount, std::int16_t channelCount, double rate) {
        view.block = view.stored = std::move(block);
        view.sampleCount = sampleCount;
        view.channelCount = channelCount;
        view.sampleRate = rate;
    }

    static void PumpQueued() {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }

    ViewBlock view;
    FakeServices services;
    int started = 0;
    int stopped = 0;
    std::vector<std::int32_t> heard;
    std::optional<QLSound> sound;
};

/// With a device that writes what it is given into a file, as scripts/common.sh sets up.
class WaveOutCapture : public SoundTest {
  protected:
    void SetUp() override {
        const char* file = std::getenv("QUILLON_SOUND_FILE");
        if (file == nullptr) GTEST_SKIP() << "QUILLON_SOUND_FILE does not name the file of a recording sound device";
        captured = std::string("Z:") + file;
        Make();
        if (!sound->Available()) GTEST_SKIP() << "this system has no sound driver";
    }

    /// What the device got, without zeros: with those the driver fills the time in which it has nothing to play, and
    /// until it is closed. So no code of the tests is 0.
    std::vector<std::int16_t> Captured() const {
        const std::string bytes = Contents(captured);
        std::vector<std::int16_t> codes(bytes.size() / 2);
        std::memcpy(codes.data(), bytes.data(), codes.size() * 2);
        std::erase(codes, std::int16_t{0});
        return codes;
    }

    std::string captured;
};

TEST_F(WaveOutCapture, TheDeviceGetsTheCodesAsTheyAre) {
    std::minstd_rand random(7);
    // Channels, the one that is played or 0 for all, rate, samples.
    using Case = std::tuple<std::int16_t, std::int16_t, double, std::int32_t>;
    // Also fewer samples than a buffer has, whole buffers, one sample more. Not 5 to 8 channels, which the system of
    // the tests arranges by loudspeakers.
    const Case cases[] = {{1, 0, 8000, 20000},    {1, 1, 172.6, 500},  {2, 0, 173, 300},  {4, 0, 8000, 3 * 4096 + 10},
                          {4, 3, 250000, 100000}, {19, 0, 8000, 4107}, {19, 0, 173, 200}, {32, 32, 11025, 4096}};
    for (const auto& [channels, played, rate, samples] : cases) {
        SCOPED_TRACE(std::to_string(channels) + " channels at " + std::to_string(rate));
        auto block = std::make_shared<FakeBlock>();
        block->samples.resize(static_cast<std::size_t>(channels));
        std::vector<std::int16_t> expected;
        for (std::int32_t at = 0; at < samples; ++at) {
            for (std::int16_t channel = 1; channel <= channels; ++channel) {
                const auto code = static_cast<std::int16_t>(random() | 1);
                block->samples[static_cast<std::size_t>(channel) - 1].push_back(code);
                if (at >= 10 && (played == 0 || played == channel)) expected.push_back(code);
            }
        }
        Show(block, samples, channels, rate);
        stopped = started = 0;
        heard.clear();
        sound->Play(played, 11, samples);
        ASSERT_TRUE(sound->Playing()) << Utf8(sound->ErrorText());
        EXPECT_EQ(started + stopped, 0) << "no event from inside a call";
        ASSERT_TRUE(PumpUntil([&] { return stopped != 0; }));
        EXPECT_FALSE(sound->Playing());
        EXPECT_EQ(sound->ErrorText(), u"");
        EXPECT_EQ(started, 1);
        EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()));
        ASSERT_FALSE(heard.empty());
        EXPECT_EQ(heard.back(), samples) << "the end is reported";
        EXPECT_TRUE(Captured() == expected) << Captured().size() << " codes of " << expected.size();
    }
}

TEST_F(WaveOutCapture, HoursStartAtOnceAndStopAtOnce) {
    const auto block = std::make_shared<EndlessBlock>();
    constexpr std::int32_t kDay = 8000 * 3600 * 24;
    Show(block, kDay, 1, 8000);
    sound->Play(1, 1, kDay);
    ASSERT_TRUE(PumpUntil([&] { return heard.size() > 20; }));
    EXPECT_LE(block->readTo, heard.back() + 8000 + 5 * 4096) << "a second and a few buffers ahead, not more";
    // The next playback is not disturbed by the end of the present one.
    sound->Play(1, 5001, 7000);
    heard.clear();
    ASSERT_TRUE(PumpUntil([&] { return !sound->Playing(); }));
    EXPECT_EQ(started, 2);
    EXPECT_EQ(stopped, 1);
    EXPECT_GE(heard.front(), 5001);
    const std::vector<std::int16_t> codes = Captured();
    ASSERT_EQ(codes.size(), 7000U);
    for (std::int32_t at = 0; at < 7000; ++at) {
        ASSERT_EQ(codes[static_cast<std::size_t>(at)], EndlessBlock::CodeAt(5000 + at));
    }

    // Stop raises one event, later; a playback that is replaced at once raises none.
    sound->Play(1, 9001, kDay);
    sound->Play(1, 1, kDay);
    const std::size_t before = heard.size();
    ASSERT_TRUE(PumpUntil([&] { return heard.size() > before; }));
    EXPECT_EQ(started, 3);
    sound->Stop();
    EXPECT_EQ(stopped, 1);
    ASSERT_TRUE(PumpUntil([&] { return stopped == 2; }));

    // Destroyed while it plays: no event after that.
    sound->Play(1, 1, kDay);
    ASSERT_TRUE(PumpUntil([&] { return started == 4; }));
    sound.reset();
    const std::size_t count = heard.size();
    PumpQueued();
    EXPECT_EQ(heard.size(), count);
    EXPECT_EQ(stopped, 2);
}

TEST_F(WaveOutCapture, EventsMayStopAndStart) {
    const auto block = std::make_shared<EndlessBlock>();
    Show(block, 100000, 1, 8000);
    int rounds = 0;
    sound->onStarted = [&] {
        if (++rounds == 2) sound->Stop();
        if (rounds == 3) sound->Play(1, 1, 9000);
    };
    sound->onPlayProgress = [&](std::int32_t) {
        if (rounds == 1) sound->Stop();
    };
    sound->onStopped = [&] {
        ++stopped;
        if (rounds < 4) sound->Play(1, 1, 50000);
    };
    sound->Play(1, 1, 50000);
    ASSERT_TRUE(PumpUntil([&] { return rounds == 4 && !sound->Playing() && stopped == 3; }));
    EXPECT_EQ(Captured().size(), 9000U);

    // Also the progress event of the end: such a short sound ends before the timer first asks for the position.
    sound->onStarted = nullptr;
    sound->onPlayProgress = [&](std::int32_t sample) {
        if (sample == 3) sound->Play(1, 4, 9000);
    };
    sound->Play(1, 1, 3);
    ASSERT_TRUE(PumpUntil([&] { return stopped == 4; }));
    EXPECT_EQ(Captured().size(), 9000U);
}

TEST_F(WaveOutCapture, RefusesWhatNoDeviceTakesAndTakesWhatItDoes) {
    int ended = 0;
    const auto output = MakeSoundOutput({[] {}, [](std::int64_t) {}, [] {}, [&] { ++ended; }}, Language::English);
    EXPECT_FALSE(output->DeviceName(0).empty());
    EXPECT_TRUE(output->DeviceName(-1).empty());
    EXPECT_TRUE(output->DeviceName(output->DeviceCount()).empty());
    const std::pair<std::int16_t, std::int32_t> senseless[] = {
        {1, 0}, {1, -1}, {0, 8000}, {-3, 8000}, {1, output->MaximumRate() + 1}, {1, 2'000'000'000}};
    for (const auto& [channels, rate] : senseless) {
        EXPECT_FALSE(output->Open(channels, rate)) << channels << ' ' << rate;
        EXPECT_FALSE(output->ErrorText().empty());
        const std::int16_t code = 1;
        output->Write(&code, 1);
    }
    EXPECT_TRUE(output->Open(1, output->MaximumRate()));
    EXPECT_EQ(output->ErrorText(), u"");
    output->Stop();
    PumpQueued();
    EXPECT_EQ(ended, 0) << "nothing was played";
}

/// Without any device.
class WaveOutWithoutDevice : public SoundTest {};

TEST_F(WaveOutWithoutDevice, NoCallFailsAndNoEventIsRaised) {
    Make();
    if (sound->Available()) GTEST_SKIP() << "this system has a sound device";
    Show(std::make_shared<EndlessBlock>(), 100000, 1, 8000);
    sound->Play(1, 1, 100000);
    sound->PutDevice(1);
    PumpQueued();
    EXPECT_FALSE(sound->Playing());
    EXPECT_EQ(sound->DeviceCount() + sound->Device() + started + stopped, 0);
    EXPECT_EQ(sound->ErrorText() + sound->DeviceName(0), u"");
    // A device that went after the list was read.
    const auto output = MakeSoundOutput({[] {}, [](std::int64_t) {}, [] {}, [] {}}, Language::Russian);
    EXPECT_FALSE(output->Open(1, 8000));
    EXPECT_EQ(output->ErrorText(), u"такого звукового устройства нет");
}

}  // namespace
}  // namespace quillon::testing
