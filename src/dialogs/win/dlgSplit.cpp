#include "dialogs/win/dlgSplit.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "base/FilePath.h"
#include "base/Text.h"
#include "base/win/YesNoBox.h"
#include "dialogs/DialogTexts.h"
#include "dialogs/SplitChoices.h"
#include "dialogs/SplitTemplate.h"
#include "dialogs/SplitTexts.h"
#include "dialogs/win/SplitFolder.h"
#include "export/SplitPlan.h"
#include "export/SplitRun.h"

namespace quillon {

using namespace split_controls;

namespace {

class SplitDialog {
  public:
    explicit SplitDialog(SplitDialogContext context)
        : m_context(std::move(context)),
          m_source{m_context.block->SampleCount(), m_context.block->SampleRate(), m_context.recording,
                   m_context.decimalSeparator},
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
    void SetStatus(const std::u16string& text);
    void AddToolTips();
    void FillCombo(int id, std::span<const std::int32_t> offered, const std::u16string& text) const;
    void ShowChoices(const SplitChoices& choices) const;
    [[nodiscard]] SplitChoices Choices() const;
    [[nodiscard]] SplitPlan Plan() const { return MakeSplitPlan(Choices(), m_source); }
    void ReadFolder() { m_state = ReadSplitFolder(m_folder, m_context.recording); }
    void Refresh();
    void EnableControls(bool enabled) const;

    /// Reports an invalid entry and moves the focus to it.
    [[nodiscard]] bool CheckEntries();
    /// Reads the folder again and returns whether the run can start.
    [[nodiscard]] bool CheckFolder(const SplitPlan& plan);
    [[nodiscard]] bool MayReplace(const SplitPlan& plan);
    [[nodiscard]] bool MayWriteSoMany(const SplitPlan& plan);
    [[nodiscard]] bool Agrees(const std::u16string& question) const;
    void Split();
    [[nodiscard]] SplitResult Run(const SplitPlan& plan);
    /// Called periodically by a run: shows how far it is; false to stop it.
    [[nodiscard]] bool GoesOn(const SplitPlan& plan, std::int64_t piece, std::int32_t percent);

    SplitDialogContext m_context;
    SplitSource m_source;
    std::u16string m_baseName;
    std::u16string m_folder;
    HWND m_dialog = nullptr;
    HWND m_toolTips = nullptr;  ///< owned by the dialog
    SplitFolderState m_state;   ///< as it was read last
    /// Files announced to the user as to be deleted; none when nothing was announced.
    std::optional<std::vector<std::u16string>> m_announced;
    bool m_running = false;
    bool m_closeAsked = false;  ///< during a run; answered by GoesOn
    bool m_stopped = false;
    std::int32_t m_percent = -1;  ///< shown
    std::int64_t m_piece = -1;    ///< shown
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
        case WM_SETFOCUS:
            // Else it would give the focus to the control that had it last.
            return m_running ? TRUE : FALSE;
        case WM_CLOSE: m_closeAsked = m_running; return m_running ? TRUE : FALSE;
        case WM_DESTROY: m_destroyed = true; return FALSE;
        default: return FALSE;
    }
}

void SplitDialog::OnInitDialog() {
    ShowChoices(ShowSplitSettings(m_context.settings, m_source));
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

void SplitDialog::ShowChoices(const SplitChoices& choices) const {
    for (const int mode : {0, 1}) {
        const std::span<const std::int32_t> offered = mode == 0 ? std::span(kSplitSeconds) : std::span(kSplitSamples);
        FillCombo(cboSize + mode, offered, choices.size[static_cast<std::size_t>(mode)]);
        FillCombo(cboStep + mode, offered, choices.step[static_cast<std::size_t>(mode)]);
    }
    CheckRadioButton(m_dialog, optSplit, optSplit + 1, optSplit + (choices.bySamples ? 1 : 0));
    CheckRadioButton(m_dialog, optFileIndex, optFileIndex + 1, optFileIndex + (choices.sampleNames ? 1 : 0));
    CheckDlgButton(m_dialog, chkBaseName, choices.baseName ? BST_CHECKED : BST_UNCHECKED);
}

SplitChoices SplitDialog::Choices() const {
    const auto typed = [&](int id) { return Narrow16(WindowText(Control(id))); };
    return {.bySamples = IsChecked(optSplit + 1),
            .size = {typed(cboSize), typed(cboSize + 1)},
            .step = {typed(cboStep), typed(cboStep + 1)},
            .sampleNames = IsChecked(optFileIndex + 1),
            .baseName = IsChecked(chkBaseName),
            .deleteFiles = IsChecked(chkDelFiles)};
}

void SplitDialog::Refresh() {
    EnableControls(true);
    const SplitChoices choices = Choices();
    m_announced.reset();
    if (choices.deleteFiles) m_announced = m_state.files;
    SetStatus(SplitStatusText(m_context.services, choices, m_source, m_state));
    SetWindowTextW(Control(lblPieces), Wide(SplitCountText(m_context.services, choices, m_source)).c_str());
}

void SplitDialog::EnableControls(bool enabled) const {
    for (const int id : {int{cmdSplit}, int{cmdCancel}, int{cmdHelp}, int{optSplit}, optSplit + 1, int{chkBaseName},
                         int{optFileIndex}, optFileIndex + 1, int{chkDelFiles}})
        EnableWindow(Control(id), enabled ? TRUE : FALSE);
    for (const int mode : {0, 1}) {
        const BOOL own = enabled && IsChecked(optSplit + mode) ? TRUE : FALSE;
        EnableWindow(Control(cboSize + mode), own);
        EnableWindow(Control(cboStep + mode), own);
    }
}

bool SplitDialog::CheckEntries() {
    const SplitChoices choices = Choices();
    const std::optional<SplitFault> fault = FindSplitFault(choices, m_source);
    if (!fault) return true;
    SetStatus(SplitFaultText(m_context.services, *fault, choices.bySamples));
    const HWND combo = Control((fault->step ? cboStep : cboSize) + (choices.bySamples ? 1 : 0));
    SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(combo), TRUE);
    return false;
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
        // The files differ from those announced: show them and wait for another press.
        Refresh();
        return false;
    }
    const std::u16string kept = FindUndeletable(m_folder, m_state.files);
    if (kept.empty()) return true;
    SetStatus(SplitResultText(m_context.services, plan, {SplitEnd::DeleteFailed, 0, kept}, m_folder));
    return false;
}

