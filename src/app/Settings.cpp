#include "app/Settings.h"

#include <algorithm>
#include <array>
#include <exception>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Text.h"

namespace quillon {

namespace {

/// A value's name and where it is kept.
struct Entry {
    using Member = std::variant<std::u16string Settings::*, std::int16_t Settings::*, std::int32_t Settings::*,
                                float Settings::*, bool Settings::*>;
    std::u16string_view name;
    Member member;
};
using Entries = std::span<const Entry>;

Entries DisplayEntries() {
    static constexpr std::array<Entry, 11> entries{{{u"FilesPath", &Settings::filesPath},
                                                    {u"HelpLanguage", &Settings::helpLanguage},
                                                    {u"TimeFormat", &Settings::timeFormat},
                                                    {u"TimeIndex", &Settings::timeIndex},
                                                    {u"ScaleFormat", &Settings::scaleFormat},
                                                    {u"UnitScaling", &Settings::unitScaling},
                                                    {u"DigitsCount", &Settings::digitsCount},
                                                    {u"DigitsType", &Settings::digitsType},
                                                    {u"GridColor", &Settings::gridColor},
                                                    {u"GridStyle", &Settings::gridStyle},
                                                    {u"WaveformCursor", &Settings::waveformCursor}}};
    return entries;
}

Entries ExportEntries() {
    static constexpr std::array<Entry, 8> entries{{{u"ExpFileType", &Settings::exportFileType},
                                                   {u"ExpChType", &Settings::exportChannels},
                                                   {u"ExpRowSize", &Settings::exportRowSize},
                                                   {u"ExpRowRate", &Settings::exportRowRate},
                                                   {u"ExpRowStep", &Settings::exportRowStep},
                                                   {u"ExpRowHead", &Settings::exportRowHead},
                                                   {u"ExpXColumn", &Settings::exportXColumn},
                                                   {u"ExpXFormat", &Settings::exportXFormat}}};
    return entries;
}

Entries ExportPathEntries() {
    static constexpr std::array<Entry, 2> entries{
        {{u"ExpPath", &Settings::exportPath}, {u"ExpFastFile", &Settings::exportFastFile}}};
    return entries;
}

Entries SplitEntries() {
    static constexpr std::array<Entry, 7> entries{{{u"SplitType", &Settings::splitType},
                                                   {u"SplitPtStep", &Settings::splitSamplesStep},
                                                   {u"SplitPtSize", &Settings::splitSamplesSize},
                                                   {u"SplitTmStep", &Settings::splitTimeStep},
                                                   {u"SplitTmSize", &Settings::splitTimeSize},
                                                   {u"SplitFileIndex", &Settings::splitFileIndex},
                                                   {u"SplitBaseName", &Settings::splitBaseName}}};
    return entries;
}

Entries SpectrumEntries() {
    static constexpr std::array<Entry, 6> entries{{{u"FFTOrder2", &Settings::order},
                                                   {u"WindowType", &Settings::window},
                                                   {u"Palette", &Settings::palette},
                                                   {u"SpectrumType", &Settings::type},
                                                   {u"AmpScale", &Settings::amplitudeScale},
                                                   {u"DBRange", &Settings::decibelRange}}};
    return entries;
}

Entries WindowEntries() {
    static constexpr std::array<Entry, 10> entries{{{u"Left", &Settings::windowLeft},
                                                    {u"Top", &Settings::windowTop},
                                                    {u"Width", &Settings::windowWidth},
                                                    {u"Height", &Settings::windowHeight},
                                                    {u"Maximized", &Settings::windowMaximized},
                                                    {u"ListWidth", &Settings::listWidth},
                                                    {u"UpperPercent", &Settings::upperPercent},
                                                    {u"ValuesHeight", &Settings::valuesHeight},
                                                    {u"SpectrogramPercent", &Settings::spectrogramPercent},
                                                    {u"SpectrogramShown", &Settings::spectrogramShown}}};
    return entries;
}

// The values of the main key; the family's programs write the export's paths ahead of its choices but read them after.
std::array<Entries, 4> LoadOrder() {
    return {DisplayEntries(), ExportEntries(), ExportPathEntries(), SplitEntries()};
}
std::array<Entries, 4> SaveOrder() {
    return {DisplayEntries(), ExportPathEntries(), ExportEntries(), SplitEntries()};
}

bool Read(RegistryObject& registry, const std::u16string& name, std::u16string& value) {
    return registry.ReadText(name, value);
}
bool Read(RegistryObject& registry, const std::u16string& name, std::int16_t& value) {
    return registry.ReadInt16(name, value);
}
bool Read(RegistryObject& registry, const std::u16string& name, std::int32_t& value) {
    return registry.ReadInt32(name, value);
}
bool Read(RegistryObject& registry, const std::u16string& name, float& value) {
    return registry.ReadSingle(name, value);
}
bool Read(RegistryObject& registry, const std::u16string& name, bool& value) {
    std::int16_t flag = value ? 1 : 0;
    const bool found = registry.ReadInt16(name, flag);
    value = flag != 0;
    return found;
}

bool Write(RegistryObject& registry, const std::u16string& name, const std::u16string& value) {
    return registry.WriteText(name, value);
}
bool Write(RegistryObject& registry, const std::u16string& name, std::int16_t value) {
    return registry.WriteInt16(name, value);
}
bool Write(RegistryObject& registry, const std::u16string& name, std::int32_t value) {
    return registry.WriteInt32(name, value);
}
bool Write(RegistryObject& registry, const std::u16string& name, float value) {
    return registry.WriteSingle(name, value);
}
bool Write(RegistryObject& registry, const std::u16string& name, bool value) {
    return registry.WriteInt16(name, value ? 1 : 0);
}

/// One step of a load or save: an exception is its failure, the next step runs all the same.
template <typename Step>
bool Attempt(Step step) {
    try {
        return step();
    } catch (const std::exception&) {
        return false;
    }
}

void LoadEntries(RegistryObject& registry, Entries entries, Settings& settings) {
    for (const Entry& entry : entries) {
        Attempt([&] {
            return std::visit([&](auto member) { return Read(registry, std::u16string(entry.name), settings.*member); },
                              entry.member);
        });
    }
}

bool SaveEntries(RegistryObject& registry, Entries entries, const Settings& settings) {
    bool complete = true;
    for (const Entry& entry : entries) {
        complete &= Attempt([&] {
            return std::visit(
                [&](auto member) { return Write(registry, std::u16string(entry.name), settings.*member); },
                entry.member);
        });
    }
    return complete;
}

std::u16string PathListName(std::int32_t number) {
    return u"PathList" + Decimal(number);
}

void LoadPathList(RegistryObject& registry, PathList& list) {
    std::int32_t count = 0;
    if (!Attempt([&] { return registry.ReadInt32(u"PathListCount", count); })) return;
    count = std::clamp<std::int32_t>(count, 0, PathList::kMost);
    std::vector<std::u16string> folders(static_cast<std::size_t>(count));
    for (std::int32_t at = 0; at < count; ++at)
        Attempt([&] { return registry.ReadText(PathListName(at + 1), folders[static_cast<std::size_t>(at)]); });
    list = PathList(std::move(folders));
}

bool SavePathList(RegistryObject& registry, const PathList& list) {
    bool complete = Attempt(
        [&] { return registry.WriteInt32(u"PathListCount", static_cast<std::int32_t>(list.Folders().size())); });
    std::int32_t number = 0;
    for (const std::u16string& folder : list.Folders()) {
        ++number;
        complete &= Attempt([&] { return registry.WriteText(PathListName(number), folder); });
    }
    return complete;
}

bool SaveVersion(RegistryObject& registry, const ProgramIdentity& program) {
    bool complete = Attempt([&] { return registry.WriteInt16(u"Major", program.majorVersion); });
    complete &= Attempt([&] { return registry.WriteInt16(u"Minor", program.minorVersion); });
    complete &= Attempt([&] { return registry.WriteInt16(u"Revision", program.revision); });
    return complete;
}

}  // namespace

SettingsStore::SettingsStore(MakeRegistry makeRegistry, ProgramIdentity program)
    : m_makeRegistry(std::move(makeRegistry)), m_program(std::move(program)) {}

bool SettingsStore::Open(const std::u16string& subkey) {
    return Attempt([&] {
        if (m_keyPath.empty())
            m_keyPath = u"Software\\Norvik\\" + m_program.name + u'\\' + Decimal(m_program.majorVersion) + u".x";
        if (!m_registry) m_registry = m_makeRegistry();
        if (!m_registry) return false;
        m_registry->SetRoot(RegistryRoot::CurrentUser);
        m_registry->SetKeyPath(m_keyPath + subkey);
        return m_registry->OpenOrCreate();
    });
}

void SettingsStore::Load(Settings& settings) {
    if (Open({})) {
        for (const Entries entries : LoadOrder()) LoadEntries(*m_registry, entries, settings);
        LoadPathList(*m_registry, settings.pathList);
    }
    if (Open(u"\\Spectrogram")) LoadEntries(*m_registry, SpectrumEntries(), settings);
    if (Open(u"\\Window")) LoadEntries(*m_registry, WindowEntries(), settings);
}

bool SettingsStore::Save(const Settings& settings) {
    bool complete = Open({});
    if (complete) {
        complete &= SaveVersion(*m_registry, m_program);
        for (const Entries entries : SaveOrder()) complete &= SaveEntries(*m_registry, entries, settings);
        complete &= SavePathList(*m_registry, settings.pathList);
    }
    const bool spectrum = Open(u"\\Spectrogram") && SaveEntries(*m_registry, SpectrumEntries(), settings);
    const bool window = Open(u"\\Window") && SaveEntries(*m_registry, WindowEntries(), settings);
    return complete && spectrum && window;
}

TextExportSettings TextSettings(const Settings& settings) {
    return {settings.exportFileType, settings.exportChannels, settings.exportRowSize, settings.exportRowRate,
            settings.exportRowStep,  settings.exportRowHead,  settings.exportXColumn, settings.exportXFormat};
}

}  // namespace quillon
