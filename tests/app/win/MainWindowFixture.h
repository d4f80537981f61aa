#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "app/Commands.h"
#include "app/ControlIds.h"
#include "app/StatusPanels.h"
#include "app/win/QL_Main.h"
#include "app/win/frmQLMain.h"
#include "norvik/TemporaryFolder.h"
#include "support/FakeRecording.h"

namespace quillon::testing {

/// Waits in a thread that handles no messages, as one that acts as the user; false after some seconds.
[[nodiscard]] bool WaitUntil(const std::function<bool()>& condition);

/// Handles messages until the condition holds; false when it does not within a minute.
[[nodiscard]] bool PumpUntil(const std::function<bool()>& condition);

/// All windows inside one.
[[nodiscard]] std::vector<HWND> Descendants(HWND window);
/// The window with that number inside a dialog, on a page of it or directly; null: none.
[[nodiscard]] HWND FindChild(HWND dialog, int id);
[[nodiscard]] std::wstring ClassOf(HWND window);
/// The focus of the window's thread.
[[nodiscard]] HWND FocusOf(HWND window);
/// Takes a line of a combo box as the mouse does.
void ChooseLine(HWND combo, int line);

/// Every text of the dialog fits its control, and every line of a list the list.
void ExpectRoomForTexts(HWND dialog);

/// Every control of the window has a name for programs that read the screen aloud, and Tab goes from one to the next as
/// the eye does: to what is further down or further right.
void ExpectNamesAndOrder(HWND window);

/// What the clipboard holds in a format; empty: nothing.
[[nodiscard]] std::string ClipboardBytes(UINT format);
/// What it holds as text, up to its terminator.
[[nodiscard]] std::wstring ClipboardText();

/// A picture box's pixels as 0xRRGGBB.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> rgb;
    [[nodiscard]] std::uint32_t At(int x, int y) const { return rgb.at(static_cast<std::size_t>(y * width + x)); }
    [[nodiscard]] int Count(std::uint32_t color) const;
    friend bool operator==(const Pixels&, const Pixels&) = default;
};
[[nodiscard]] Pixels PixelsOf(HWND picture);

/// A ".bin" recording with scale 1 for every channel; one inner vector per frame.
[[nodiscard]] FileBytes BinRecording(float rate, const std::vector<std::vector<std::int16_t>>& frames);
/// Frames of noise, every channel 50 above the one before.
[[nodiscard]] std::vector<std::vector<std::int16_t>> Noise(int frames, int channels);
/// Two channels, a saw of 0 to 99 and a constant, 100 samples a second.
[[nodiscard]] FileBytes SawRecording(int frames = 2000);

/// The dialog of this process that is seen; null: none.
[[nodiscard]] HWND OpenDialog();

/// Answers the next dialog of this process with that title from another thread.
class DialogAnswer {
  public:
    DialogAnswer(std::function<void(HWND)> answer)
        : m_thread([answer = std::move(answer)] {
              const ULONGLONG end = GetTickCount64() + 10000;
              while (GetTickCount64() < end) {
                  if (const HWND dialog = OpenDialog()) return answer(dialog);
                  Sleep(1);
              }
          }) {}
    ~DialogAnswer() { m_thread.join(); }
    DialogAnswer(const DialogAnswer&) = delete;
    DialogAnswer& operator=(const DialogAnswer&) = delete;

  private:
    std::thread m_thread;
};

/// Closes every dialog of this process as soon as it appears, and every menu, and keeps the dialogs' titles.
class DialogCloser {
  public:
    ~DialogCloser() {
        m_ends = true;
        m_thread.join();
    }
    /// Whether menus stay open.
    void LeaveMenus(bool leave) { m_leavesMenus = leave; }
    std::wstring Titles() {
        const std::scoped_lock lock(m_lock);
        return std::exchange(m_titles, {});
    }

  private:
    void Run() {
        for (HWND last = nullptr; !m_ends; Sleep(1)) {
            // Menus too, which hold the window's thread as long as they are open.
            const HWND menu = m_leavesMenus ? nullptr : FindWindowW(L"#32768", nullptr);
            if (menu != nullptr && IsWindowVisible(menu)) {
                PostMessageW(menu, WM_KEYDOWN, VK_ESCAPE, 0);
                Sleep(20);
            }
            const HWND dialog = OpenDialog();
            const HWND before = std::exchange(last, dialog);
            if (dialog == nullptr) continue;
            if (dialog != before) {
                const std::scoped_lock lock(m_lock);
                m_titles += WindowText(dialog) + L';';
            }
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            PostMessageW(dialog, WM_COMMAND, IDNO, 0);
            Sleep(20);
        }
    }
    std::mutex m_lock;
    std::wstring m_titles;
    std::atomic<bool> m_ends = false;
    std::atomic<bool> m_leavesMenus = false;
    std::thread m_thread{[this] { Run(); }};
};

