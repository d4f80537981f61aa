#include <gmock/gmock.h>

#include <map>
#include <set>
#include <sstream>

#include "app/FilterChoices.h"
#include "app/GraphKeys.h"
#include "app/ShownTexts.h"
#include "app/win/MainWindowFixture.h"
#include "base/FilePath.h"
#include "base/Text.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// A command, the keys that run it (with the list that has the focus, if any) and all that it changes.
struct Effect {
    int command;
    const char* keys;
    const char* changes;
    int before = 0;  ///< a command that has to be run first for it to have an effect, or one of those below
};
constexpr int kSelected = -1;      ///< samples 12001 to 12400 are selected
constexpr int kInLanes = -3;       ///< lanes are on, with a page of 7 s
constexpr int kShownInLanes = -4;  ///< lanes are on for both channels
constexpr int kFolderChosen = -2;  ///< the folder "sub" is chosen in its list

const Effect kEffects[] = {
    {mnuOpen, "Ctrl+O", "dialog=Open Recording"},
    {mnuRecent, "", ""},  // it is open
    {mnuRecent + 1, "", "file=b.bin", mnuRecording + 1},
    {mnuClearRecent, "", "recent=0"},
    {mnuSaveAs, "Ctrl+S", "save=1"},
    {mnuFastExport, "Ctrl+Shift+E", "status=The file "},
    {mnuSplit, "Ctrl+Shift+S", "dialog=Splitting"},
    {mnuSavePicture, "", "save=1"},
    {mnuPrint, "Ctrl+P", "status=There is "},
    {mnuFileOperation, "lstFile:Del", "column=0 dialog=of the shell scale=3 shift=3798"},
    {mnuFileOperation + 1, "lstFile:F2", "dialog=Rename"},
    {mnuOptions, "", "dialog=Options"},
    {mnuCopy, "Ctrl+C", "clipboard=text status=Copied", kSelected},
    {mnuCopy + 1, "Ctrl+Shift+C", "clipboard=image status=Copied"},
    {mnuTabPath, "", "pages=01"},
    {mnuTabPath + 1, "", "pages=11", mnuTabPath},
    {mnuTabFile, "F5", "pages=10"},
    {mnuTabFile + 1, "", "pages=11", mnuTabFile},
    {mnuTabFile + 2, "", "pages=12"},
    {mnuMarkList, "lvMarks:Ctrl+C", "clipboard=text status=Marks cop", mnuTabFile + 2},
    {mnuMarkList + 1, "", "save=1"},
    {mnuMarkList + 2, "", "dialog=Count Marks"},
    {mnuSpectrogram, "G", "spectrogram=1"},
    {mnuNextPalette, "Shift+G", "palette=1"},
    {mnuPalette + 2, "", "palette=2"},
    {mnuLevelRange + 1, "", "levels=0-60"},
    {mnuTopLevel, "", ""},
    {mnuTopLevel + 2, "", "levels=-20-120"},
    {mnuLevels, "", "dialog=Levels"},
    {mnuHighestFrequency, "", ""},
    {mnuHighestFrequency + 1, "", "transform=20 Hz"},
    {mnuTypedFrequency, "", "dialog=Frequencies up to"},
    {mnuTransformSize + 2, "", "transform=2^7"},
    {mnuTransformWindow + 1, "", "transform=window 1"},
    {mnuBlankEnds, "", "transform=blank"},
    {mnuOverview, "O", "overview=1"},
    {mnuDarkGraph, "", "look=dark 1"},
    {mnuLineWidth, "", "look=light 1", mnuLineWidth + 2},
    {mnuLineWidth + 1, "", "look=light 2"},
    {mnuLineWidth + 2, "", "look=light 3"},
    {mnuFilterRow, "F", "filters=1"},
    {mnuHighPass, "", "shown as=", mnuHighPass + 1},
    {mnuHighPass + 1, "", "shown as=> 0.1 Hz"},
    {mnuLowPass, "", "shown as=", mnuLowPass + 1},
    {mnuLowPass + 1, "", "shown as=< 15 Hz"},
    {mnuNotch, "", ""},
    {mnuNotch + 1, "", ""},  // half the rate
    {mnuFilterOrder, "", "shown as=> 0.1 Hz, order 1", mnuHighPass + 1},
    {mnuFilterOrder + 1, "", "", mnuHighPass + 1},
    {mnuFilterOrder + 2, "", "shown as=> 0.1 Hz, order 4", mnuHighPass + 1},
    {mnuFilterDirection, "", "", mnuHighPass + 1},
    {mnuFilterDirection + 1, "", "shown as=> 0.1 Hz, both ways", mnuHighPass + 1},
    {mnuUnfiltered, "", "unfiltered=1"},
    {mnuShowRaw, "Ctrl+R", "shown as=", mnuHighPass + 1},
    {mnuReference, "", "shown as=", mnuReference + 1},
    {mnuReference + 1, "", "shown as=average"},
    {mnuReference + 2, "", "shown as=- Signal 1"},
    {mnuNewMontage, "", "dialog=New Montage"},
    {mnuDeleteMontage, "", ""},
    {mnuMontage, "", ""},  // none fits
    {mnuLanes, "L", "lanes=on, page=65 s"},
    {mnuAllSignals, "A", "lanes=on,all, page=65 s"},
    {mnuNegativeUp, "", "lanes=on,up,", mnuLanes},
    {mnuClipToLanes, "", "lanes=on,clip,", mnuLanes},
    {mnuScaleX, "", "column=13024 zoom=0"},
    {mnuScaleX + 6, "", "column=0 zoom=6"},
    {mnuZoomX, "Ctrl+Minus", "column=332 zoom=4"},
    {mnuZoomX + 1, "Ctrl+Plus", "column=2336 zoom=2"},
    {mnuPage, "1", "column=65000 page=1 s", kInLanes},
    {mnuPage + 1, "2", "column=32500 page=2 s", kInLanes},
    {mnuPage + 2, "3", "column=13000 page=5 s", kInLanes},
    {mnuPage + 3, "4", "column=6500 page=10 s", kInLanes},
    {mnuPage + 4, "5", "column=4333 page=15 s", kInLanes},
    {mnuPage + 5, "6", "column=3250 page=20 s", kInLanes},
    {mnuPage + 6, "7", "column=2166 page=30 s", kInLanes},
    {mnuPage + 7, "8", "column=1083 page=1 min", kInLanes},
    {mnuPage + 8, "9", "column=541 page=2 min", kInLanes},
    // Longer ones show the whole block.
    {mnuPage + 9, "", "column=0 page=200 s", kInLanes},
    {mnuPage + 10, "", "column=0 page=200 s", kInLanes},
    {mnuPage + 11, "", "column=0 page=200 s", kInLanes},
    {mnuPage + 12, "", "column=0 page=200 s", kInLanes},
    {mnuPage + 13, "", "column=0 page=200 s", kInLanes},
    {mnuGoTo + 0, "Home", "column=0"},
    {mnuGoTo + 1, "PgUp", "column=400"},
    {mnuGoTo + 2, "PgDn", "column=1600"},
    {mnuGoTo + 3, "End", "column=2000"},
    {mnuScaleY, "", "scale=0 shift=0"},
    {mnuScaleY + 3, "", "scale=3 shift=1"},
    {mnuZoomY, "Minus", "scale=7 shift=13"},
    {mnuZoomY + 1, "Plus", "scale=9 shift=66"},
    {mnuBaseLine, "B", "shift=0"},
    {mnuBaseLine + 1, "D", "scale=3 shift=3798"},
    {mnuChShow, "lvCh:Ctrl+A", "shown=11"},
    {mnuChShow + 1, "lvCh:Ctrl+Shift+A", "shown=00"},
    {mnuChShow + 2, "lvCh:Ctrl+I", "shown=10"},
    {mnuSoundPlay, "Space", "sound=open 1 100,"},
    {mnuSoundPlay + 1, "Shift+Space", "sound=open 2 100,"},
    {mnuSoundPlay + 2, "", "sound=stop,", mnuSoundPlay},
    {mnuSoundCard, "", "card=0", mnuSoundCard + 1},
    {mnuSoundCard + 1, "", "card=1"},
    {mnuHelp, "F1", "status=No help f"},
    {mnuHelpLang, "", "help=0"},
    {mnuHelpLang + 1, "", "help=1"},
    {mnuHelpLang + 2, "", "help=2"},
    {mnuAbout, "", "dialog=Quillon"},
    {mnuView, "Ctrl+E", "column=11864 zoom=0", kSelected},
    {mnuView + 1, "Ctrl+F", "column=0 zoom=5"},
    {mnuView + 2, "Backspace", "column=1000 zoom=3", mnuZoomX},
    {mnuMark, "Alt+Left", "column=0 gone to=101"},
    {mnuMark + 1, "Alt+Right", "column=1164 gone to=15001"},
    {mnuSelect, "Ctrl+A", "selection=1-20000"},
    {mnuSelect + 1, "Ctrl+Shift+A", "selection=10001-16720"},
    {mnuSelect + 2, "Esc", "selection=", kSelected},
    {mnuGoToPlace, "Ctrl+G", "dialog=Go To"},
    {mnuPin, "M", "pinned=13361"},
    {mnuCopyReadout, "Ctrl+M", "clipboard=text status=Readout c"},
    {mnuRead + 0, "Comma", "gone to=13351"},
    {mnuRead + 1, "Point", "gone to=13371"},
    {mnuRead + 2, "Shift+Comma", "gone to=13161"},
    {mnuRead + 3, "Shift+Point", "gone to=13561"},
    {mnuLane + 0, "Alt+Minus", "lane=0: 171 x 34.858388", kShownInLanes},
    {mnuLane + 1, "Alt+Plus", "lane=0: 401 x 6.971678", kShownInLanes},
    {mnuLane + 2, "Alt+Home", "lane=0: 171 x 34.858388", kShownInLanes},
    {mnuLane + 3, "Alt+Up", "lane=0: 209 x 17.429194", kShownInLanes},
    {mnuLane + 4, "Alt+Down", "lane=0: 249 x 17.429194", kShownInLanes},
    {mnuLane + 5, "Alt+PgUp", "", kShownInLanes},
    {mnuLane + 6, "Alt+PgDn", "lane=1: 230 x 17.429194", kShownInLanes},
    {mnuStatistics, "", "dialog=Statistics of Selection", kSelected},
    {mnuSpectrum, "Ctrl+Shift+P", "spectrum=1"},
    {mnuSoloChannel, "", "alone=1 shown=10"},
    {mnuKeysAndMouse, "", "dialog=Keys and Mouse"},
    {mnuOpenFolder, "lstDir:Enter", "column=0 file=", kFolderChosen},
    {mnuMove + 0, "Left", "column=980"},
    {mnuMove + 1, "Right", "column=1020"},
    {mnuMove + 2, "Ctrl+Left", "column=900"},
    {mnuMove + 3, "Ctrl+Right", "column=1100"},
    {mnuMove + 4, "Shift+Left", "column=999"},
    {mnuMove + 5, "Shift+Right", "column=1001"},
    {mnuMove + 6, "Up", "shift=13"},
    {mnuMove + 7, "Down", "shift=53"},
    {mnuMove + 8, "Ctrl+Up", "shift=-7"},
    {mnuMove + 9, "Ctrl+Down", "shift=73"},
    {mnuMove + 10, "Shift+Up", "shift=32"},
    {mnuMove + 11, "Shift+Down", "shift=34"},
    {mnuRecording, "Ctrl+PgUp", "column=0 file=a.bin scale=3 shift=3798"},
    {mnuRecording + 1, "Ctrl+PgDn", "column=0 file=c.bin scale=3 shift=3798"},
    {mnuRecording + 1, "", "", mnuRecording + 1},  // the last one
    {mnuFocus + 0, "Ctrl+1", "list=0 pages=01"},
    {mnuFocus + 1, "Ctrl+2", "list=1"},
    {mnuFocus + 2, "Ctrl+3", "list=4 pages=10"},
    {mnuFocus + 3, "Ctrl+4", "list=5"},
    {mnuFocus + 4, "Ctrl+5", "list=27 pages=12"},
    {mnuFocus + 5, "Ctrl+0", ""},  // it is there
};

