#include "dialogs/win/dlgSplit.h"

#include <array>
#include <cmath>
#include <exception>
#include <optional>
#include <vector>

#include "base/Text.h"
#include "base/win/PendingMessages.h"
#include "dialogs/DialogTexts.h"
#include "dialogs/SplitTemplate.h"
#include "dialogs/SplitTexts.h"
#include "dialogs/win/SplitFolder.h"
#include "export/SplitPlan.h"
#include "export/SplitRun.h"
#include "format/NumberText.h"

namespace quillon {

using namespace split_controls;

namespace {

class SplitDialog {
  public:
    explicit SplitDialog(SplitDialogContext context)
        : m_context(std::move(context)),
          m_samples(m_context.block->SampleCount()),
          m_rate(m_context.block->SampleRate()),
          m_baseName(SplitBaseName(m_context.recording)),
          m_folder(SplitFolderName(m_context.recording)) {}

    void Show(HWND owner);

  private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void OnInitDialog();
    void OnCommand(int id, int notification);
    void ShowHelp();

    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(m_dialog, id); }
    [[nodiscard]] std::u16string Text(int id) const { return m_context.services.Text(id); }
    [[nodiscard]] bool IsChecked(int id) const { return IsDlgButtonChecked(m_dialog, id) == BST_CHECKED; }
    [[nodiscard]] bool BySamples() const { return IsChecked(optSplit + 1); }
    void SetStatus(const std::u16string& text);
    void AddToolTips();
    void FillCombo(int id, std::span<const std::int32_t> offered, const std::u16string& text) const;
    void LoadSettings();
    void KeepSettings();

    /// The entry of a combo box of a mode.
    [[nodiscard]] SplitEntry Entry(int id, bool samples) const;
    /// The plan of the choices; size and step are those of the entries where these have no fault.
    [[nodiscard]] SplitPlan Plan() const;
    [[nodiscard]] bool EntriesAreRight() const;
    void ReadFolder() { m_state = ReadSplitFolder(m_folder, m_context.recording); }
    void Refresh();
    void EnableControls(bool enabled) const;

    /// Tells what is wrong with the entries and leads the user there.
    [[nodiscard]] bool CheckEntries();
    /// Whether nothing stands against the run, now that the folder has been read anew.
    [[nodiscard]] bool CheckFolder(const SplitPlan& plan);
    [[nodiscard]] bool MayReplace(const SplitPlan& plan);
    /// Asks the user where that many files are hardly meant.
    [[nodiscard]] bool MayWriteSoMany(const SplitPlan& plan);
    [[nodiscard]] bool Agrees(const std::u16string& question) const;
    void Split();
    [[nodiscard]] SplitResult Run(const SplitPlan& plan);

    SplitDialogContext m_context;
    std::int32_t m_samples;
    double m_rate;
    std::u16string m_baseName;
    std::u16string m_folder;
    HWND m_dialog = nullptr;
    HWND m_toolTips = nullptr;  ///< owned by the dialog
    SplitFolderState m_state;   ///< as it was read last
    /// Files that the user has been told will be deleted; none when nothing was told.
    std::optional<std::vector<std::u16string>> m_announced;
    bool m_running = false;
    bool m_destroyed = false;
};

void SplitDialog::Show(HWND owner) {
    const DialogTemplate dialog = MakeSplitTemplate(m_context.services, m_baseName, m_folder);
    DialogBoxIndirectParamW(GetModuleHandleW(nullptr), static_cast<const DLGTEMPLATE*>(dialog.Get()), owner, Procedure,
                            reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK SplitDialog::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        reinterpret_cast<SplitDialog*>(lParam)->m_dialog = dialog;
    }
    auto* const self = reinterpret_cast<SplitDialog*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (self == nullptr) return FALSE;
    try {
        return self->OnMessage(message, wParam, lParam);
    } catch (const std::exception& error) {
        self->m_context.services.ShowMessage(Utf16(error.what()));
        if (message == WM_INITDIALOG) EndDialog(dialog, IDCANCEL);
        return TRUE;
    }
}

INT_PTR SplitDialog::OnMessage(UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG: OnInitDialog(); return TRUE;
        case WM_COMMAND: OnCommand(LOWORD(wParam), HIWORD(wParam)); return TRUE;
        case WM_HELP: ShowHelp(); return TRUE;
        case WM_SETCURSOR:
            if (!m_running) return FALSE;
            SetCursor(LoadCursorW(nullptr, IDC_WAIT));
            SetWindowLongPtrW(m_dialog, DWLP_MSGRESULT, TRUE);
            return TRUE;
        case WM_DESTROY: m_destroyed = true; return FALSE;
        default: return FALSE;
    }
}