/// The save dialog of the system, or an answer that a test gives in its place.
class SaveDialogSwitch final : public SaveFileDialog {
  public:
    explicit SaveDialogSwitch(std::unique_ptr<SaveFileDialog> real) : m_real(std::move(real)) {}
    bool Show() override {
        if (answer) return answer(*this);
        SaveFileDialog& fields = *this;
        *m_real = fields;
        const bool chosen = m_real->Show();
        fields = *m_real;
        return chosen;
    }
    std::function<bool(SaveFileDialog&)> answer;

  private:
    std::unique_ptr<SaveFileDialog> m_real;
};

/// The user's documents in another folder, as long as this lasts.
class DocumentsScope {
  public:
    explicit DocumentsScope(const std::wstring& folder);
    ~DocumentsScope();
    DocumentsScope(const DocumentsScope&) = delete;
    DocumentsScope& operator=(const DocumentsScope&) = delete;

  private:
    std::wstring m_before;
};

/// The real main window over a folder of its own, driven by messages. Nothing waits: the window's thread is the test's.
class MainWindowTest : public ::testing::Test {
  protected:
    /// Shows the window; the first file of the folder opens.
    void Start();
    void Start(const std::wstring& folder);
    /// Shows it over a sound device of the test's.
    void StartWith(DeviceState& device);
    void Show() const;
    /// What the message loop does after the first waveform.
    void CreateControls() const;
    /// The window as it is before it is shown, with the folder of the settings and a path to begin with.
    void Create(const std::wstring& folder, const std::wstring& path = {});
    void TearDown() override;

    /// Handles every message that is waiting.
    void Pump() const;
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(m_form->Window(), id); }
    /// Its place on the screen.
    [[nodiscard]] RECT Place(int id) const;
    void Command(int id) const;
    /// A command that opens a dialog, and what its user does there.
    void CommandWith(int id, std::function<void(HWND dialog)> acts) const;
    /// The same for a button that is pressed.
    void CommandPressing(int id, WORD button) const;
    /// Presses and releases a key with the focus on the graph.
    void Key(WPARAM key) const;
    /// Moves the real pointer to a place of a control; away from the window where that is negative.
    void Point(int id, int x, int y) const;
    /// A click of the left button at a place of a control.
    void Click(int id, int x, int y) const;
    /// A click on a line of a list box.
    void ClickLine(int id, int line) const;
    /// A click on the check box of a channel.
    void ClickCheckBox(int item) const;
    [[nodiscard]] std::vector<std::wstring> Lines(int id) const;
    [[nodiscard]] int ItemCount() const { return ListView_GetItemCount(Control(lvCh)); }
    [[nodiscard]] std::wstring Status(StatusPanel panel = StatusPanel::Status) const;
    [[nodiscard]] std::wstring Caption() const { return WindowText(m_form->Window()); }
    [[nodiscard]] Pixels Capture(int id) const;

    /// Handles messages until the condition holds; false after some seconds.
    [[nodiscard]] bool WaitFor(const std::function<bool()>& condition) const {
        const ULONGLONG end = GetTickCount64() + 8000;
        while (!condition()) {
            if (GetTickCount64() > end) return false;
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            Pump();
        }
        return true;
    }

    [[nodiscard]] bool Exists(const std::u16string& name) const { return std::filesystem::exists(m_folder.File(name)); }

    /// As if the block had held these marks.
    void SetMarks(std::vector<BlockMark> marks) {
        const_cast<ViewBlock&>(m_global.document->Block()).marks = std::move(marks);
    }

    /// Moves the view to a column.
    void ScrollTo(std::int32_t column);

    SaveDialogSwitch* m_saveDialog = nullptr;  ///< from Create on
    Language m_language = Language::English;
    std::function<void()> m_shutdown;
    TemporaryFolder m_folder;
    QL_Global m_global;
    std::unique_ptr<WinServices> m_services;
    std::unique_ptr<frmQLMain> m_form;
};

}  // namespace quillon::testing
