// What a start takes over from the last run: recent recordings, and the place in the last one.
#include <gmock/gmock.h>

#include <map>
#include <random>
#include <set>
#include <variant>

#include "app/LastPlace.h"
#include "app/Settings.h"
#include "base/Text.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using namespace ::quillon::testing;

using Stored = std::map<std::u16string, std::variant<std::u16string, std::int32_t>>;

/// Keys in memory, which outlive it.
class FakeRegistry final : public RegistryObject {
  public:
    explicit FakeRegistry(std::map<std::u16string, Stored>& keys) : m_keys(keys) {}
    void SetRoot(RegistryRoot) override {}
    void SetKeyPath(const std::u16string& path) override { m_path = path; }
    bool OpenOrCreate() override { return true; }
    bool ReadText(const std::u16string& name, std::u16string& value) override { return Read(name, value); }
    bool ReadInt32(const std::u16string& name, std::int32_t& value) override { return Read(name, value); }
    bool ReadInt16(const std::u16string&, std::int16_t&) override { return false; }
    bool ReadSingle(const std::u16string&, float&) override { return false; }
    bool WriteText(const std::u16string& name, const std::u16string& value) override { return Write(name, value); }
    bool WriteInt32(const std::u16string& name, std::int32_t value) override { return Write(name, value); }
    bool WriteInt16(const std::u16string& name, std::int16_t value) override { return Write(name, value); }
    bool WriteSingle(const std::u16string&, float) override { return true; }

  private:
    template <typename Value>
    bool Read(const std::u16string& name, Value& value) {
        const auto found = m_keys[m_path].find(name);
        if (found == m_keys[m_path].end() || !std::holds_alternative<Value>(found->second)) return false;
        value = std::get<Value>(found->second);
        return true;
    }
    template <typename Value>
    bool Write(const std::u16string& name, const Value& value) {
        m_keys[m_path][name] = value;
        return true;
    }
    std::map<std::u16string, Stored>& m_keys;
    std::u16string m_path;
};

class StoredRecordings : public ::testing::Test {
  protected:
    SettingsStore Store() {
        return {[this] { return std::make_unique<FakeRegistry>(m_keys); }, {}};
    }
    Settings Loaded() {
        Settings settings;
        Store().Load(settings);
        return settings;
    }
    std::map<std::u16string, Stored> m_keys;
    Stored& m_window = m_keys[u"Software\\Norvik\\Quillon\\1.x\\Window"];
};

TEST_F(StoredRecordings, TheLatestComesFirstAndEachOnce) {
    Settings settings;
    for (int at = 0; at < 20; ++at) settings.recent.Add(u"C:\\Записи\\" + Decimal(at) + u".edf");
    settings.recent.Add(u"c:\\записи\\12.EDF");
    settings.recent.Add(u"\\\\server\\share\\a.bin");
    settings.last = {u"C:\\Записи\\ночь.edf", u"block=1"};
    const std::vector<std::u16string> kept = settings.recent.Paths();
    EXPECT_EQ(kept.size(), RecentRecordings::kMost);
    EXPECT_THAT(
        std::vector(kept.begin(), kept.begin() + 4),
        ElementsAre(u"\\\\server\\share\\a.bin", u"c:\\записи\\12.EDF", u"C:\\Записи\\19.edf", u"C:\\Записи\\18.edf"));
    EXPECT_TRUE(Store().Save(settings));
    EXPECT_EQ(Loaded().recent.Paths(), kept);
    EXPECT_EQ(Loaded().last.path, settings.last.path);
    EXPECT_EQ(Loaded().last.place, settings.last.place);
    // What was cleared is in no value any more.
    settings.recent.Clear();
    settings.last = {};
    EXPECT_TRUE(Store().SaveRecordings(settings));
    for (const auto& [name, value] : m_window) {
        if (std::holds_alternative<std::u16string>(value) && name != u"Shown" && name != u"Montages") {
            EXPECT_EQ(std::get<std::u16string>(value), u"") << Utf8(name);
        }
    }
    EXPECT_TRUE(Loaded().recent.Paths().empty());
}

TEST_F(StoredRecordings, OfSpoiledValuesOnlyPathsOfFilesAreTaken) {
    const std::u16string usable = u"D:/a & b/\u00E9.wav";
    for (const std::u16string& spoiled :
         {std::u16string(u"a.bin"), std::u16string(u"C:"), std::u16string(u"C:\\"), std::u16string(u"C:\\folder\\"),
          std::u16string(u"\\\\.\\COM1"), std::u16string(u"C:\\a\nb.bin"), std::u16string(u"\t\t\t\t"),
          u"C:\\" + std::u16string(40000, u'x'), std::u16string(u"C:a.bin"), std::u16string(u"\\folder\\a.bin")}) {
        m_window[u"Recent1"] = spoiled;
        m_window[u"Recent2"] = 7;
        m_window[u"Recent7"] = usable;
        m_window[u"Recent9"] = LowerCase(usable);
        m_window[u"LastRecording"] = 7;
        EXPECT_THAT(Loaded().recent.Paths(), ElementsAre(usable)) << Utf8(spoiled.substr(0, 20));
        EXPECT_EQ(Loaded().last.path, u"");
    }
}

