#include "norvik/win/Registry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <map>
#include <vector>

#include "app/Settings.h"
#include "base/Text.h"
#include "base/win/Win32.h"

namespace quillon {
namespace {

using KeyHandle = std::unique_ptr<std::remove_pointer_t<HKEY>, decltype(&RegCloseKey)>;

std::vector<std::uint8_t> Bytes(std::wstring_view text) {
    std::vector<std::uint8_t> bytes(text.size() * sizeof(wchar_t));
    std::memcpy(bytes.data(), text.data(), bytes.size());
    return bytes;
}

using Value = std::pair<DWORD, std::vector<std::uint8_t>>;  // type and bytes
using Values = std::map<std::wstring, Value>;

std::wstring NamesOf(const Values& values) {
    std::wstring names;
    for (const auto& [name, value] : values) names += name + L' ';
    return names;
}

/// Works below a program name of its own, which is removed with everything in it.
class RegistryTest : public ::testing::Test {
  protected:
    RegistryTest()
        : m_program(u"QuillonTest" + Decimal(GetCurrentProcessId())), m_top(L"Software\\Norvik\\" + Wide(m_program)) {}

    void TearDown() override {
        m_registry.reset();
        RegDeleteTreeW(HKEY_CURRENT_USER, m_top.c_str());
        // Goes only when nothing else is in it.
        RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Norvik");
    }

    std::wstring MainPath() const { return m_top + L"\\1.x"; }
    SettingsStore Store() const { return {MakeRegistryObject, {m_program, 1, 2, 3}}; }

    /// The object under test, at the main key.
    RegistryObject& Opened() {
        m_registry = MakeRegistryObject();
        m_registry->SetKeyPath(Narrow16(MainPath()));
        EXPECT_TRUE(m_registry->OpenOrCreate());
        return *m_registry;
    }
    KeyHandle Key(const std::wstring& path, REGSAM access = KEY_ALL_ACCESS, DWORD options = 0) const {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, options, access, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        return {key, &RegCloseKey};
    }
    void Put(const wchar_t* name, DWORD type, std::vector<std::uint8_t> bytes) const {
        const auto size = static_cast<DWORD>(bytes.size());
        // The system takes a null character behind a text for its terminator.
        bytes.insert(bytes.end(), 4, 'x');
        EXPECT_EQ(RegSetValueExW(Key(MainPath()).get(), name, 0, type, bytes.data(), size), ERROR_SUCCESS);
    }
    /// What a key really holds.
    Values ValuesIn(const std::wstring& path) const {
        Values values;
        const KeyHandle key = Key(path);
        for (;;) {
            wchar_t name[64] = {};
            DWORD nameSize = 64;
            DWORD type = REG_NONE;
            std::vector<std::uint8_t> bytes(1 << 17);
            auto size = static_cast<DWORD>(bytes.size());
            if (RegEnumValueW(key.get(), static_cast<DWORD>(values.size()), name, &nameSize, nullptr, &type,
                              bytes.data(), &size) != ERROR_SUCCESS)
                return values;
            bytes.resize(size);
            values[name] = {type, bytes};
        }
    }
    static Value Text(const std::wstring& text) { return {REG_SZ, Bytes(text + L'\0')}; }
    static Value Number(std::uint32_t number) {
        const auto* first = reinterpret_cast<const std::uint8_t*>(&number);
        return {REG_DWORD, {first, first + 4}};
    }

