#include "app/win/QL_Main.h"

#include <system_error>
#include <utility>
#include <vector>

#include "app/KV_Resources.h"
#include "app/PathArgument.h"
#include "app/StringIds.h"
#include "app/win/CrashTrace.h"
#include "app/win/frmQLMain.h"
#include "base/Text.h"
#include "kvsound/win/WaveOut.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/SystemBytes.h"
#include "norvik/TextWriter.h"
#include "norvik/win/ClipboardWriter.h"
#include "norvik/win/Registry.h"
#include "norvik/win/SaveDialog.h"
#include "norvik/win/Timer.h"
#include "spectrum/QL_FFT.h"

namespace quillon {

namespace {

std::int32_t SystemMajorVersion() {
    // GetVersion reports the version that the manifest declares, which also determines how GDI behaves.
    return static_cast<std::int32_t>(LOBYTE(LOWORD(GetVersion())));
}

/// Sunday is 0.
int FirstDayOfWeek() {
    wchar_t day[4] = {};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_IFIRSTDAYOFWEEK, day, 4);
    return day[0] < L'0' || day[0] > L'6' ? 0 : (day[0] - L'0' + 1) % 7;  // the system's Monday is 0
}

std::unique_ptr<TextSink> OpenText(const std::u16string& target, std::u16string& error) {
    return target == kClipboardTarget ? MakeClipboardText() : CreateTextFile(target, InterfaceLanguage(), error);
}

/// Until all controls exist: input stays in the system's queue and posted commands in a list, as both may need them;
/// all other messages are handled between the steps. False when the program ends.
bool RunStart(frmQLMain& form, MSG& message) {
    constexpr UINT noInput = PM_QS_PAINT | PM_QS_POSTMESSAGE | PM_QS_SENDMESSAGE;
    std::vector<MSG> commands;
    while (!form.IsComplete()) {
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | noInput) == FALSE) {
            form.RunSlice();
        } else if (message.message == WM_QUIT) {
            return false;
        } else if (message.message == WM_COMMAND) {
            commands.push_back(message);
        } else {
            DispatchMessageW(&message);
        }
    }
    for (const MSG& command : commands) DispatchMessageW(&command);
    return true;
}

/// Once, with the place of the text.
void TellOfCrash(const std::u16string& file, UserServices& services) {
    const std::u16string told = TakeCrashFile(file);
    if (!told.empty()) services.ShowMessage(services.Text(IDS_CRASHED) + u"\n\n" + told);
}

/// `onComplete` is called when all controls exist.
int RunMessages(frmQLMain& form, const std::function<void()>& onComplete) {
    MSG message{};
    const auto noneWaits = [&message] { return PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE) == FALSE; };
    bool runs = RunStart(form, message);
    if (runs) onComplete();
    while (runs) {
        while (noneWaits() && form.RunSlice()) {
        }
        runs = GetMessageW(&message, nullptr, 0, 0) > 0;
        if (!runs || form.PreTranslate(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    form.ThrowFailure();
    return static_cast<int>(message.wParam);
}

}  // namespace

StartUpParts SystemParts() {
    return {MakeRecordingLibrary,
            SystemMajorVersion,
            MakeRegistryObject,
            {},
            MakeTimer,
            {MakeOutputFile, SystemBytes, FirstDayOfWeek()},
            OpenText,
            MakeSaveDialog,
            [](SoundOutputEvents events) { return MakeSoundOutput(std::move(events), InterfaceLanguage()); }};
}

std::u16string PathOfArguments(const std::wstring& arguments) {
    const std::u16string named = PathArgument(Narrow16(arguments));
    if (named.empty()) return {};
    std::wstring path(32768, L'\0');
    const DWORD length = GetFullPathNameW(Wide(named).c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
    // What has no absolute form is told as it was written.
    if (length == 0 || length >= path.size()) return named;
    path.resize(length);
    return Narrow16(path);
}

void LeaveStartFolder() {
    wchar_t folder[MAX_PATH] = {};
    if (GetSystemDirectoryW(folder, MAX_PATH) != 0) SetCurrentDirectoryW(folder);
}

int QL_Main(const StartUpParts& parts, int showCommand) {
    QL_Global global;
    global.language = InterfaceLanguage();
    global.format.decimalSeparator = DecimalSeparator();
    WinServices services(global.language);
    // A drive without a medium is reported in the status bar, not in a message box of the system.
    SetErrorMode(SEM_FAILCRITICALERRORS);
    if (!Init(global, parts, services)) return 1;
    SettingsStore store(parts.makeRegistry, parts.program);
    store.Load(global.settings);
    // After a crash the window does not begin with what may have brought it down.
    if (!parts.crashFile.empty() && FileExists(parts.crashFile)) global.settings.last = {};
    global.storeRecordings = [&] { store.SaveRecordings(global.settings); };
    ApplyDisplaySettings(global);
    // Before anything shows them or saves them.
    QL_FFT::RepairSettings(global.settings.spectrum);
    try {
        frmQLMain form(global, services, parts.makeTimer, [&] { store.Save(global.settings); });
        form.ChooseHelp();
        form.Create(Wide(parts.path));
        form.Show(showCommand);
        UpdateWindow(form.Window());
        return RunMessages(form, [&] { TellOfCrash(parts.crashFile, services); });
    } catch (const std::system_error& error) {
        services.ShowMessage(services.Text(IDS_NO_WINDOW) + u' ' + services.Text(IDS_ERROR_NUMBERED) + u' ' +
                             Decimal(error.code().value()));
    } catch (const std::exception& error) {
        services.ShowMessage(services.Text(IDS_NO_WINDOW) + u' ' + Utf16(error.what()));
    }
    return 1;
}

}  // namespace quillon
