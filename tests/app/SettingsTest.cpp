#include "app/Settings.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <stdexcept>
#include <variant>

namespace quillon {
namespace {

using Key = std::map<std::u16string, std::variant<std::u16string, std::int16_t, std::int32_t, float>>;

/// What a registry holds, and what fails: names whose use throws, keys that do not open.
struct Hive {
    std::map<std::u16string, Key> keys;
    std::set<std::u16string> throwing;
    std::u16string closed;
};

class FailingRegistry final : public RegistryObject {
  public:
    explicit FailingRegistry(Hive& hive) : m_hive(hive) {}
    void SetRoot(RegistryRoot) override {}
    void SetKeyPath(const std::u16string& path) override { m_path = path; }
    bool OpenOrCreate() override {
        m_key = m_path.ends_with(m_hive.closed) ? nullptr : &m_hive.keys[m_path];
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
    bool Read(const std::u16string& name, T& value) {
        if (m_hive.throwing.contains(name)) throw std::runtime_error("access is denied");
        if (!m_key->contains(name)) return false;
        value = std::get<T>(m_key->at(name));
        return true;
    }
    template <typename T>
    bool Write(const std::u16string& name, const T& value) {
        if (m_hive.throwing.contains(name)) throw std::runtime_error("access is denied");
        (*m_key)[name] = value;
        return true;
    }

    Hive& m_hive;
    std::u16string m_path;
    Key* m_key = nullptr;
};

TEST(SettingsStore, AValueOrKeyThatFailsCostsNoOther) {
    Hive hive;
    hive.closed = u"nothing";
    SettingsStore store([&] { return std::make_unique<FailingRegistry>(hive); }, {u"Quillon", 1, 2, 3});
    const auto loaded = [&] {
        Settings settings;
        store.Load(settings);
        return settings;
    };
    Settings settings;
    settings.gridStyle = 2;
    settings.splitTimeSize = 2.5F;
    settings.pathList = PathList({u"C:\\a", u"C:\\b"});
    settings.palette = 1;
    settings.spectrogramShown = true;
    hive.throwing = {u"Major", u"GridColor", u"PathList1", u"FFTOrder2", u"Maximized"};
    EXPECT_FALSE(store.Save(settings));
    const Settings first = loaded();
    EXPECT_EQ(first.gridStyle, 2);
    EXPECT_EQ(first.splitTimeSize, 2.5F);
    EXPECT_EQ(first.pathList.Folders(), std::vector<std::u16string>{u"C:\\b"});
    EXPECT_EQ(first.palette, 1);
    EXPECT_EQ(first.order, 8);
    EXPECT_TRUE(first.spectrogramShown);

    hive.throwing.clear();
    settings.palette = 2;
    settings.windowLeft = -7;
    hive.closed = u"1.x";
    EXPECT_FALSE(store.Save(settings));
    EXPECT_EQ(loaded().palette, 2);
    hive.closed = u"Spectrogram";
    EXPECT_FALSE(store.Save(settings));
    EXPECT_EQ(loaded().windowLeft, -7);
}

TEST(SettingsStore, WithoutARegistryTheProgramRunsOnItsDefaults) {
    int made = 0;
    Hive hive;
    hive.closed = u"nothing";
    SettingsStore store(
        [&]() -> std::unique_ptr<RegistryObject> {
            if (++made == 1) throw std::runtime_error("not installed");
            if (made <= 3) return nullptr;
            return std::make_unique<FailingRegistry>(hive);
        },
        {});
    Settings settings;
    store.Load(settings);
    EXPECT_EQ(settings.order, 8);
    EXPECT_TRUE(store.Save(settings)) << "a registry that comes later is used";
    EXPECT_EQ(made, 4) << "and kept";
}

}  // namespace
}  // namespace quillon