void SplitDialog::OnInitDialog() {
    LoadSettings();
    AddToolTips();
    ReadFolder();
    Refresh();
}

void SplitDialog::OnCommand(int id, int notification) {
    if (m_running) return;
    switch (id) {
        case cmdSplit: Split(); return;
        case cmdCancel: EndDialog(m_dialog, IDCANCEL); return;
        case cmdHelp: ShowHelp(); return;
        case chkDelFiles:
            ReadFolder();
            Refresh();
            return;
        case cboSize:
        case cboSize + 1:
        case cboStep:
        case cboStep + 1:
            if (const LRESULT at = SendMessageW(Control(id), CB_GETCURSEL, 0, 0);
                notification == CBN_SELCHANGE && at >= 0) {
                // The box takes over the text only later.
                wchar_t text[32] = {};
                SendPointer(Control(id), CB_GETLBTEXT, static_cast<WPARAM>(at), text);
                SetWindowTextW(Control(id), text);
            }
            if (notification == CBN_SELCHANGE || notification == CBN_EDITCHANGE) Refresh();
            return;
        case optSplit:
        case optSplit + 1:
        case optFileIndex:
        case optFileIndex + 1:
        case chkBaseName: Refresh(); return;
        default: return;
    }
}

void SplitDialog::ShowHelp() {
    if (!m_running && m_context.showHelp) m_context.showHelp();
}

void SplitDialog::SetStatus(const std::u16string& text) {
    SetWindowTextW(Control(lblStatus), Wide(text).c_str());
    UpdateWindow(Control(lblStatus));
}

void SplitDialog::AddToolTips() {
    m_toolTips =
        CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, m_dialog, nullptr, nullptr, nullptr);
    // Long texts are broken into lines.
    constexpr int widest = 600;
    SendMessageW(m_toolTips, TTM_SETMAXTIPWIDTH, 0, widest);
    for (const auto& [id, text] : {std::pair(lblFolder, &m_folder), std::pair(lblBaseName, &m_baseName)}) {
        std::wstring tip = Wide(*text);
        TTTOOLINFOW tool{};
        tool.cbSize = TTTOOLINFOW_V1_SIZE;
        tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
        tool.hwnd = m_dialog;
        tool.uId = reinterpret_cast<UINT_PTR>(Control(id));
        tool.lpszText = tip.data();
        SendPointer(m_toolTips, TTM_ADDTOOLW, 0, &tool);
    }
}

void SplitDialog::FillCombo(int id, std::span<const std::int32_t> offered, const std::u16string& text) const {
    for (const std::int32_t offer : offered) SendPointer(Control(id), CB_ADDSTRING, 0, Wide(Decimal(offer)).c_str());
    SetWindowTextW(Control(id), Wide(text).c_str());
}

void SplitDialog::LoadSettings() {
    const SplitSettings& settings = m_context.settings;
    const auto seconds = [&](float stored, float otherwise) {
        const bool usable = stored > 0.0F && std::isfinite(stored);
        return usable ? stored : otherwise;
    };
    const auto samples = [](std::int32_t stored, std::int32_t otherwise) { return stored > 0 ? stored : otherwise; };
    const auto firstSeconds = static_cast<float>(FirstSplitSize(kSplitSeconds, m_samples / m_rate));
    const float timeSize = seconds(settings.timeSize, firstSeconds);
    const float timeStep = seconds(settings.timeStep, timeSize);
    const std::int32_t size = samples(settings.samplesSize, FirstSplitSize(kSplitSamples, m_samples));
    const std::int32_t step = samples(settings.samplesStep, size);
    FillCombo(cboSize, kSplitSeconds, SingleNumberText(timeSize, m_context.decimalSeparator));
    FillCombo(cboStep, kSplitSeconds, SingleNumberText(timeStep, m_context.decimalSeparator));
    FillCombo(cboSize + 1, kSplitSamples, Decimal(size));
    FillCombo(cboStep + 1, kSplitSamples, Decimal(step));
    CheckRadioButton(m_dialog, optSplit, optSplit + 1, settings.type == 1 ? optSplit + 1 : optSplit);
    CheckRadioButton(m_dialog, optFileIndex, optFileIndex + 1,
                     settings.fileIndex == 1 ? optFileIndex + 1 : optFileIndex);
    CheckDlgButton(m_dialog, chkBaseName, settings.baseName != 0 ? BST_CHECKED : BST_UNCHECKED);
}