bool SplitDialog::MayReplace(const SplitPlan& plan) {
    const std::int64_t replaced = CountReplaced(plan, m_state);
    if (replaced == 0) return true;
    Refresh();
    return Agrees(FillPlaces(Text(IDS_SPLIT_REPLACE), {Decimal(replaced)}));
}

bool SplitDialog::MayWriteSoMany(const SplitPlan& plan) {
    if (!IsUnusualCount(plan)) return true;
    return Agrees(FillPlaces(Text(IDS_SPLIT_MANY), {Decimal(plan.PieceCount())}));
}

bool SplitDialog::Agrees(const std::u16string& question) const {
    return AskYesNo(m_dialog, question, Text(IDS_SPLIT_TITLE));
}

void SplitDialog::Split() {
    if (!CheckEntries()) return;
    const SplitPlan plan = Plan();
    ReadFolder();
    if (!CheckFolder(plan) || m_destroyed) return;
    KeepSplitSettings(Choices(), m_source, m_context.settings);
    m_context.exporter.SetRecording(m_context.recording);
    SplitResult result;
    const bool stays = m_context.run([&] { result = Run(plan); });
    const std::u16string text = SplitResultText(m_context.services, plan, result, m_folder);
    // In the main window, where it can be read when the dialog is gone.
    if (result.end == SplitEnd::Stopped) m_context.services.SetStatus(text);
    if (m_destroyed) return;
    ReadFolder();
    // What is there now was not announced.
    m_announced.reset();
    SetStatus(text);
    SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(cmdSplit)), TRUE);
    if (!stays || m_closeAsked) EndDialog(m_dialog, IDCANCEL);
}

bool SplitDialog::GoesOn(const SplitPlan& plan, std::int64_t piece, std::int32_t percent) {
    if (m_destroyed) return false;
    if (std::pair(piece, percent) != std::pair(std::exchange(m_piece, piece), std::exchange(m_percent, percent)))
        SetStatus(SplitProgressText(m_context.services, plan, piece, percent));
    // A disabled control gets no keys, and so no Esc.
    if (GetActiveWindow() == m_dialog && GetFocus() != m_dialog) SetFocus(m_dialog);
    m_stopped = m_stopped || !m_context.goOn() || m_destroyed;
    if (m_closeAsked && !m_stopped) m_stopped = m_closeAsked = Agrees(Text(IDS_STOP_AND_CLOSE));
    return !m_stopped;
}

SplitResult SplitDialog::Run(const SplitPlan& plan) {
    // However the run ends, enable the dialog again.
    struct Scope {
        explicit Scope(SplitDialog& split) : dialog(split) {
            dialog.m_running = true;
            dialog.m_stopped = dialog.m_closeAsked = false;
            dialog.m_percent = -1;
            dialog.EnableControls(false);
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
    std::int64_t started = 0;  // pieces
    system.exportPiece = [&](std::int64_t piece, const std::u16string& name) {
        started = piece + 1;
        m_context.exporter.SetProgress([&, piece](std::int32_t done, std::int32_t total) {
            return GoesOn(plan, piece, plan.Percent(piece, done, total));
        });
        return ExportPiece(m_context.exporter, *m_context.block, plan, piece, PathOf(m_folder, name));
    };
    system.runPending = [&] {
        // The next piece is what is being worked on.
        const std::int64_t piece = std::min(started, plan.PieceCount() - 1);
        return GoesOn(plan, piece, plan.Percent(started, 0, 1));
    };
    return RunSplit(plan, system);
}

}  // namespace

void ShowSplitDialog(HWND owner, SplitDialogContext context) {
    SplitDialog(std::move(context)).Show(owner);
}

}  // namespace quillon