TEST(RecentCaption, HasAKeyOfItsOwnAndRoomForAnyPath) {
    std::set<char16_t> keys;
    for (std::size_t index = 0; index < RecentRecordings::kMost; ++index) {
        const std::u16string line = RecentCaption(index, u"C:\\a.bin");
        EXPECT_EQ(line.substr(line.find(u' ')), u"  a.bin\tC:\\");
        if (const std::size_t mark = line.find(u'&'); mark != line.npos) {
            EXPECT_TRUE(keys.insert(line[mark + 1]).second);
        }
    }
    EXPECT_EQ(keys.size(), 10U);
    const std::u16string deep =
        u"C:\\" + std::u16string(30, u'a') + u'\\' + std::u16string(30, u'b') + u"\\sleep\\night";
    EXPECT_EQ(RecentCaption(0, deep + u"\\R&D.edf"),
              u"&1  R&&D.edf\tC:\\\u2026\\" + std::u16string(30, u'b') + u"\\sleep\\night");
    EXPECT_EQ(RecentCaption(0, u"\\\\server\\share\\" + deep.substr(3) + u"\\a.edf"),
              u"&1  a.edf\t\\\\server\\share\\\u2026\\sleep\\night");
    // Whatever the path is, the line stays short and no pair of surrogates is cut.
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        std::u16string path = round % 2 == 0 ? u"C:\\" : u"\\\\";
        for (auto length = random() % 300; length > 0; --length)
            path += random() % 20 == 0 ? u"\\" : random() % 3 == 0 ? u"\U0001F600" : u"n";
        const std::u16string line = RecentCaption(11, path + u'x');
        EXPECT_LT(line.size(), 130U);
        EXPECT_EQ(Utf16(Utf8(line)), line) << "a half of a pair would be replaced";
    }
}

/// The view of a run, and that of the next one.
class LastPlaceTest : public EmptyViewFixture {
  protected:
    void Reload(std::shared_ptr<FakeBlock> block) {
        Load(std::move(block));
        m_view.FitScales(ValueRange{-1.0F, 1.0F});
    }
    [[nodiscard]] std::u16string Text() const { return TextOf({0, m_view.Keep()}); }
    bool Restore(std::u16string_view text) {
        m_view.LeaveBlock();
        const auto place = LastPlaceOf(text, m_view.Keep());
        m_view.BlockLoaded();
        if (place) m_view.Restore(place->view);
        return place.has_value();
    }
    void GoSomewhere(std::mt19937& random) {
        const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
        m_view.SetLanes(below(2) == 1);
        m_view.SelectZoomX(below(TimeAxis::kMenuZoomCount));
        if (below(2) == 1) m_view.SelectPage(1 + below(700) / 7.0);
        if (below(3) == 1) m_view.FitBlock();
        m_view.ScrollBy(below(100000));
        // Behind the end nothing is seen: the next run shows the last page instead.
        if (m_axis.Visible().count == 0) m_view.GoToPage(1);
        m_view.SelectScaleY(below(AmplitudeScale::kScaleCount));
        m_view.MoveBaseLine(below(2000) - 1000);
        below(2) == 1 ? m_view.Select(1 + below(99999), 1 + below(99999)) : m_view.Deselect();
        m_view.Pin(below(2) * (1 + below(99999)));
    }
};

TEST_F(LastPlaceTest, AnyViewComesBackAsItWas) {
    std::mt19937 random(11);
    Reload(Sevens(2));
    for (int round = 0; round < 300; ++round) {
        GoSomewhere(random);
        const auto seen = Seen();
        const TimeAxis::Place time = m_axis.GetPlace();
        const Selection selected = m_view.Selected();
        const std::int32_t pinned = m_view.Pinned();
        const std::u16string text = Text();
        SCOPED_TRACE(Utf8(text));
        GoSomewhere(random);
        m_view.SetLanes(time.free);
        ASSERT_TRUE(Restore(text));
        EXPECT_EQ(Seen(), seen);
        EXPECT_EQ(m_axis.GetPlace().page, time.page);
        EXPECT_EQ(
            std::tuple(m_view.Selected().active, m_view.Selected().start, m_view.Selected().end),
            std::tuple(selected.active, selected.active ? selected.start : 0, selected.active ? selected.end : 0));
        EXPECT_EQ(m_view.Pinned(), pinned);
        EXPECT_FALSE(m_view.HasHistory());
    }
    // Of a recording that is shorter now the last page is shown.
    m_view.SetLanes(false);
    Restore(u"block=0;zoom=2;first=19000;scale=3;shift=5;selection=900,99000");
    const std::u16string text = Text();
    Reload(Sevens(2, 5000));
    ASSERT_TRUE(Restore(text));
    EXPECT_EQ(m_axis.FirstColumn(), 500);
    EXPECT_EQ(std::pair(m_view.Selected().First(), m_view.Selected().Last()), std::pair(900, 5000));
    EXPECT_EQ(std::pair(m_view.ScaleY(), m_view.BaseLineShift()), std::pair(3, std::int64_t{5}));
}

