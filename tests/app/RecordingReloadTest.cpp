#include "app/RecordingReload.h"

#include <gmock/gmock.h>

#include "app/Captions.h"
#include "app/StringIds.h"
#include "app/UnreadableSamples.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

class RecordingReloadTest : public ViewFixture {
  protected:
    RecordingReloadTest() {
        m_document.OpenFile(u"C:\\a.fake", m_stamp);
        m_playback.Open();
        m_reload.stampOf = [this](const std::u16string& path) {
            m_looked.push_back(path);
            return m_stamp;
        };
        m_reload.isSlow = [this] { return m_slow; };
        m_reload.onOpen = [this](const std::u16string& name) { m_opened = name; };
        m_reload.onReloaded = [this](bool grown) {
            m_grown = grown;
            m_kept = m_reload.Kept().has_value();
            m_playing = m_playback.IsPlaying();
            if (m_fails) throw std::runtime_error("no memory");
        };
        m_reload.onTell = [this](bool loaded, const std::u16string& text) {
            m_loaded = loaded;
            m_told = text;
        };
    }
    /// Whether it has asked the system for the file.
    bool Looks(bool asked, bool isDragging = false) {
        m_looked.clear();
        m_reload.Look(asked, isDragging);
        return !m_looked.empty();
    }

    DeviceState m_device;
    SoundOutputFactory m_make = [this](SoundOutputEvents) { return std::make_unique<FakeOutput>(m_device); };
    Playback m_playback{m_document, m_view, m_services, m_make};
    RecordingReload m_reload{{m_document, m_view, m_playback, m_library, m_services}};
    FileStamp m_stamp{true, 1, 7, 100, 5};
    bool m_slow = false, m_fails = false, m_kept = false, m_playing = true, m_loaded = false, m_grown = false;
    std::vector<std::u16string> m_looked;
    std::u16string m_opened, m_told;
};

TEST_F(RecordingReloadTest, InterruptsNothingAndLooksAtSlowDrivesOnlyWithAReason) {
    EXPECT_TRUE(Looks(false));
    EXPECT_FALSE(Looks(false, true));
    EXPECT_TRUE(Looks(true, true));
    m_slow = true;
    EXPECT_FALSE(Looks(false));
    m_reload.Soon();
    EXPECT_FALSE(Looks(false, true)) << "the drag goes on";
    EXPECT_TRUE(Looks(false)) << "the reason outlasts it";
    EXPECT_FALSE(Looks(false)) << "one look";
    // A change that was found is looked at until the file is no longer written.
    m_reload.Soon();
    m_stamp.size = 50;
    EXPECT_TRUE(Looks(false));
    EXPECT_EQ(m_told, u"");
    m_playback.Play(1);
    EXPECT_FALSE(Looks(false)) << "it can be heard";
    m_playback.Stop();
    EXPECT_TRUE(Looks(false));
    EXPECT_EQ(m_told, u"a.fake: " + m_services.Text(IDS_FILE_RELOADED));
}

TEST_F(RecordingReloadTest, KeepsTheViewWhileTheRoomsChangeOnly) {
    m_stamp.size = 200;
    m_playback.Play(1);
    m_reload.Look(true, false);
    EXPECT_TRUE(m_kept);
    EXPECT_FALSE(m_playing) << "the block that is heard goes";
    EXPECT_TRUE(m_loaded);
    EXPECT_FALSE(m_reload.Kept());
    m_stamp.size = 300;
    m_fails = true;
    EXPECT_THROW(m_reload.Look(true, false), std::runtime_error);
    EXPECT_FALSE(m_reload.Kept()) << "the next recording starts at its own view";
    // What can no longer be read stays, and it is told why.
    m_library.files.clear();
    m_stamp.size = 400;
    m_kept = false;
    m_reload.Look(true, false);
    EXPECT_FALSE(m_kept || m_loaded || m_reload.Kept());
    EXPECT_EQ(m_told, u"a.fake: " + m_services.Text(IDS_FILE_CHANGED) + u": no such thing");
    // A refused one is opened by the list, which says what became of it.
    m_document.OpenFile(u"C:\\b.fake", m_stamp);
    m_stamp.size = 500;
    m_reload.Look(true, false);
    EXPECT_EQ(m_opened, u"b.fake");
}

TEST(UnreadableSamples, AreToldEachTimeInViewAndOnceElsewhere) {
    const FakeServices services;
    UnreadableSamples samples;
    const auto tell = [&](const char* inView, const char* inRanges, bool wholeView) {
        return samples.Tell({u"a.bin", inView, inRanges, wholeView}, services);
    };
    const std::u16string seen = u"a.bin: " + services.Text(IDS_UNREADABLE) + u": gone";
    const std::u16string partial = u"a.bin: " + services.Text(IDS_RANGE_PARTIAL) + u": gone";
    EXPECT_EQ(tell("", "", true), std::nullopt) << "nothing was told";
    EXPECT_EQ(tell("gone", "", true), seen);
    EXPECT_EQ(tell("gone", "other", true), seen) << "another message may have replaced it";
    EXPECT_EQ(tell("", "gone", true), partial);
    EXPECT_EQ(tell("", "gone", true), std::nullopt);
    EXPECT_EQ(tell("", "", false), std::nullopt) << "the rest of the view was not read again";
    EXPECT_EQ(tell("", "", true), u"");
    EXPECT_EQ(tell("", "", true), std::nullopt);
    EXPECT_EQ(tell("", "gone", false), partial);
}

TEST(Captions, NameFileAndBlock) {
    EXPECT_EQ(WindowCaption(u"", u"old\t1"), u"Quillon") << "the list may still hold the block of before";
    EXPECT_EQ(WindowCaption(u"C:\\d\\a.bin", u"\t1"), u"a.bin");
    EXPECT_EQ(WindowCaption(u"C:\\d\\a.bin", u"256 Hz\t12"), u"a.bin - [256 Hz]");
}

}  // namespace
}  // namespace quillon
