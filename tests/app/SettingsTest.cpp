#include "app/Settings.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <variant>

#include "base/Text.h"

namespace quillon {
namespace {

using Value = std::variant<std::u16string, std::int16_t, std::int32_t, float>;
using Key = std::map<std::u16string, Value>;

/// What a registry holds, what was asked of it in order, and what fails: names whose use throws, keys that do not open.
struct Hive {
    std::map<std::u16string, Key> keys;
    std::vector<std::u16string> log;
    std::set<std::u16string> throwing;
    std::set<std::u16string> closed;
};

class FakeRegistry final : public RegistryObject {
  public:
    explicit FakeRegistry(Hive& hive) : m_hive(hive) {}

    void SetRoot(RegistryRoot root) override { m_root = root; }
    void SetKeyPath(const std::u16string& path) override { m_path = path; }
    bool OpenOrCreate() override {
        m_hive.log.push_back((m_root == RegistryRoot::CurrentUser ? u"user " : u"machine ") + m_path);
        m_key = m_hive.closed.contains(m_path) ? nullptr : &m_hive.keys[m_path];
        return m_key != nullptr;
    }
    bool ReadText(const std::u16string& name, std::u16string& value) override { return Read(name, value); }
    bool ReadInt16(const std::u16string& name, std::int16_t& value) override { return Read(name, value); }
    bool ReadInt32(const std::u16string& name, std::int32_t& value) override { return Read(name, value); }
    bool ReadSingle(const std::u16string& name, float& value) override { return Read(name, value); }
    bool WriteText(const std::u16string& name, const std::u16string& value) override { return Write(name, value); }
    bool WriteInt16(const std::u16string& name, std::int16_t value) override { return Write(name, value); }
    bool WriteInt32(const std::u16string& name, std::int32_t value) override { return Write(name, value); }
    bool WriteSingle(const std::u16string& name, float value) override { return Write(name, value); }

  private:
    void Note(const std::u16string& name) {
        m_hive.log.push_back(name);
        if (m_hive.throwing.contains(name)) throw std::runtime_error("access is denied");
    }
    template <typename T>
    bool Read(const std::u16string& name, T& value) {
        Note(name);
        const auto found = m_key->find(name);
        if (found == m_key->end() || !std::holds_alternative<T>(found->second)) return false;
        value = std::get<T>(found->second);
        return true;
    }
    template <typename T>
    bool Write(const std::u16string& name, const T& value) {
        Note(name);
        m_key->insert_or_assign(name, Value(value));
        return true;
    }

    Hive& m_hive;
    RegistryRoot m_root = RegistryRoot::LocalMachine;
    std::u16string m_path;
    Key* m_key = nullptr;
};

class SettingsTest : public ::testing::Test {
  protected:
    static constexpr std::u16string_view kMain = u"Software\\Norvik\\Quillon\\1.x";

    SettingsStore Store() {
        return {[this] { return std::make_unique<FakeRegistry>(m_hive); }, {u"Quillon", 1, 2, 3}};
    }
    Settings Loaded() {
        Settings settings;
        Store().Load(settings);
        return settings;
    }
    Key& Main() { return m_hive.keys[std::u16string(kMain)]; }
    Key& Spectrum() { return m_hive.keys[std::u16string(kMain) + u"\\Spectrogram"]; }
    Key& Window() { return m_hive.keys[std::u16string(kMain) + u"\\Window"]; }

    /// The operations so far, each as a word; keys without their common part.
    std::string TakeLog() {
        std::string text;
        for (const std::u16string& line : m_hive.log) text += (text.empty() ? "" : " ") + Utf8(line);
        m_hive.log.clear();
        for (auto at = text.find(Utf8(kMain)); at != std::string::npos; at = text.find(Utf8(kMain)))
            text.replace(at, kMain.size(), "1.x");
        return text;
    }