void SplitDialog::KeepSettings() {
    SplitSettings& settings = m_context.settings;
    settings.type = BySamples() ? 1 : 0;
    settings.fileIndex = IsChecked(optFileIndex + 1) ? 1 : 0;
    settings.baseName = IsChecked(chkBaseName) ? 1 : 0;
    // The other mode may hold what is no number; then its setting stays.
    const auto keep = [&](int id, bool samples, auto& setting) {
        const SplitEntry entry = Entry(id, samples);
        if (entry.fault == EntryFault::None)
            setting = static_cast<std::remove_reference_t<decltype(setting)>>(entry.number);
    };
    keep(cboSize, false, settings.timeSize);
    keep(cboStep, false, settings.timeStep);
    keep(cboSize, true, settings.samplesSize);
    keep(cboStep, true, settings.samplesStep);
}

SplitEntry SplitDialog::Entry(int id, bool samples) const {
    const std::u16string text = Narrow16(WindowText(Control(id + (samples ? 1 : 0))));
    return samples ? ParseSplitSamples(text) : ParseSplitSeconds(text, m_rate, m_context.decimalSeparator);
}

SplitPlan SplitDialog::Plan() const {
    SplitPlan plan;
    plan.blockSamples = m_samples;
    const SplitEntry size = Entry(cboSize, BySamples());
    const SplitEntry step = Entry(cboStep, BySamples());
    if (size.fault == EntryFault::None) plan.size = size.samples;
    if (step.fault == EntryFault::None) plan.step = step.samples;
    plan.sampleNames = IsChecked(optFileIndex + 1);
    if (IsChecked(chkBaseName)) plan.prefix = m_baseName + u'_';
    plan.extension = SplitExtension(m_context.recording);
    return plan;
}

bool SplitDialog::EntriesAreRight() const {
    return Entry(cboSize, BySamples()).fault == EntryFault::None &&
           Entry(cboStep, BySamples()).fault == EntryFault::None;
}

void SplitDialog::Refresh() {
    EnableControls(true);
    const SplitPlan plan = Plan();
    const bool right = EntriesAreRight();
    std::u16string status = SplitExampleText(m_context.services, plan);
    m_announced.reset();
    if (IsChecked(chkDelFiles)) {
        m_announced = m_state.files;
        status += u"\r\n" + FillPlaces(Text(IDS_SPLIT_WILL_DELETE), {Decimal(std::ssize(m_state.files))});
    } else if (const std::int64_t replaced = right ? CountReplaced(plan, m_state) : 0; replaced > 0) {
        status += u"\r\n" + FillPlaces(Text(IDS_SPLIT_WILL_REPLACE), {Decimal(replaced)});
    }
    SetStatus(status);
    const std::int64_t pieces = std::max<std::int64_t>(plan.PieceCount(), 0);
    const std::u16string count = right ? FillPlaces(Text(IDS_SPLIT_PIECES), {Decimal(pieces)}) : std::u16string();
    SetWindowTextW(Control(lblPieces), Wide(count).c_str());
}

void SplitDialog::EnableControls(bool enabled) const {
    for (const int id : {int{cmdSplit}, int{cmdCancel}, int{cmdHelp}, int{optSplit}, optSplit + 1, int{chkBaseName},
                         int{optFileIndex}, optFileIndex + 1, int{chkDelFiles}})
        EnableWindow(Control(id), enabled ? TRUE : FALSE);
    for (const int mode : {0, 1}) {
        const BOOL own = enabled && BySamples() == (mode == 1) ? TRUE : FALSE;
        EnableWindow(Control(cboSize + mode), own);
        EnableWindow(Control(cboStep + mode), own);
    }
}

bool SplitDialog::CheckEntries() {
    for (const auto& [id, label] : {std::pair(cboSize, IDS_SPLIT_SIZE), std::pair(cboStep, IDS_SPLIT_STEP)}) {
        const EntryFault fault = Entry(id, BySamples()).fault;
        if (fault == EntryFault::None) continue;
        const HWND combo = Control(id + (BySamples() ? 1 : 0));
        SetStatus(SplitFaultText(m_context.services, label, Narrow16(WindowText(combo)), !BySamples(), fault));
        SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(combo), TRUE);
        return false;
    }
    return true;
}

