#include "app/Playback.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>

#include "app/CommandState.h"
#include "app/Commands.h"
#include "app/Settings.h"
#include "app/StatusMessage.h"
#include "app/ViewCommands.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;

class PlaybackTest : public ::quillon::testing::ViewFixture {
  protected:
    PlaybackTest() {
        m_playback.onState = [this] { ++m_states; };
        m_playback.onError = [this](const std::u16string& text) { m_errors.push_back(text); };
        m_playback.onScroll = [this](std::int32_t columns) { m_playback.ViewChanged(m_view.ScrollBy(columns)); };
        m_playback.Open();
    }
    void Hear(std::int32_t sample) { m_device.events.writeProgress(sample - m_first); }
    void Play(std::int32_t first) {
        m_first = first;
        m_playback.Play(1);
    }

    ::quillon::testing::DeviceState m_device;
    SoundOutputFactory m_make = [this](SoundOutputEvents events) {
        m_device.events = std::move(events);
        return std::make_unique<::quillon::testing::FakeOutput>(m_device);
    };
    Playback m_playback{m_document, m_view, m_services, m_make};
    std::int32_t m_first = 1;
    int m_states = 0;
    std::vector<std::u16string> m_errors;
};

TEST_F(PlaybackTest, TheViewFollowsTheLineUntilTheUserGoesElsewhere) {
    m_view.SelectBlock();
    Play(1);
    m_view.Deselect();
    ASSERT_TRUE(m_playback.IsPlaying());
    Hear(200);
    EXPECT_NEAR(m_playback.Position(), 200, 1);
    Hear(530);
    EXPECT_NEAR(m_axis.FirstColumn(), 529, 1) << "over the edge: the line is at the left of the next page";
    // A zoom about the middle leaves the line outside; the view comes back to it.
    m_playback.ViewChanged(m_view.SelectZoomX(1));
    m_view.ScrollBy(300);
    m_playback.ViewChanged(m_view.SelectZoomX(0));
    Hear(540);
    EXPECT_NEAR(m_axis.FirstColumn(), 539, 1);
    // Where the user has looked elsewhere it does not, until the line comes into view by itself.
    m_playback.ViewChanged(m_view.GoTo(2000));
    const std::int32_t chosen = m_axis.FirstColumn();
    Hear(900);
    EXPECT_EQ(m_axis.FirstColumn(), chosen);
    Hear(chosen + 100);
    Hear(chosen + 600);
    EXPECT_GT(m_axis.FirstColumn(), chosen + 500);
    m_device.events.stopped();
    EXPECT_EQ(m_playback.Position(), 0);
    EXPECT_FALSE(m_playback.IsPlaying());
}

TEST_F(PlaybackTest, WhatIsSelectedOrSeenIsPlayedAndRefusalsAreTold) {
    m_view.ScrollBy(1000);
    m_device.written.clear();
    m_playback.Play(0);
    EXPECT_THAT(m_device.calls, ElementsAre("open 2 100"));
    while (m_device.written.size() < 1000) m_device.events.moreWanted();
    EXPECT_EQ(m_device.written.size(), 1000U) << "500 samples of two channels";
    m_document.ChooseChannel(1);
    m_view.Select(10, 1);
    m_device.written.clear();
    m_playback.Play(1);
    EXPECT_THAT(m_device.calls, ElementsAre("open 2 100", "stop", "open 1 100"));
    EXPECT_THAT(m_device.written, ElementsAre(7, 7, 7, 7, 7, -100, 7, 7, 7, 7));
    m_playback.Stop();
    m_device.refusal = u"bad format";
    m_states = 0;
    m_playback.Play(1);
    EXPECT_THAT(m_errors, ElementsAre(u"bad format"));
    EXPECT_FALSE(m_playback.IsPlaying());
    EXPECT_GT(m_states, 0);
    // What a handler throws does not leave the sound.
    m_device.refusal.clear();
    int failures = 0;
    m_playback.onFailed = [&](const std::exception&) { ++failures; };
    m_playback.onPosition = [] { throw std::runtime_error("no memory"); };
    EXPECT_THROW(m_playback.Play(1), std::runtime_error) << "a command tells its own";
    m_playback.onPosition = nullptr;
    m_playback.Play(1);
    m_playback.onPosition = [] { throw std::runtime_error("no memory"); };
    m_device.events.writeProgress(20);
    EXPECT_EQ(failures, 1);
}

