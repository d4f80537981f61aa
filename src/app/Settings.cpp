#include "app/Settings.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Text.h"

namespace quillon {

namespace {

/// A value's name and the member of a struct that it is kept in.
template <typename Group>
struct Entry {
    using Member = std::variant<std::u16string Group::*, std::int16_t Group::*, std::int32_t Group::*, float Group::*,
                                bool Group::*>;
    std::u16string_view name;
    Member member;
};

constexpr std::array<Entry<Settings>, 2> kFirstEntries{
    {{u"FilesPath", &Settings::filesPath}, {u"HelpLanguage", &Settings::helpLanguage}}};
constexpr std::array<Entry<DisplaySettings>, 9> kDisplayEntries{
    {{u"TimeFormat", &DisplaySettings::timeFormat},
     {u"TimeIndex", &DisplaySettings::timeIndex},
     {u"ScaleFormat", &DisplaySettings::scaleFormat},
     {u"UnitScaling", &DisplaySettings::unitScaling},
     {u"DigitsCount", &DisplaySettings::digitsCount},
     {u"DigitsType", &DisplaySettings::digitsType},
     {u"GridColor", &DisplaySettings::gridColor},
     {u"GridStyle", &DisplaySettings::gridStyle},
     {u"WaveformCursor", &DisplaySettings::waveformCursor}}};
constexpr std::array<Entry<TextExportSettings>, 8> kTextEntries{{{u"ExpFileType", &TextExportSettings::fileType},
                                                                 {u"ExpChType", &TextExportSettings::channels},
                                                                 {u"ExpRowSize", &TextExportSettings::rowSize},
                                                                 {u"ExpRowRate", &TextExportSettings::rowRate},
                                                                 {u"ExpRowStep", &TextExportSettings::rowStep},
                                                                 {u"ExpRowHead", &TextExportSettings::rowHead},
                                                                 {u"ExpXColumn", &TextExportSettings::xColumn},
                                                                 {u"ExpXFormat", &TextExportSettings::xFormat}}};
constexpr std::array<Entry<TextExportSettings>, 2> kTextPathEntries{
    {{u"ExpPath", &TextExportSettings::folder}, {u"ExpFastFile", &TextExportSettings::fastFile}}};
/// Kept with the window's state: the main key has the values that the family's programs know.
constexpr std::array<Entry<TextExportSettings>, 1> kTextWindowEntries{{{u"ExpAsShown", &TextExportSettings::asShown}}};
constexpr std::array<Entry<SplitSettings>, 7> kSplitEntries{{{u"SplitType", &SplitSettings::type},
                                                             {u"SplitPtStep", &SplitSettings::samplesStep},
                                                             {u"SplitPtSize", &SplitSettings::samplesSize},
                                                             {u"SplitTmStep", &SplitSettings::timeStep},
                                                             {u"SplitTmSize", &SplitSettings::timeSize},
                                                             {u"SplitFileIndex", &SplitSettings::fileIndex},
                                                             {u"SplitBaseName", &SplitSettings::baseName}}};
constexpr std::array<Entry<SpectrumSettings>, 6> kSpectrumEntries{{{u"FFTOrder2", &SpectrumSettings::order},
                                                                   {u"WindowType", &SpectrumSettings::window},
                                                                   {u"Palette", &SpectrumSettings::palette},
                                                                   {u"SpectrumType", &SpectrumSettings::type},
                                                                   {u"AmpScale", &SpectrumSettings::amplitudeScale},
                                                                   {u"DBRange", &SpectrumSettings::decibelRange}}};
/// Kept with the window's state as well.
constexpr std::array<Entry<SpectrumSettings>, 3> kSpectrumWindowEntries{
    {{u"SpectrogramTop", &SpectrumSettings::topLevel},
     {u"SpectrogramHighest", &SpectrumSettings::highestFrequency},
     {u"SpectrogramBlankEnds", &SpectrumSettings::blankEnds}}};
constexpr std::array<Entry<WindowPlace>, 6> kPlaceEntries{{{u"Left", &WindowPlace::left},
                                                           {u"Top", &WindowPlace::top},
                                                           {u"Width", &WindowPlace::width},
                                                           {u"Height", &WindowPlace::height},
                                                           {u"Maximized", &WindowPlace::maximized},
                                                           {u"Dpi", &WindowPlace::dpi}}};
constexpr std::array<Entry<WindowPlace>, 6> kSpectrumPlaceEntries{{{u"SpectrumLeft", &WindowPlace::left},
                                                                   {u"SpectrumTop", &WindowPlace::top},
                                                                   {u"SpectrumWidth", &WindowPlace::width},
                                                                   {u"SpectrumHeight", &WindowPlace::height},
                                                                   {u"SpectrumMaximized", &WindowPlace::maximized},
                                                                   {u"SpectrumDpi", &WindowPlace::dpi}}};
constexpr std::array<Entry<SpectrumWindowSettings>, 4> kSpectrumChoiceEntries{
    {{u"SpectrumLength", &SpectrumWindowSettings::length},
     {u"SpectrumWindow", &SpectrumWindowSettings::window},
     {u"SpectrumLogFrequency", &SpectrumWindowSettings::logFrequency},
     {u"SpectrumLevels", &SpectrumWindowSettings::levels}}};
constexpr std::array<Entry<WindowPlacement>, 18> kWindowEntries{
    {{u"SizesDpi", &WindowPlacement::sizesDpi},
     {u"ListWidth", &WindowPlacement::listWidth},
     {u"UpperPercent", &WindowPlacement::upperPercent},
     {u"ValuesHeight", &WindowPlacement::valuesHeight},
     {u"SpectrogramPercent", &WindowPlacement::spectrogramPercent},
     {u"SpectrogramShown", &WindowPlacement::spectrogramShown},
     {u"Lanes", &WindowPlacement::lanes},
     {u"LaneLabels", &WindowPlacement::laneLabels},
     {u"NegativeUp", &WindowPlacement::negativeUp},
     {u"ClipToLanes", &WindowPlacement::clipToLanes},
     {u"AllSignals", &WindowPlacement::allSignals},
     {u"Overview", &WindowPlacement::overview},
     {u"DarkGraph", &WindowPlacement::darkGraph},
     {u"LineWidth", &WindowPlacement::lineWidth},
     {u"Filters", &WindowPlacement::filters},
     {u"Shown", &WindowPlacement::shown},
     {u"Montages", &WindowPlacement::montages},
     {u"PageLength", &WindowPlacement::pageLength}}};

constexpr std::array<Entry<LastRecording>, 2> kLastEntries{
    {{u"LastRecording", &LastRecording::path}, {u"LastPlace", &LastRecording::place}}};

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

/// One step of a load or save: an exception counts as a failure of this step, the next one still runs.
template <typename Step>
bool Attempt(Step step) {
    try {
        return step();
    } catch (const std::exception&) {
        return false;
    }
}

template <typename Group, std::size_t count>
void LoadEntries(RegistryObject& registry, const std::array<Entry<Group>, count>& entries, Group& group) {
    for (const Entry<Group>& entry : entries) {
        Attempt([&] {
            return std::visit([&](auto member) { return Read(registry, std::u16string(entry.name), group.*member); },
                              entry.member);
        });
    }
}

template <typename Group, std::size_t count>
bool SaveEntries(RegistryObject& registry, const std::array<Entry<Group>, count>& entries, const Group& group) {
    bool complete = true;
    for (const Entry<Group>& entry : entries) {
        complete &= Attempt([&] {
            return std::visit([&](auto member) { return Write(registry, std::u16string(entry.name), group.*member); },
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

std::u16string RecentName(std::size_t index) {
    return u"Recent" + Decimal(static_cast<std::int64_t>(index + 1));
}

void LoadRecordings(RegistryObject& registry, Settings& settings) {
    std::vector<std::u16string> recent(RecentRecordings::kMost);
    for (std::size_t at = 0; at < recent.size(); ++at)
        Attempt([&] { return registry.ReadText(RecentName(at), recent[at]); });
    settings.recent = RecentRecordings(recent);
    LoadEntries(registry, kLastEntries, settings.last);
}

bool WriteRecordings(RegistryObject& registry, const Settings& settings) {
    // All of them, so that nothing stays of paths that are not in the list any more.
    std::vector<std::u16string> recent = settings.recent.Paths();
    recent.resize(RecentRecordings::kMost);
    bool complete = SaveEntries(registry, kLastEntries, settings.last);
    for (std::size_t at = 0; at < recent.size(); ++at)
        complete &= Attempt([&] { return registry.WriteText(RecentName(at), recent[at]); });
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
        LoadEntries(*m_registry, kFirstEntries, settings);
        LoadEntries(*m_registry, kDisplayEntries, settings.display);
        LoadEntries(*m_registry, kTextEntries, settings.text);
        LoadEntries(*m_registry, kTextPathEntries, settings.text);
        LoadEntries(*m_registry, kSplitEntries, settings.split);
        LoadPathList(*m_registry, settings.pathList);
    }
    if (Open(u"\\Spectrogram")) LoadEntries(*m_registry, kSpectrumEntries, settings.spectrum);
    if (Open(u"\\Window")) {
        LoadEntries(*m_registry, kPlaceEntries, settings.window.place);
        LoadEntries(*m_registry, kWindowEntries, settings.window);
        LoadEntries(*m_registry, kTextWindowEntries, settings.text);
        LoadRecordings(*m_registry, settings);
        LoadEntries(*m_registry, kSpectrumWindowEntries, settings.spectrum);
        LoadEntries(*m_registry, kSpectrumPlaceEntries, settings.spectrumWindow.place);
        LoadEntries(*m_registry, kSpectrumChoiceEntries, settings.spectrumWindow);
    }
}

bool SettingsStore::SaveRecordings(const Settings& settings) {
    return Open(u"\\Window") && WriteRecordings(*m_registry, settings);
}

bool SettingsStore::Save(const Settings& settings) {
    bool complete = Open({});
    if (complete) {
        complete &= SaveVersion(*m_registry, m_program);
        complete &= SaveEntries(*m_registry, kFirstEntries, settings);
        complete &= SaveEntries(*m_registry, kDisplayEntries, settings.display);
        // The family's programs write the text export's paths ahead of its choices but read them after.
        complete &= SaveEntries(*m_registry, kTextPathEntries, settings.text);
        complete &= SaveEntries(*m_registry, kTextEntries, settings.text);
        complete &= SaveEntries(*m_registry, kSplitEntries, settings.split);
        complete &= SavePathList(*m_registry, settings.pathList);
    }
    const bool spectrum = Open(u"\\Spectrogram") && SaveEntries(*m_registry, kSpectrumEntries, settings.spectrum);
    bool window = Open(u"\\Window");
    if (window) {
        window &= SaveEntries(*m_registry, kPlaceEntries, settings.window.place);
        window &= SaveEntries(*m_registry, kWindowEntries, settings.window);
        window &= SaveEntries(*m_registry, kTextWindowEntries, settings.text);
        window &= WriteRecordings(*m_registry, settings);
        window &= SaveEntries(*m_registry, kSpectrumWindowEntries, settings.spectrum);
        window &= SaveEntries(*m_registry, kSpectrumPlaceEntries, settings.spectrumWindow.place);
        window &= SaveEntries(*m_registry, kSpectrumChoiceEntries, settings.spectrumWindow);
    }
    return complete && spectrum && window;
}

}  // namespace quillon
