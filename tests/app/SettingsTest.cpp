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

/// What a registry holds, what was asked of it, and what fails: names whose use throws, keys that do not open.
struct Hive {
    std::map<std::u16string, Key> keys;
    /// Keys and, with a letter for the type, values in the order of their use.
    std::string log;
    std::set<std::u16string> throwing;
    std::set<std::u16string> closed;
    /// Above 0, a value that is read but missing is made up, each another one.
    std::int16_t invented = 0;
};

class FakeRegistry final : public RegistryObject {
  public:
    explicit FakeRegistry(Hive& hive) : m_hive(hive) {}

    void SetRoot(RegistryRoot root) override { m_root = root; }
    void SetKeyPath(const std::u16string& path) override { m_path = path; }
    bool OpenOrCreate() override {
        m_hive.log += (m_root == RegistryRoot::CurrentUser ? "[user " : "[machine ") + Utf8(m_path) + "] ";
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
    template <typename T>
    void Note(const std::u16string& name) {
        m_hive.log += Utf8(name) + ":" + "tsif"[Value(T{}).index()] + " ";
        if (m_hive.throwing.contains(name)) throw std::runtime_error("access is denied");
    }
    template <typename T>
    bool Read(const std::u16string& name, T& value) {
        Note<T>(name);
        if (m_hive.invented > 0 && !m_key->contains(name)) {
            ++m_hive.invented;
            if constexpr (std::is_same_v<T, std::u16string>) {
                (*m_key)[name] = u"текст " + Decimal(m_hive.invented);
            } else {
                (*m_key)[name] = static_cast<T>(-m_hive.invented);
            }
        }
        const auto found = m_key->find(name);
        if (found == m_key->end() || !std::holds_alternative<T>(found->second)) return false;
        value = std::get<T>(found->second);
        return true;
    }
    template <typename T>
    bool Write(const std::u16string& name, const T& value) {
        Note<T>(name);
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
    const std::u16string kMain = u"Software\\Norvik\\Quillon\\1.x";
    const std::u16string kSpectrum = kMain + u"\\Spectrogram";
    const std::u16string kWindow = kMain + u"\\Window";

    SettingsStore Store() {
        return {[this] { return std::make_unique<FakeRegistry>(m_hive); }, {u"Quillon", 1, 2, 3}};
    }
    Settings Loaded() {
        Settings settings;
        Store().Load(settings);
        return settings;
    }

    Key& Main() { return m_hive.keys[kMain]; }

    Hive m_hive;
};

TEST_F(SettingsTest, ReadsAndWritesEveryValueUnderItsNameTypeAndPlaceInTheOrder) {
    m_hive.invented = 100;
    Main()[u"UnitScaling"] = std::int16_t{0};
    Main()[u"PathListCount"] = std::int32_t{2};
    m_hive.keys[kWindow][u"Maximized"] = std::int16_t{1};
    m_hive.keys[kWindow][u"SpectrogramShown"] = std::int16_t{0};
    const std::string main = "[user " + Utf8(kMain) + "] ";
    const std::string display =
        "FilesPath:t HelpLanguage:s TimeFormat:s TimeIndex:i ScaleFormat:s UnitScaling:s DigitsCount:s DigitsType:s "
        "GridColor:s GridStyle:s WaveformCursor:s ";
    const std::string paths = "ExpPath:t ExpFastFile:t ";
    const std::string choices =
        "ExpFileType:s ExpChType:s ExpRowSize:s ExpRowRate:s ExpRowStep:s ExpRowHead:s ExpXColumn:s ExpXFormat:s ";
    const std::string rest =
        "SplitType:s SplitPtStep:i SplitPtSize:i SplitTmStep:f SplitTmSize:f SplitFileIndex:s "
        "SplitBaseName:s PathListCount:i PathList1:t PathList2:t [user " +
        Utf8(kSpectrum) + "] FFTOrder2:i WindowType:s Palette:s SpectrumType:s AmpScale:f DBRange:f [user " +
        Utf8(kWindow) +
        "] Left:i Top:i Width:i Height:i Maximized:s ListWidth:i UpperPercent:i SpectrogramPercent:i "
        "SpectrogramShown:s ";
    const Settings settings = Loaded();
    EXPECT_EQ(m_hive.log, main + display + choices + paths + rest);
    EXPECT_EQ(settings.filesPath, u"текст 101");
    EXPECT_EQ(settings.pathList.Folders().size(), 2U);

    auto expected = m_hive.keys;
    expected[kMain].merge(
        Key{{u"Major", std::int16_t{1}}, {u"Minor", std::int16_t{2}}, {u"Revision", std::int16_t{3}}});
    m_hive = {};
    EXPECT_TRUE(Store().Save(settings));
    EXPECT_EQ(m_hive.keys, expected);
    EXPECT_EQ(m_hive.log, main + "Major:s Minor:s Revision:s " + display + paths + choices + rest);
}

TEST_F(SettingsTest, TakesOnlyAsManyRememberedFoldersAsThereCanBe) {
    for (int number = 1; number <= 40; ++number) Main()[u"PathList" + Decimal(number)] = u"C:\\" + Decimal(number);
    const std::pair<Value, std::size_t> cases[] = {
        {std::int32_t{-5}, 0U}, {std::numeric_limits<std::int32_t>::max(), 30U}, {std::u16string(u"7"), 0U}};
    for (const auto& [count, expected] : cases) {
        Main()[u"PathListCount"] = count;
        EXPECT_EQ(Loaded().pathList.Folders().size(), expected);
    }
    Main()[u"PathListCount"] = std::int32_t{4};
    Main().erase(u"PathList2");
    Main()[u"PathList3"] = std::int32_t{3};
    EXPECT_EQ(Loaded().pathList.Folders(), (std::vector<std::u16string>{u"C:\\1", u"C:\\4"}));
}

TEST_F(SettingsTest, AValueOrKeyThatFailsCostsNoOther) {
    Settings settings;
    settings.gridStyle = 2;
    settings.splitTimeSize = 2.5F;
    settings.pathList = PathList({u"C:\\a", u"C:\\b"});
    settings.palette = 1;
    m_hive.throwing = {u"Major", u"GridColor", u"PathListCount", u"PathList1", u"FFTOrder2", u"Maximized"};
    EXPECT_FALSE(Store().Save(settings));
    EXPECT_TRUE(m_hive.keys[kWindow].contains(u"SpectrogramShown"));
    Main()[u"PathListCount"] = std::int32_t{2};
    m_hive.throwing.erase(u"PathListCount");
    const Settings loaded = Loaded();
    EXPECT_EQ(loaded.gridStyle, 2);
    EXPECT_EQ(loaded.splitTimeSize, 2.5F);
    EXPECT_EQ(loaded.pathList.Folders(), std::vector<std::u16string>{u"C:\\b"});
    EXPECT_EQ(loaded.palette, 1);
    EXPECT_EQ(loaded.order, 8);

    m_hive.throwing.clear();
    settings.palette = 2;
    settings.windowLeft = -7;
    m_hive.closed = {kMain};
    EXPECT_FALSE(Store().Save(settings));
    EXPECT_EQ(Loaded().palette, 2);
    m_hive.closed = {kSpectrum};
    EXPECT_FALSE(Store().Save(settings));
    EXPECT_EQ(Loaded().windowLeft, -7);
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
    EXPECT_EQ(settings.order, 8);
    EXPECT_EQ(settings.amplitudeScale, 100.0F);
    EXPECT_EQ(settings.decibelRange, 120.0F);
    EXPECT_TRUE(store.Save(settings)) << "a registry that comes later is used";
    EXPECT_EQ(made, 4) << "and kept";
}

}  // namespace
}  // namespace quillon