bool SplitDialog::CheckFolder(const SplitPlan& plan) {
    const SplitObstacle obstacle = FindSplitObstacle(plan, m_state);
    if (obstacle != SplitObstacle::None) {
        SetStatus(SplitObstacleText(m_context.services, obstacle, plan, m_folder));
        return false;
    }
    if (!MayWriteSoMany(plan)) return false;
    if (!IsChecked(chkDelFiles)) return MayReplace(plan);
    if (m_announced != m_state.files) {
        // Other files than the user was told of: they go with the next press.
        Refresh();
        return false;
    }
    const std::u16string kept = FindUndeletable(m_folder, m_state.files);
    if (kept.empty()) return true;
    SetStatus(SplitResultText(m_context.services, {SplitEnd::DeleteFailed, 0, kept}, m_folder));
    return false;
}

bool SplitDialog::MayReplace(const SplitPlan& plan) {
    const std::int64_t replaced = CountReplaced(plan, m_state);
    if (replaced == 0) return true;
    Refresh();
    return Agrees(FillPlaces(Text(IDS_SPLIT_REPLACE), {Decimal(replaced)}));
}

bool SplitDialog::MayWriteSoMany(const SplitPlan& plan) {
    constexpr std::int64_t usual = 10000;
    if (plan.PieceCount() <= usual) return true;
    return Agrees(FillPlaces(Text(IDS_SPLIT_MANY), {Decimal(plan.PieceCount())}));
}

bool SplitDialog::Agrees(const std::u16string& question) const {
    return MessageBoxW(m_dialog, Wide(question).c_str(), Wide(Text(IDS_SPLIT_TITLE)).c_str(),
                       MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
}

void SplitDialog::Split() {
    if (!CheckEntries()) return;
    const SplitPlan plan = Plan();
    ReadFolder();
    if (!CheckFolder(plan) || m_destroyed) return;
    KeepSettings();
    m_context.exporter.SetRecording(m_context.recording);
    const SplitResult result = Run(plan);
    const std::u16string text = SplitResultText(m_context.services, result, m_folder);
    if (m_destroyed) return;
    ReadFolder();
    // What is there now was not announced.
    m_announced.reset();
    SetStatus(text);
    SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(cmdSplit)), TRUE);
    if (result.end == SplitEnd::Stopped) EndDialog(m_dialog, IDCANCEL);
}

SplitResult SplitDialog::Run(const SplitPlan& plan) {
    // Whatever ends the run, the user can go on.
    struct Scope {
        explicit Scope(SplitDialog& split) : dialog(split) {
            dialog.m_running = true;
            dialog.EnableControls(false);
            // Long pieces too leave the windows alive; the end of the program is seen after the piece.
            constexpr ULONGLONG interval = 30;  // ms, too short to be seen
            dialog.m_context.exporter.SetProgress(
                [window = split.m_dialog, last = GetTickCount64()](std::int32_t, std::int32_t) mutable {
                    if (GetTickCount64() - last < interval) return;
                    static_cast<void>(RunPendingMessages(window));
                    last = GetTickCount64();
                });
        }
        ~Scope() {
            dialog.m_context.exporter.SetProgress({});
            dialog.m_running = false;
            if (!dialog.m_destroyed) dialog.EnableControls(true);
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        SplitDialog& dialog;
    };
    const Scope scope(*this);
    SplitSystem system;
    if (IsChecked(chkDelFiles)) {
        system.deleteFiles = [&] { return DeleteSplitFiles(m_folder, m_state.files, m_dialog); };
    }
    system.createFolder = [&] { return CreateSplitFolder(m_folder); };
    system.exportPiece = [&](std::int64_t piece, const std::u16string& name) {
        return ExportPiece(m_context.exporter, *m_context.block, plan, piece, SplitFilePath(m_folder, name));
    };
    system.status = [&](std::int64_t piece, const std::u16string& name) {
        SetStatus(SplitProgressText(m_context.services, plan, piece, name));
    };
    system.runPending = [&] { return RunPendingMessages(m_dialog) && !m_destroyed; };
    return RunSplit(plan, system);
}

}  // namespace

void ShowSplitDialog(HWND owner, SplitDialogContext context) {
    SplitDialog(std::move(context)).Show(owner);
}

}  // namespace quillon