TEST_F(PlaybackTest, CommandsOnViewAndSelectionRespectTheSoundAndADrag) {
    ViewCommands commands{m_document, m_view, m_playback};
    bool dragEnded = false;
    commands.onChange = [](const ViewChange&) {};
    commands.onStop = [] { return false; };
    commands.onSelect = [&] { dragEnded = m_view.Selected().active; };
    // A column moves the view, or the end of a selection; more columns always move the view.
    commands.MoveView({1, 0});
    m_view.Select(100, 200);
    commands.MoveView({-1, 0});
    EXPECT_EQ(std::pair(m_view.Selected().end, m_axis.FirstColumn()), std::pair(199, 1));
    commands.MoveView({20, 0});
    EXPECT_EQ(std::pair(m_view.Selected().end, m_axis.FirstColumn()), std::pair(199, 21));
    // The key that plays stops, and so does what removes the selection, which it leaves then.
    Play(100);
    const CommandState state = StateOf(m_document, m_view, m_playback, Settings(), 0, -1);
    EXPECT_EQ(CommandOfKey(mnuSoundPlay, state), mnuSoundPlay + 2);
    EXPECT_EQ(CommandOfKey(mnuSoundPlay + 1, state), mnuSoundPlay + 1);
    commands.Select(2);
    EXPECT_TRUE(!m_playback.IsPlaying() && m_view.Selected().active && !dragEnded);
    commands.Select(2);
    EXPECT_TRUE(dragEnded && !m_view.Selected().active) << "the drag ends while its selection stands";
}

TEST(StatusMessage, StandsUntilItsTopicIsOver) {
    using Topic = StatusMessage::Topic;
    StatusMessage message;
    EXPECT_TRUE(message.Offer(Topic::Sound, u"1 s"));
    EXPECT_TRUE(message.Offer(Topic::Sound, u"2 s"));
    EXPECT_FALSE(message.Retract(Topic::Folder));
    message.Tell(Topic::Outcome, u"written");
    EXPECT_FALSE(message.Offer(Topic::Sound, u"3 s"));
    EXPECT_FALSE(message.Retract(Topic::Sound));
    EXPECT_EQ(message.Text(), u"written");
    EXPECT_TRUE(message.Retract(Topic::Outcome));
    EXPECT_TRUE(message.Offer(Topic::Sound, u"3 s"));
}

TEST(CommandState, WithNothingOpenLittleIsEnabledAndEachEndOfAWayDisablesItsStep) {
    for (const MenuEntry& entry : MenuTree()) {
        constexpr std::array<int, 20> always{
            mnuOpen,    mnuExit,      mnuHelp,        mnuHelpLang, mnuKeysAndMouse, mnuSpectrogram, mnuOptions,
            mnuTabPath, mnuTabFile,   mnuPathList,    mnuFocus,    mnuOpenFolder,   mnuLanes,       mnuAllSignals,
            mnuAbout,   mnuFilterRow, mnuTabFile + 2, mnuOverview, mnuDarkGraph,    mnuLineWidth};
        const bool expected = std::find(always.begin(), always.end(), entry.id) != always.end();
        EXPECT_EQ(IsEnabled(entry.id, {}), expected) << entry.id;
    }
    CommandState loaded;
    loaded.fileCount = 3;
    loaded.channelCount = 2;
    loaded.sampleCount = 100;
    loaded.scaleY = AmplitudeScale::kScaleCount - 1;
    for (const auto& [back, on] : {std::pair<int, int>{mnuRecording, mnuRecording + 1},
                                   {mnuZoomX + 1, mnuZoomX},
                                   {mnuZoomY + 1, mnuZoomY},
                                   {mnuView, mnuView + 1},
                                   {mnuSoundPlay, mnuSelect}}) {
        loaded.filePosition = 0;
        EXPECT_FALSE(IsEnabled(back, loaded)) << back;
        EXPECT_TRUE(IsEnabled(on, loaded)) << on;
    }
}

}  // namespace
}  // namespace quillon