    Hive m_hive;
};

TEST_F(SettingsTest, ReadsAndWritesEveryValueUnderItsNameTypeAndPlaceInTheOrder) {
    // Distinct values, so that two that change places are noticed.
    auto fill = [next = 100](Key& key, std::initializer_list<const char16_t*> names, const auto& type) mutable {
        using T = std::decay_t<decltype(type)>;
        for (const char16_t* name : names) {
            ++next;
            if constexpr (std::is_same_v<T, std::u16string>) {
                key[name] = u"текст " + Decimal(next);
            } else {
                key[name] = static_cast<T>(-next);
            }
        }
    };
    fill(Main(), {u"FilesPath", u"ExpPath", u"ExpFastFile", u"PathList1", u"PathList2"}, std::u16string());
    fill(Main(),
         {u"HelpLanguage", u"TimeFormat", u"ScaleFormat", u"DigitsCount", u"DigitsType", u"GridColor", u"GridStyle",
          u"WaveformCursor", u"ExpFileType", u"ExpChType", u"ExpRowSize", u"ExpRowRate", u"ExpRowStep", u"ExpRowHead",
          u"ExpXColumn", u"ExpXFormat", u"SplitType", u"SplitFileIndex", u"SplitBaseName"},
         std::int16_t());
    fill(Main(), {u"TimeIndex", u"SplitPtStep", u"SplitPtSize"}, std::int32_t());
    fill(Main(), {u"SplitTmStep", u"SplitTmSize"}, float());
    fill(Spectrum(), {u"FFTOrder2"}, std::int32_t());
    fill(Spectrum(), {u"WindowType", u"Palette", u"SpectrumType"}, std::int16_t());
    fill(Spectrum(), {u"AmpScale", u"DBRange"}, float());
    fill(Window(), {u"Left", u"Top", u"Width", u"Height", u"ListWidth", u"UpperPercent"}, std::int32_t());
    Main()[u"UnitScaling"] = std::int16_t{0};
    Main()[u"PathListCount"] = std::int32_t{2};
    Window()[u"Maximized"] = std::int16_t{1};
    Window()[u"SpectrogramShown"] = std::int16_t{0};

    Settings settings;
    SettingsStore store = Store();
    store.Load(settings);
    EXPECT_EQ(TakeLog(),
              "user 1.x FilesPath HelpLanguage TimeFormat TimeIndex ScaleFormat UnitScaling DigitsCount DigitsType "
              "GridColor GridStyle WaveformCursor ExpFileType ExpChType ExpRowSize ExpRowRate ExpRowStep ExpRowHead "
              "ExpXColumn ExpXFormat ExpPath ExpFastFile SplitType SplitPtStep SplitPtSize SplitTmStep SplitTmSize "
              "SplitFileIndex SplitBaseName PathListCount PathList1 PathList2 "
              "user 1.x\\Spectrogram FFTOrder2 WindowType Palette SpectrumType AmpScale DBRange "
              "user 1.x\\Window Left Top Width Height Maximized ListWidth UpperPercent SpectrogramShown");
    EXPECT_EQ(settings.filesPath, u"текст 101");
    EXPECT_EQ(settings.pathList.Folders(), (std::vector<std::u16string>{u"текст 104", u"текст 105"}));

    auto expected = m_hive.keys;
    expected[std::u16string(kMain)].merge(
        Key{{u"Major", std::int16_t{1}}, {u"Minor", std::int16_t{2}}, {u"Revision", std::int16_t{3}}});
    m_hive.keys.clear();
    EXPECT_TRUE(store.Save(settings));
    EXPECT_EQ(m_hive.keys, expected);
    EXPECT_EQ(TakeLog(),
              "user 1.x Major Minor Revision FilesPath HelpLanguage TimeFormat TimeIndex ScaleFormat UnitScaling "
              "DigitsCount DigitsType GridColor GridStyle WaveformCursor ExpPath ExpFastFile ExpFileType ExpChType "
              "ExpRowSize ExpRowRate ExpRowStep ExpRowHead ExpXColumn ExpXFormat SplitType SplitPtStep SplitPtSize "
              "SplitTmStep SplitTmSize SplitFileIndex SplitBaseName PathListCount PathList1 PathList2 "
              "user 1.x\\Spectrogram FFTOrder2 WindowType Palette SpectrumType AmpScale DBRange "
              "user 1.x\\Window Left Top Width Height Maximized ListWidth UpperPercent SpectrogramShown");
}

TEST_F(SettingsTest, AFirstRunHasAUsableSpectrum) {
    EXPECT_TRUE(Store().Save(Loaded()));
    EXPECT_EQ(Spectrum(), (Key{{u"FFTOrder2", std::int32_t{8}},
                               {u"WindowType", std::int16_t{0}},
                               {u"Palette", std::int16_t{0}},
                               {u"SpectrumType", std::int16_t{0}},
                               {u"AmpScale", 100.0F},
                               {u"DBRange", 120.0F}}));
    EXPECT_EQ(Main()[u"PathListCount"], Value(std::int32_t{0}));
}

TEST_F(SettingsTest, TakesOnlyAsManyRememberedFoldersAsThereCanBe) {
    for (int number = 1; number <= 40; ++number) Main()[u"PathList" + Decimal(number)] = u"C:\\" + Decimal(number);
    const auto loaded = [&](const Value& count) {
        Main()[u"PathListCount"] = count;
        return Loaded().pathList.Folders().size();
    };
    EXPECT_EQ(loaded(std::int32_t{-5}), 0U);
    EXPECT_EQ(loaded(static_cast<std::int32_t>(4000000000U)), 0U);
    EXPECT_EQ(loaded(std::numeric_limits<std::int32_t>::max()), 30U);
    EXPECT_EQ(loaded(std::u16string(u"7")), 0U);
    Main().erase(u"PathList2");
    Main()[u"PathList3"] = std::int32_t{3};
    EXPECT_EQ(loaded(std::int32_t{4}), 2U) << "what cannot be read leaves no empty entry";
    EXPECT_EQ(Loaded().pathList.Folders().back(), u"C:\\4");
}

TEST_F(SettingsTest, AValueThatFailsCostsNoOther) {
    Settings settings;
    settings.gridStyle = 2;
    settings.splitTimeSize = 2.5F;
    settings.pathList = PathList({u"C:\\a", u"C:\\b"});
    settings.palette = 1;
    m_hive.throwing = {u"Major", u"GridColor", u"PathListCount", u"PathList1", u"FFTOrder2", u"Maximized"};
    EXPECT_FALSE(Store().Save(settings));
    EXPECT_EQ(Main()[u"GridStyle"], Value(std::int16_t{2}));
    EXPECT_EQ(Main()[u"PathList2"], Value(std::u16string(u"C:\\b")));
    EXPECT_EQ(Spectrum()[u"Palette"], Value(std::int16_t{1}));
    EXPECT_TRUE(Window().contains(u"SpectrogramShown"));
    Main()[u"PathListCount"] = std::int32_t{2};
    m_hive.throwing.erase(u"PathListCount");
    const Settings loaded = Loaded();
    EXPECT_EQ(loaded.gridStyle, 2);
    EXPECT_EQ(loaded.splitTimeSize, 2.5F);
    EXPECT_EQ(loaded.pathList.Folders(), std::vector<std::u16string>{u"C:\\b"});
    EXPECT_EQ(loaded.palette, 1);
    EXPECT_EQ(loaded.fftOrder, 8);
}

TEST_F(SettingsTest, AKeyThatDoesNotOpenCostsNoOther) {
    Settings settings;
    settings.palette = 2;
    settings.windowLeft = -7;
    m_hive.closed = {std::u16string(kMain)};
    EXPECT_FALSE(Store().Save(settings));
    EXPECT_EQ(Loaded().palette, 2);
    m_hive.closed = {std::u16string(kMain) + u"\\Spectrogram"};
    EXPECT_FALSE(Store().Save(settings));
    EXPECT_EQ(Loaded().windowLeft, -7);
    EXPECT_TRUE(Main().contains(u"FilesPath"));
}

TEST_F(SettingsTest, WithoutARegistryTheProgramRunsOnItsDefaults) {
    int made = 0;
    SettingsStore store(
        [&]() -> std::unique_ptr<RegistryObject> {
            if (++made == 1) throw std::runtime_error("not installed");
            if (made <= 3) return nullptr;
            return std::make_unique<FakeRegistry>(m_hive);
        },
        {});
    Settings settings;
    store.Load(settings);
    EXPECT_EQ(settings.fftOrder, 8);
    EXPECT_EQ(made, 3);
    EXPECT_TRUE(store.Save(settings)) << "a registry that comes later is used";
    EXPECT_EQ(made, 4) << "and kept";
}

}  // namespace
}  // namespace quillon