TEST_F(LastPlaceTest, OfADamagedTextNothingOrSomethingPossibleIsShown) {
    Reload(Sevens(2));
    for (const char16_t* text :
         {u"", u"block=0", u"block=0;zoom=28;first=0;scale=0;shift=0", u"block=0;zoom=;first=0;scale=0;shift=0",
          u"block=-1;zoom=0;first=0;scale=0;shift=0", u"block=0;zoom=0;first=0;scale=0;shift=99999999999999999",
          u"block=0;zoom=0;first=0;scale=0;shift=0;page=0,1,500", u"block=0;zoom=0;first=0;scale=0;shift=0;page=5",
          u"block=0;zoom=0;first=0;scale=0;shift=0;selection=0,5", u"block=0;zoom=0;first=1x;scale=0;shift=0"})
        EXPECT_FALSE(LastPlaceOf(text, m_view.Keep())) << Utf8(text);
    EXPECT_TRUE(LastPlaceOf(u"later=a,b;block=3;zoom=0;first=0;scale=0;shift=0;;=", m_view.Keep()));
    std::mt19937 random(12);
    const std::u16string parts = u"0123456789-;,=";
    int taken = 0;
    for (int round = 0; round < 3000; ++round) {
        m_view.SetLanes(random() % 2 == 0);
        std::u16string text =
            u"block=0;zoom=3;first=1000;scale=8;shift=33;page=7168,1,500;selection=12001,12400;pinned=9";
        for (auto changes = 1 + random() % 4; changes > 0; --changes) {
            const std::size_t at = random() % text.size();
            random() % 3 == 0 ? text.insert(at, 1, parts[random() % parts.size()])
                              : text.replace(at, 1, 1, parts[random() % parts.size()]);
        }
        SCOPED_TRACE(Utf8(text));
        if (!Restore(text)) continue;
        ++taken;
        EXPECT_GT(m_axis.Visible().count, 0);
        EXPECT_TRUE(m_axis.FirstColumn() >= 0 && m_axis.FirstColumn() <= m_axis.StripLength());
        EXPECT_TRUE(m_view.Pinned() >= 0 && m_view.Pinned() <= 100000);
        const Selection& selected = m_view.Selected();
        if (!selected.active) continue;
        EXPECT_TRUE(selected.First() >= 1 && selected.Last() <= 100000);
        m_view.FitSelection();
        m_view.Back();
    }
    EXPECT_GT(taken, 300);
}

TEST_F(LastPlaceTest, APlaceThatReadingOnHasNotReachedIsWaitedFor) {
    const auto recording = std::make_shared<FakeRecording>();
    recording->name = u"C:\\grows.fake";
    recording->blocks = {Sevens(1, 1000)};
    recording->steps.assign(3, [] {});
    m_library.files[recording->name] = recording;
    const auto isKnown = [&](std::int16_t block, const char16_t* rest) {
        m_document.OpenFile(recording->name, {}, block);
        const auto place = LastPlaceOf(u"block=" + Decimal(block) + u";scale=0;shift=0;" + rest, m_view.Keep());
        return IsKnown(place.value(), m_document);
    };
    // Samples 2 x 400 and more, and 15 x 50.
    EXPECT_TRUE(isKnown(0, u"zoom=1;first=400"));
    EXPECT_FALSE(isKnown(0, u"zoom=1;first=500"));
    EXPECT_FALSE(isKnown(0, u"zoom=0;first=0;selection=3,1001"));
    EXPECT_TRUE(isKnown(0, u"zoom=0;first=50;page=7500,1,500"));
    EXPECT_FALSE(isKnown(0, u"zoom=0;first=80;page=7500,1,500"));
    EXPECT_FALSE(isKnown(1, u"zoom=0;first=0"));
    recording->blocks.push_back(Sevens(1, 10));
    EXPECT_TRUE(isKnown(0, u"zoom=1;first=500")) << "it will not grow any more";
    EXPECT_TRUE(isKnown(1, u"zoom=0;first=0"));
    EXPECT_FALSE(isKnown(2, u"zoom=0;first=0"));
    recording->steps.clear();
    EXPECT_TRUE(isKnown(2, u"zoom=0;first=0")) << "the last block is what there is";
    EXPECT_EQ(m_document.File().currentBlockIndex, 1);
}

}  // namespace
}  // namespace quillon