    std::u16string m_program;
    std::wstring m_top;
    std::unique_ptr<RegistryObject> m_registry;
};

TEST_F(RegistryTest, KeepsValuesInTheTypesThatOtherProgramsExpect) {
    Settings settings;
    settings.filesPath = u"C:\\Записи\\Ночь";
    settings.display.timeIndex = std::numeric_limits<std::int32_t>::min();
    settings.display.waveformCursor = -3;
    settings.split.timeSize = 0.1F;
    settings.spectrum.amplitudeScale = 1234567.0F;
    settings.spectrum.decibelRange = 1e-7F;
    settings.pathList = PathList({u"C:\\", u"\\\\server\\ecg"});
    settings.window.place.maximized = true;
    settings.recent.Add(u"D:\\Записи\\ночь.edf");
    settings.text.asShown = 1;
    EXPECT_TRUE(Store().Save(settings));
    Values main = ValuesIn(MainPath());
    EXPECT_EQ(main[L"FilesPath"], Text(L"C:\\Записи\\Ночь"));
    EXPECT_EQ(main[L"TimeIndex"], Number(0x80000000U));
    EXPECT_EQ(main[L"WaveformCursor"], Number(0xFFFFFFFDU));
    EXPECT_EQ(main[L"SplitTmSize"], Text(L"0.1"));
    EXPECT_EQ(main[L"PathList2"], Text(L"\\\\server\\ecg"));
    Values spectrogram = ValuesIn(MainPath() + L"\\Spectrogram");
    EXPECT_EQ(spectrogram[L"AmpScale"], Text(L"1234567"));
    EXPECT_EQ(spectrogram[L"DBRange"], Text(L"0.0000001"));
    Values window = ValuesIn(MainPath() + L"\\Window");
    EXPECT_EQ(window[L"Maximized"], Number(1));
    EXPECT_EQ(window[L"Recent1"], Text(L"D:\\Записи\\ночь.edf"));
    EXPECT_EQ(window[L"Recent12"], Text(L""));

    EXPECT_EQ(NamesOf(main),
              L"DigitsCount DigitsType ExpChType ExpFastFile ExpFileType ExpPath ExpRowHead ExpRowRate ExpRowSize "
              L"ExpRowStep ExpXColumn ExpXFormat FilesPath GridColor GridStyle HelpLanguage Major Minor PathList1 "
              L"PathList2 PathListCount Revision ScaleFormat SplitBaseName SplitFileIndex SplitPtSize SplitPtStep "
              L"SplitTmSize SplitTmStep SplitType TimeFormat TimeIndex UnitScaling WaveformCursor ");
    EXPECT_EQ(NamesOf(spectrogram), L"AmpScale DBRange FFTOrder2 Palette SpectrumType WindowType ");

    // Values that others spoiled cost no other.
    Put(L"PathListCount", REG_DWORD, {0xFF, 0xFF, 0xFF, 0x7F});
    Put(L"HelpLanguage", REG_SZ, Bytes(L"2"));
    Settings loaded;
    Store().Load(loaded);
    EXPECT_EQ(loaded.filesPath, settings.filesPath);
    EXPECT_EQ(std::tuple(loaded.helpLanguage, loaded.display.timeIndex, loaded.spectrum.decibelRange),
              std::tuple(0, settings.display.timeIndex, 1e-7F));
    EXPECT_EQ(loaded.pathList.Folders(), settings.pathList.Folders());
    EXPECT_TRUE(loaded.window.place.maximized);
    EXPECT_EQ(loaded.text.asShown, 1);
}

TEST_F(RegistryTest, NumbersThatDoNotFitOrAreOfAnotherTypeLeaveTheVariable) {
    RegistryObject& registry = Opened();
    const std::tuple<DWORD, std::vector<std::uint8_t>, int> integers[] = {
        {REG_DWORD, {0xFF, 0x7F, 0, 0}, 32767}, {REG_DWORD, {0x00, 0x80, 0xFF, 0xFF}, -32768},
        {REG_DWORD, {0x00, 0x80, 0, 0}, 77},    {REG_DWORD, {1, 0}, 77},
        {REG_DWORD, {1, 0, 0, 0, 0}, 77},       {REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}, 77},
        {REG_BINARY, {1, 0, 0, 0}, 77},         {REG_SZ, Bytes(L"1"), 77}};
    for (const auto& [type, bytes, expected] : integers) {
        Put(L"v", type, bytes);
        std::int16_t value = 77;
        EXPECT_EQ(registry.ReadInt16(u"v", value), expected != 77);
        EXPECT_EQ(value, expected);
    }
    const std::pair<std::wstring, float> singles[] = {{L" -0.25 ", -0.25F}, {L"1.5e2", 150.0F}, {L"", 77.0F},
                                                      {L" ", 77.0F},        {L"0,5", 77.0F},    {L"1.5 s", 77.0F},
                                                      {L"nan", 77.0F},      {L"inf", 77.0F},    {L"1e39", 77.0F},
                                                      {L"0x10", 77.0F},     {L"١", 77.0F}};
    for (const auto& [text, expected] : singles) {
        Put(L"v", REG_SZ, Bytes(text));
        float value = 77.0F;
        EXPECT_EQ(registry.ReadSingle(u"v", value), expected != 77.0F) << Utf8(Narrow16(text));
        EXPECT_EQ(value, expected);
    }
    float single = 77.0F;
    Put(L"v", REG_DWORD, {0, 0, 0x80, 0x3F});
    EXPECT_FALSE(registry.ReadSingle(u"v", single));
    EXPECT_FALSE(registry.WriteSingle(u"v", std::numeric_limits<float>::infinity()));
    EXPECT_TRUE(registry.WriteSingle(u"v", std::numeric_limits<float>::max()));
    EXPECT_TRUE(registry.ReadSingle(u"v", single));
    EXPECT_EQ(single, std::numeric_limits<float>::max());
}

TEST_F(RegistryTest, TextsEndAtTheirTerminatorOrWithoutOneAndHaveALimit) {
    RegistryObject& registry = Opened();
    const std::u16string longest(32767, u'я');
    const std::tuple<DWORD, std::vector<std::uint8_t>, std::u16string> cases[] = {
        {REG_SZ, Bytes(L"abc"), u"abc"},
        {REG_SZ, Bytes({L"ab\0c\0", 5}), u"ab"},
        {REG_SZ, {}, u""},
        {REG_SZ, {'a', 0, 'b'}, u"a"},
        {REG_EXPAND_SZ, Bytes(L"%PATH%"), u"kept"},
        {REG_DWORD, {1, 0, 0, 0}, u"kept"},
        {REG_SZ, Bytes(std::wstring(32768, L'x')), u"kept"},
        {REG_SZ, Bytes(Wide(longest)), longest}};
    for (const auto& [type, bytes, expected] : cases) {
        Put(L"v", type, bytes);
        std::u16string value = u"kept";
        EXPECT_EQ(registry.ReadText(u"v", value), expected != u"kept");
        EXPECT_EQ(value, expected);
    }
    EXPECT_FALSE(registry.WriteText(u"v", std::u16string(32768, u'x')));
    EXPECT_FALSE(registry.WriteText(u"v", std::u16string(u"a\0b", 3)));
    EXPECT_TRUE(registry.WriteText(u"v", longest));
    EXPECT_EQ(ValuesIn(MainPath())[L"v"], Text(Wide(longest)));
}

TEST_F(RegistryTest, AKeyThatCannotBeMadeIsReportedAndCostsNoOther) {
    // Below a volatile key no lasting key can be made, so the subkeys fail.
    const KeyHandle main = Key(MainPath(), KEY_ALL_ACCESS, REG_OPTION_VOLATILE);
    Settings settings;
    settings.display.gridStyle = 1;
    EXPECT_FALSE(Store().Save(settings));
    Settings loaded;
    Store().Load(loaded);
    EXPECT_EQ(loaded.display.gridStyle, 1);
    EXPECT_EQ(loaded.spectrum.order, 8);
}

}  // namespace
}  // namespace quillon
