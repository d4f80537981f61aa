#include "app/GraphKeys.h"

#include <algorithm>
#include <array>

#include "app/Commands.h"
#include "app/ControlIds.h"
#include "app/StringIds.h"

namespace quillon {

namespace {

constexpr bool kControl = true;
constexpr bool kShift = true;
constexpr bool kAlt = true;
constexpr bool kNo = false;

constexpr std::array kBindings{
    KeyBinding{KeyPlace::Graph, Key::Left, mnuMove + 0},
    KeyBinding{KeyPlace::Graph, Key::Right, mnuMove + 1},
    KeyBinding{KeyPlace::Graph, Key::Left, mnuMove + 2, kControl},
    KeyBinding{KeyPlace::Graph, Key::Right, mnuMove + 3, kControl},
    KeyBinding{KeyPlace::Graph, Key::Left, mnuMove + 4, kNo, kShift},
    KeyBinding{KeyPlace::Graph, Key::Right, mnuMove + 5, kNo, kShift},
    KeyBinding{KeyPlace::Graph, Key::Up, mnuMove + 6},
    KeyBinding{KeyPlace::Graph, Key::Down, mnuMove + 7},
    KeyBinding{KeyPlace::Graph, Key::Up, mnuMove + 8, kControl},
    KeyBinding{KeyPlace::Graph, Key::Down, mnuMove + 9, kControl},
    KeyBinding{KeyPlace::Graph, Key::Up, mnuMove + 10, kNo, kShift},
    KeyBinding{KeyPlace::Graph, Key::Down, mnuMove + 11, kNo, kShift},
    KeyBinding{KeyPlace::Graph, Key::PageUp, mnuGoTo + 1},
    KeyBinding{KeyPlace::Graph, Key::PageDown, mnuGoTo + 2},
    KeyBinding{KeyPlace::Graph, Key::Home, mnuGoTo + 0},
    KeyBinding{KeyPlace::Graph, Key::End, mnuGoTo + 3},
    KeyBinding{KeyPlace::Graph, Key::Plus, mnuZoomY + 1},
    KeyBinding{KeyPlace::Graph, Key::Minus, mnuZoomY + 0},
    KeyBinding{KeyPlace::Graph, Key::Plus, mnuZoomX + 1, kControl},
    KeyBinding{KeyPlace::Graph, Key::Minus, mnuZoomX + 0, kControl},
    KeyBinding{KeyPlace::Graph, Letter('1'), mnuPage + 0},
    KeyBinding{KeyPlace::Graph, Letter('2'), mnuPage + 1},
    KeyBinding{KeyPlace::Graph, Letter('3'), mnuPage + 2},
    KeyBinding{KeyPlace::Graph, Letter('4'), mnuPage + 3},
    KeyBinding{KeyPlace::Graph, Letter('5'), mnuPage + 4},
    KeyBinding{KeyPlace::Graph, Letter('6'), mnuPage + 5},
    KeyBinding{KeyPlace::Graph, Letter('7'), mnuPage + 6},
    KeyBinding{KeyPlace::Graph, Letter('8'), mnuPage + 7},
    KeyBinding{KeyPlace::Graph, Letter('9'), mnuPage + 8},
    KeyBinding{KeyPlace::Everywhere, Letter('E'), mnuView + 0, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('F'), mnuView + 1, kControl},
    KeyBinding{KeyPlace::Graph, Key::Backspace, mnuView + 2},
    KeyBinding{KeyPlace::Graph, Letter('B'), mnuBaseLine + 0},
    KeyBinding{KeyPlace::Graph, Letter('D'), mnuBaseLine + 1},
    KeyBinding{KeyPlace::Graph, Letter('F'), mnuFilterRow},
    KeyBinding{KeyPlace::Everywhere, Letter('R'), mnuShowRaw, kControl},
    KeyBinding{KeyPlace::Graph, Letter('L'), mnuLanes},
    KeyBinding{KeyPlace::Graph, Letter('A'), mnuAllSignals},
    KeyBinding{KeyPlace::Graph, Letter('G'), mnuSpectrogram},
    KeyBinding{KeyPlace::Graph, Letter('G'), mnuNextPalette, kNo, kShift},
    KeyBinding{KeyPlace::Graph, Letter('O'), mnuOverview},
    KeyBinding{KeyPlace::Graph, Key::Space, mnuSoundPlay + 0},
    KeyBinding{KeyPlace::Graph, Key::Space, mnuSoundPlay + 1, kNo, kShift},
    KeyBinding{KeyPlace::Graph, Letter('M'), mnuPin},
    KeyBinding{KeyPlace::Everywhere, Letter('M'), mnuCopyReadout, kControl},
    KeyBinding{KeyPlace::Graph, Key::Comma, mnuRead + 0},
    KeyBinding{KeyPlace::Graph, Key::Point, mnuRead + 1},
    KeyBinding{KeyPlace::Graph, Key::Comma, mnuRead + 2, kNo, kShift},
    KeyBinding{KeyPlace::Graph, Key::Point, mnuRead + 3, kNo, kShift},
    KeyBinding{KeyPlace::Graph, Key::Minus, mnuLane + 0, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Graph, Key::Plus, mnuLane + 1, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Graph, Key::Home, mnuLane + 2, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Graph, Key::Up, mnuLane + 3, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Graph, Key::Down, mnuLane + 4, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Graph, Key::PageUp, mnuLane + 5, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Graph, Key::PageDown, mnuLane + 6, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Graph, Key::Escape, mnuSelect + 2},
    KeyBinding{KeyPlace::Graph, Letter('A'), mnuSelect + 0, kControl},
    KeyBinding{KeyPlace::Graph, Letter('A'), mnuSelect + 1, kControl, kShift},
    KeyBinding{KeyPlace::MarkList, Letter('C'), mnuMarkList + 0, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('C'), mnuCopy + 0, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('C'), mnuCopy + 1, kControl, kShift},
    KeyBinding{KeyPlace::Everywhere, Letter('O'), mnuOpen, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('S'), mnuSaveAs, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('E'), mnuFastExport, kControl, kShift},
    KeyBinding{KeyPlace::Everywhere, Letter('S'), mnuSplit, kControl, kShift},
    KeyBinding{KeyPlace::Everywhere, Letter('P'), mnuPrint, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('P'), mnuSpectrum, kControl, kShift},
    KeyBinding{KeyPlace::Everywhere, Key::Left, mnuMark + 0, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Everywhere, Key::Right, mnuMark + 1, kNo, kNo, kAlt},
    KeyBinding{KeyPlace::Everywhere, Letter('G'), mnuGoToPlace, kControl},
    KeyBinding{KeyPlace::Everywhere, Key::PageUp, mnuRecording + 0, kControl},
    KeyBinding{KeyPlace::Everywhere, Key::PageDown, mnuRecording + 1, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('1'), mnuFocus + 0, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('2'), mnuFocus + 1, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('3'), mnuFocus + 2, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('4'), mnuFocus + 3, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('5'), mnuFocus + 4, kControl},
    KeyBinding{KeyPlace::Everywhere, Letter('0'), mnuFocus + 5, kControl},
    KeyBinding{KeyPlace::Everywhere, Key::F5, mnuTabFile + 0},
    KeyBinding{KeyPlace::Everywhere, Key::F1, mnuHelp},
    KeyBinding{KeyPlace::FolderList, Key::Enter, mnuOpenFolder},
    KeyBinding{KeyPlace::FileList, Key::Delete, mnuFileOperation + 0},
    KeyBinding{KeyPlace::FileList, Key::F2, mnuFileOperation + 1},
    KeyBinding{KeyPlace::ChannelList, Letter('A'), mnuChShow + 0, kControl},
    KeyBinding{KeyPlace::ChannelList, Letter('A'), mnuChShow + 1, kControl, kShift},
    KeyBinding{KeyPlace::ChannelList, Letter('I'), mnuChShow + 2, kControl},
};

std::u16string NameOf(Key key, const UserServices& services) {
    switch (key) {
        case Key::Plus: return u"+";
        case Key::Minus: return u"-";
        case Key::F1: return u"F1";
        case Key::F2: return u"F2";
        case Key::F5: return u"F5";
        case Key::Comma: return u",";
        case Key::Point: return u".";
        default: break;
    }
    if (key < Key::Left) return std::u16string(1, static_cast<char16_t>(key));
    return services.Text(IDS_KEY_0 + static_cast<int>(key) - static_cast<int>(Key::Left));
}

}  // namespace

std::span<const KeyBinding> KeyBindings() {
    return kBindings;
}

int CommandOf(KeyPlace place, Key key, bool control, bool shift, bool alt) {
    const auto found = std::find_if(kBindings.begin(), kBindings.end(), [&](const KeyBinding& binding) {
        return (binding.place == place || binding.place == KeyPlace::Everywhere) && binding.key == key &&
               binding.control == control && binding.shift == shift && binding.alt == alt;
    });
    return found == kBindings.end() ? 0 : found->command;
}

bool IsKeyOfBox(Key key, bool control, bool shift, bool alt) {
    if (alt) return false;
    if (!control) return key != Key::F1 && key != Key::F5;
    constexpr std::array moving{Key::Left, Key::Right, Key::Home, Key::End};
    constexpr std::array editing{Letter('A'), Letter('C'), Letter('V'), Letter('X'), Letter('Z')};
    return std::find(moving.begin(), moving.end(), key) != moving.end() ||
           (!shift && std::find(editing.begin(), editing.end(), key) != editing.end());
}

KeyPlace KeyPlaceOf(int control) {
    switch (control) {
        case 0:
        case pbFFT:
        case pbGraph: return KeyPlace::Graph;
        case lstDir: return KeyPlace::FolderList;
        case lstFile: return KeyPlace::FileList;
        case lvCh: return KeyPlace::ChannelList;
        case lvMarks: return KeyPlace::MarkList;
        default: return KeyPlace::Everywhere;
    }
}

bool ReturnsKeyboard(int control) {
    return control == lstFile || control == lstBlock || control == lvCh || control == tabPath || control == tabFile;
}

std::optional<GraphZone> WheelZoneOf(int control) {
    switch (control) {
        case pbGraph: return GraphZone::Traces;
        case pbFFT: return GraphZone::Spectrogram;
        case pbScaleX:
        case pbOverview: return GraphZone::TimeScale;
        case pbScaleY: return GraphZone::AmplitudeScale;
        default: return std::nullopt;
    }
}

std::u16string KeyText(const KeyBinding& binding, const UserServices& services) {
    std::u16string text;
    if (binding.control) text += u"Ctrl+";
    if (binding.shift) text += u"Shift+";
    if (binding.alt) text += u"Alt+";
    return text + NameOf(binding.key, services);
}

std::u16string AcceleratorText(int command, const UserServices& services) {
    const auto found = std::find_if(kBindings.begin(), kBindings.end(), [&](const KeyBinding& binding) {
        return binding.command == command &&
               (binding.place == KeyPlace::Everywhere || binding.place == KeyPlace::Graph);
    });
    return found == kBindings.end() ? std::u16string() : KeyText(*found, services);
}

}  // namespace quillon