/// The main window over a sound device of the test's, in one and the same state again and again.
class EffectTest : public MainWindowTest {
  protected:
    void SetUp() override {
        for (const char16_t* name : {u"a.bin", u"b.bin", u"c.bin"})
            static_cast<void>(m_folder.Write(name, TwoLevels()));
        std::filesystem::create_directory(m_folder.File(u"sub"));
        // Without both of them there is no choice between them.
        for (const std::filesystem::path& help : HelpFiles()) std::ofstream(help) << "help";
        m_device.count = 2;
        m_device.names = {u"card 1", u"card 2"};
        StartWith(m_device);
        m_saveDialog->answer = [this](SaveFileDialog&) { return ++m_saves, false; };
        m_global.settings.text.fastFile = m_folder.File(u"no such folder/fast.txt").u16string();
    }

    void TearDown() override {
        MainWindowTest::TearDown();
        for (const std::filesystem::path& help : HelpFiles()) std::filesystem::remove(help);
    }

    static std::vector<std::filesystem::path> HelpFiles() {
        wchar_t program[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const std::filesystem::path folder = std::filesystem::path(program).parent_path();
        return {folder / "Kelvo.chm", folder / "KelvoEN.chm"};
    }

    /// A saw from 0 to 99 and a channel far above it.
    static FileBytes TwoLevels() {
        std::vector<std::vector<std::int16_t>> frames;
        for (int frame = 0; frame < 20000; ++frame)
            frames.push_back(
                {static_cast<std::int16_t>(frame % 100), static_cast<std::int16_t>(9000 + frame % 100 * 10)});
        return BinRecording(100.0F, frames);
    }

    static HWND Spectrum() { return FindWindowW(L"QuillonSpectrum", nullptr); }

    void Prepare(const Effect& effect) {
        BYTE none[256]{};
        SetKeyboardState(none);
        if (const HWND open = Spectrum()) DestroyWindow(open);
        if (m_form->State().fileCount == 0) m_form->OpenPath(Wide(m_folder.Path()));
        Command(mnuSelect + 2);
        Command(mnuSelect + 2);
        if (m_global.document->IsSolo()) Command(mnuSoloChannel);
        for (const int list : {lstFile, lstBlock}) ClickLine(list, list == lstFile ? 1 : 0);
        SetMarks({{100, u"one"}, {15000, u"two"}});
        const LaneSettings& lanes = m_global.view->LanesOfChannels().Settings();
        if (lanes.clip) Command(mnuClipToLanes);
        if (lanes.negativeUp) Command(mnuNegativeUp);
        if (m_global.document->AllSignals()) Command(mnuAllSignals);
        if (lanes.on) Command(mnuLanes);
        m_global.view->SelectZoomX(3);
        m_global.view->SelectScaleY(8);
        Command(mnuBaseLine);
        m_global.view->MoveBaseLine(33);
        m_global.document->ChooseChannel(1);
        Command(mnuSoundCard);
        Command(mnuChShow);
        // Ends the look at raw signals too.
        Command(mnuReference);
        m_global.document->ShowAs({});
        if (m_global.settings.window.filters) Command(mnuFilterRow);
        ClickCheckBox(0);
        Command(mnuTabPath + 1);
        Command(mnuTabFile + 1);
        const bool ofSpectrogram = effect.command == mnuNextPalette || effect.command >= mnuPalette;
        ResetSpectrogram();
        if (m_global.settings.window.spectrogramShown != ofSpectrogram) Command(mnuSpectrogram);
        if (m_global.settings.window.overview == 1) Command(mnuOverview);
        m_global.settings.window.overview = 0;
        if (m_global.settings.window.darkGraph) Command(mnuDarkGraph);
        Command(mnuLineWidth);
        m_global.settings.helpLanguage = 7;
        m_global.settings.recent = RecentRecordings({m_global.document->File().fileName});
        m_global.helpFile.clear();
        ScrollTo(1000);
        WaveformView::State state = m_global.view->Keep();
        state.history.Clear();
        m_global.view->Restore(state);
        if (effect.before > 0) Command(effect.before);
        if (effect.before == kInLanes) {
            Command(mnuLanes);
            m_global.view->SelectPage(7.0);
        }
        if (effect.before == kShownInLanes) {
            Command(mnuChShow);
            Command(mnuLanes);
            // Its lane at the top, larger than it fits.
            for (const LaneStep step : {LaneStep::LaneUp, LaneStep::Fit, LaneStep::ZoomIn})
                m_global.view->StepLane(1, step);
        }
        if (effect.before == kSelected) m_global.view->Select(12001, 12400);
        if (effect.before == kFolderChosen) SendMessageW(Control(lstDir), LB_SETCURSEL, Lines(lstDir).size() - 1, 0);
        if (OpenClipboard(m_form->Window())) {
            EmptyClipboard();
            CloseClipboard();
        }
        m_services->SetStatus(u"");
        m_device.calls.clear();
        SetFocus(Control(pbGraph));
        Pump();
    }

    void ResetSpectrogram() {
        const SpectrumSettings& settings = m_global.settings.spectrum;
        if (settings == SpectrumSettings{}) return;
        if (!m_global.settings.window.spectrogramShown) Command(mnuSpectrogram);
        for (const int usual : {mnuTransformSize + 3, +mnuTransformWindow, +mnuPalette, mnuLevelRange + 3, +mnuTopLevel,
                                +mnuHighestFrequency})
            Command(usual);
        if (settings.blankEnds) Command(mnuBlankEnds);
        EXPECT_EQ(settings, SpectrumSettings{});
    }

    /// Where the lane of the first channel is, where zero is in it, and its scale; with lanes only.
    [[nodiscard]] std::string LaneOfFirst() const {
        const Lanes& lanes = m_global.view->GetLanes();
        std::string at;
        for (std::size_t i = 0; i < lanes.size() && m_global.view->UsesLanes(); ++i) {
            if (lanes[i].channels.front() != 1) continue;
            at = std::to_string(i) + ": " + std::to_string(lanes[i].zeroRow - lanes[i].top) + " x " +
                 std::to_string(lanes[i].unitsPerDivision);
        }
        return at;
    }

    std::map<std::string, std::string> Facts() {
        const Selection& selection = m_global.view->Selected();
        std::string shown;
        for (int channel = 0; channel < 2; ++channel)
            shown += m_global.document->Slots()[static_cast<std::size_t>(channel)].shown ? '1' : '0';
        std::string calls;
        for (const std::string& call : m_device.calls) calls += call + ',';
        const LaneSettings& settings = m_global.view->LanesOfChannels().Settings();
        std::string lanes = settings.on ? "on," : "";
        lanes += settings.negativeUp ? "up," : "";
        lanes += settings.clip ? "clip," : "";
        lanes += m_global.document->AllSignals() ? "all," : "";
        const SpectrumSettings& spectrum = m_global.settings.spectrum;
        std::string transform = spectrum.order == 8 ? "" : "2^" + std::to_string(spectrum.order);
        transform += spectrum.window == 0 ? "" : "window " + std::to_string(spectrum.window);
        transform += spectrum.blankEnds ? "blank" : "";
        transform +=
            spectrum.highestFrequency == 0.0F ? "" : std::to_string(std::lround(spectrum.highestFrequency)) + " Hz";
        const int focus = GetDlgCtrlID(GetFocus());
        const auto page = [&](int tabs) { return std::to_string(TabCtrl_GetCurSel(Control(tabs))); };
        std::wstring dialog = m_closer.Titles();
        dialog.resize(std::min(dialog.find_first_of(L":;"), dialog.size()));
        // The shell's speaks the language of the system.
        static const std::set<std::wstring> own{L"",
                                                L"Open Recording",
                                                L"Splitting",
                                                L"Rename",
                                                L"Options",
                                                L"New Montage",
                                                L"Count Marks",
                                                L"Go To",
                                                L"Levels",
                                                L"Frequencies up to",
                                                L"Quillon",
                                                L"Statistics of Selection",
                                                L"Keys and Mouse"};
        if (!own.contains(dialog)) dialog = L"of the shell";
        return {{"column", std::to_string(m_global.view->Axis().FirstColumn())},
                {"zoom", std::to_string(m_global.view->Axis().ZoomIndex())},
                {"page",
                 m_global.view->Axis().IsFree() ? Utf8(PageCaption(m_global.view->Axis().PageSeconds(), u'.')) : ""},
                {"scale", std::to_string(m_global.view->ScaleY())},
                {"shift", std::to_string(m_global.view->BaseLineShift())},
                {"lanes", lanes},
                {"shown", shown},
                {"alone", m_global.document->IsSolo() ? "1" : "0"},
                {"pages", page(tabPath) + page(tabFile)},
                {"filters", IsWindowVisible(Control(cboHighPass)) != FALSE ? "1" : "0"},
                {"shown as", Utf8(TextOfCurrent(*m_global.document, Language::English, u'.'))},
                {"unfiltered", std::to_string(m_global.document->Shown().unfiltered.size())},
                {"spectrum", Spectrum() != nullptr ? "1" : "0"},
                {"spectrogram", m_global.settings.window.spectrogramShown ? "1" : "0"},
                {"look", (m_global.view->Look().colors == &kDarkColors ? "dark " : "light ") +
                             std::to_string(m_global.view->Look().lineWidth)},
                {"overview", std::to_string(m_global.settings.window.overview)},
                {"palette", std::to_string(m_global.settings.spectrum.palette)},
                {"levels", std::to_string(std::lround(m_global.settings.spectrum.topLevel)) + '-' +
                               std::to_string(std::lround(m_global.settings.spectrum.decibelRange))},
                {"transform", transform},
                {"help", std::to_string(m_global.settings.helpLanguage)},
                {"selection",
                 selection.active ? std::to_string(selection.First()) + '-' + std::to_string(selection.Last()) : ""},
                {"pinned", std::to_string(m_global.view->Pinned())},
                {"gone to", std::to_string(m_global.view->GoneTo())},
                {"lane", LaneOfFirst()},
                {"sound", calls},
                {"card", std::to_string(m_device.chosen)},
                {"list", focus == lstDir || focus == lvCh || focus == lstFile || focus == lstBlock || focus == lvMarks
                             ? std::to_string(focus - lstDir)
                             : ""},
                {"file", Utf8(FileNameOf(m_global.document->File().fileName))},
                {"status", Utf8(Narrow16(Status().substr(0, 9)))},
                {"recent", m_global.settings.recent.Paths().empty() ? "0" : "1"},
                {"save", std::to_string(m_saves)},
                {"clipboard", IsClipboardFormatAvailable(CF_DIB)           ? "image"
                              : IsClipboardFormatAvailable(CF_UNICODETEXT) ? "text"
                                                                           : ""},
                {"dialog", Utf8(Narrow16(dialog))}};
    }

    /// What is another after a command has been run.
    std::string ChangesOf(const Effect& effect, const std::function<void()>& run) {
        Prepare(effect);
        m_saves = 0;
        m_closer.Titles();
        const auto before = Facts();
        run();
        Pump();
        std::string changes;
        for (const auto& [name, value] : Facts()) {
            if (before.at(name) != value) changes += (changes.empty() ? "" : " ") + name + '=' + value;
        }
        return changes;
    }

    /// Presses a key such as "Ctrl+Shift+E", or "lvCh:Ctrl+A" in a list.
    void Press(std::string_view key) {
        static const std::map<std::string_view, int> names{
            {"Left", VK_LEFT},     {"Right", VK_RIGHT},     {"Up", VK_UP},           {"Down", VK_DOWN},
            {"PgUp", VK_PRIOR},    {"PgDn", VK_NEXT},       {"Home", VK_HOME},       {"End", VK_END},
            {"Plus", VK_OEM_PLUS}, {"Minus", VK_OEM_MINUS}, {"Space", VK_SPACE},     {"Enter", VK_RETURN},
            {"Esc", VK_ESCAPE},    {"Backspace", VK_BACK},  {"Del", VK_DELETE},      {"F1", VK_F1},
            {"F2", VK_F2},         {"F5", VK_F5},           {"Comma", VK_OEM_COMMA}, {"Point", VK_OEM_PERIOD}};
        static const std::map<std::string_view, int> lists{
            {"lstDir", lstDir}, {"lvCh", lvCh}, {"lstFile", lstFile}, {"lvMarks", lvMarks}};
        if (const std::size_t end = key.find(':'); end != key.npos) {
            SetFocus(Control(lists.at(key.substr(0, end))));
            key.remove_prefix(end + 1);
        }
        BYTE state[256]{};
        const BYTE none[256]{};
        UINT message = WM_KEYDOWN;
        for (const auto& [name, code] :
             {std::pair<std::string_view, int>{"Ctrl+", VK_CONTROL}, {"Shift+", VK_SHIFT}, {"Alt+", VK_MENU}}) {
            if (!key.starts_with(name)) continue;
            key.remove_prefix(name.size());
            state[code] = 0x80;
            if (code == VK_MENU) message = WM_SYSKEYDOWN;
        }
        const auto found = names.find(key);
        const int code = found != names.end() ? found->second : key.at(0);
        state[code] = 0x80;
        SetKeyboardState(state);
        EXPECT_TRUE(m_form->PreTranslate({GetFocus(), message, static_cast<WPARAM>(code), 0, 0, {}})) << key;
        // Raw signals are shown as long as their key is held: until the next effect is prepared.
        if (code != 'R') SetKeyboardState(const_cast<BYTE*>(none));
    }

    /// Presses a button of a toolbar as the mouse does.
    void PressButton(int toolbar, int command) const {
        RECT button{};
        const LRESULT index = SendMessageW(Control(toolbar), TB_COMMANDTOINDEX, static_cast<WPARAM>(command), 0);
        SendPointer(Control(toolbar), TB_GETITEMRECT, static_cast<WPARAM>(index), &button);
        Click(toolbar, (button.left + button.right) / 2, (button.top + button.bottom) / 2);
    }

    DeviceState m_device;
    int m_saves = 0;
    DialogCloser m_closer;
};

/// Position of a command in the graph's context menu, not counting separators; -1 when it is not there.
int LineInContextMenu(int command) {
    int line = 0;
    for (const MenuEntry& entry : ContextMenu()) {
        if (entry.kind == MenuEntry::Kind::Separator) continue;
        if (command >= entry.id && command < entry.id + entry.count) return line + command - entry.id;
        line += entry.count;
    }
    return -1;
}

/// Chooses a line of the menu that has just opened, once that waits for keys.
LRESULT CALLBACK ChooseLine(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR line) {
    if (message == WM_ENTERIDLE && wParam == MSGF_MENU) {
        for (DWORD_PTR at = 0; at <= line; ++at) PostMessageW(window, WM_KEYDOWN, VK_DOWN, 0);
        PostMessageW(window, WM_KEYDOWN, VK_RETURN, 0);
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

TEST_F(EffectTest, EveryCommandHasItsOneEffectByEveryWay) {
    std::map<int, int> buttons;
    for (const auto& [toolbar, all] : {std::pair{tbMain, MainButtons()}, {tbGoTo, GoToButtons()}}) {
        for (const ToolbarButton& button : all) buttons[button.command] = toolbar;
    }
    std::set<int> tested;
    std::size_t pressed = 0;
    for (const Effect& effect : kEffects) {
        SCOPED_TRACE(effect.command);
        tested.insert(effect.command);
        EXPECT_EQ(ChangesOf(effect, [&] { Command(effect.command); }), effect.changes);
        if (buttons.contains(effect.command)) {
            const auto press = [&] { PressButton(buttons[effect.command], effect.command); };
            EXPECT_EQ(ChangesOf(effect, press), effect.changes) << "by its button";
        }
        if (const int line = LineInContextMenu(effect.command); line >= 0) {
            const auto choose = [&] {
                m_closer.LeaveMenus(true);
                SetWindowSubclass(m_form->Window(), ChooseLine, 1, static_cast<DWORD_PTR>(line));
                Key(VK_APPS);
                RemoveWindowSubclass(m_form->Window(), ChooseLine, 1);
                m_closer.LeaveMenus(false);
            };
            EXPECT_EQ(ChangesOf(effect, choose), effect.changes) << "by the context menu";
        }
        std::istringstream keys(effect.keys);
        for (std::string key; keys >> key; ++pressed) {
            std::string changes = ChangesOf(effect, [&] { Press(key); });
            // The list that the key belongs to had the focus.
            if (const std::size_t list = changes.find("list="); key.find(':') != key.npos && list != changes.npos)
                changes.erase(list == 0 ? 0 : list - 1, std::min(changes.find(' ', list), changes.size()) - list + 1);
            EXPECT_EQ(changes, effect.changes) << "by " << key;
        }
    }
    EXPECT_EQ(pressed, KeyBindings().size()) << "a key that is not in the table";
    for (const MenuEntry& entry : SpectrogramMenu()) {
        const auto found = tested.lower_bound(entry.id);
        EXPECT_TRUE(entry.id == 0 || (found != tested.end() && *found < entry.id + entry.count)) << entry.id;
    }
    for (const auto menu : {MenuTree(), ContextMenu()}) {
        for (const MenuEntry& entry : menu) {
            const bool list =
                entry.id == mnuScaleX || entry.id == mnuScaleY || (FilterChoiceOf(entry.id) && entry.captionId == 0);
            for (int id = entry.id; id != 0 && id != mnuExit && id < entry.id + (list ? 1 : entry.count); ++id)
                EXPECT_TRUE(tested.contains(id)) << id;
        }
    }
    for (const KeyBinding& binding : KeyBindings()) EXPECT_TRUE(tested.contains(binding.command)) << binding.command;
}

}  // namespace
}  // namespace quillon
