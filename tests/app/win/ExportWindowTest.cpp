#include <gmock/gmock.h>

#include <cstring>
#include <fstream>
#include <thread>

#include "app/win/LongCommand.h"
#include "app/win/MainWindowFixture.h"
#include "base/win/WinHandle.h"
#include "export/QL_Export.h"
#include "export/win/ImageCopy.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/win/ClipboardWriter.h"
#include "norvik/win/SaveDialog.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace ::quillon::testing;

/// Types a name into the system's save dialog and agrees to it, and to replacing a file.
void SaveUnder(HWND dialog, const std::u16string& name, int filter = -1) {
    // The edit control inside the combo box of names.
    SendDlgItemMessageW(dialog, 0x47C, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Wide(name).c_str()));
    if (filter >= 0) {
        const HWND types = GetDlgItem(dialog, 0x470);
        SendMessageW(types, CB_SETCURSEL, static_cast<WPARAM>(filter), 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(0x470, CBN_SELENDOK), reinterpret_cast<LPARAM>(types));
    }
    PostMessageW(dialog, WM_COMMAND, IDOK, 0);
}

class ExportWindowTest : public MainWindowTest {
  protected:
    void SetUp() override { m_source = m_folder.Write(u"saw.bin", SawRecording(250)); }
    std::u16string Path(const std::u16string& name) const { return m_folder.Path() + u"\\" + name; }
    void SaveAs(const std::u16string& name, int filter = -1) {
        CommandWith(mnuSaveAs, [=](HWND dialog) { SaveUnder(dialog, name, filter); });
    }
    /// From now on the save dialog is not shown, and gives this.
    void Choose(const std::u16string& name, std::int32_t type, std::function<void()> meanwhile = {}) {
        m_saveDialog->answer = [=](SaveFileDialog& shown) {
            if (meanwhile) meanwhile();
            return shown.fileName = name, shown.filterIndex = type, true;
        };
    }
    std::u16string m_source;
};

TEST_F(ExportWindowTest, SaveAsWritesEveryTypeTheChoiceOrTheNameTells) {
    Start();
    const auto library = MakeRecordingLibrary(Language::English);
    // The type by the name where that tells one, else by the choice; Cyrillic names are names like others.
    for (const auto& [name, filter, written] :
         {std::tuple<std::u16string, int, std::u16string>{u"one.bin", -1, u"one.bin"},
          {u"\u0437\u0432\u0443\u043a.wav", 0, u"\u0437\u0432\u0443\u043a.wav"},
          {u"three", 2, u"three.edf"}}) {
        SaveAs(Path(name), filter);
        const bool edf = written.ends_with(u".edf");
        EXPECT_EQ(Status(), L"Written: " + Wide(Path(written)) + (edf ? L": 200 of 250 samples (whole records)" : L""));
        std::shared_ptr<Recording> recording;
        ASSERT_TRUE(library->OpenRecording(Path(written), recording)) << Utf8(written);
        EXPECT_EQ(recording->GetBlock(1)->SampleCount(), edf ? 200 : 250);
    }
    SaveAs(Path(u"part.TXT"));  // a name of text is text
    EXPECT_EQ(m_global.settings.text.folder, Path(u""));
}

TEST_F(ExportWindowTest, NothingOfTheUsersIsLost) {
    Start();
    const std::string before = Contents(m_source);
    // The recording itself: the dialog asks, the system refuses, and a box says why.
    std::wstring title;
    std::wstring text;
    std::filesystem::create_directory(m_folder.File(u"folder.bin"));
    for (const std::u16string& name :
         {m_source, Path(std::u16string(300, u'n') + u".bin"), Path(u"none\\x.bin"), Path(u"folder.bin")}) {
        Choose(name, 1);
        CommandWith(mnuSaveAs, [&](HWND box) {
            title = WindowText(box);
            text = WindowText(GetDlgItem(box, 0xFFFF));
            PostMessageW(box, WM_COMMAND, IDOK, 0);
        });
    }
    EXPECT_EQ(title, L"KVExportLib");
    EXPECT_THAT(text, StartsWith(Wide(Path(u"folder.bin")) + L": ")) << "what and where";
    EXPECT_EQ(Contents(m_source), before);
}

TEST_F(ExportWindowTest, TheSystemsDialogTakesAnyFolderAndName) {
    Start();
    const auto dialog = MakeSaveDialog();
    const std::u16string deep = Path(std::u16string(120, u'd')) + u"\\" + std::u16string(120, u'e');
    std::filesystem::create_directories(deep);
    for (const auto& [folder, name] : {std::pair{deep + u"\\" + std::u16string(40, u'f'), std::u16string(u"a")},
                                       {deep, std::u16string(250, u'n')},
                                       {Path(u""), std::u16string(250, u'n')}}) {
        dialog->folder = folder;
        dialog->fileName = name;
        dialog->filter = BuildSaveFilter();
        std::wstring proposed;
        std::vector<std::int32_t> types;
        dialog->filterIndex = 2;
        dialog->onType = [&](std::int32_t type) { types.push_back(type); };
        const DialogAnswer answer([&](HWND shown) {
            proposed = WindowText(GetDlgItem(shown, 0x47C));
            SendDlgItemMessageW(shown, 0x470, CB_SETCURSEL, 4, 0);
            EXPECT_TRUE(WaitUntil([&] { return types.size() == 2; }));
            SaveUnder(shown, Path(u"typed.bin"));
        });
        EXPECT_TRUE(dialog->Show());
        EXPECT_EQ(types, (std::vector{2, 5})) << "the proposed one, then that which the user turned to";
        EXPECT_EQ(dialog->fileName, Path(u"typed.bin"));
        EXPECT_TRUE(Wide(name).starts_with(proposed) && proposed.size() > (name.size() > 1 ? 9U : 0U));
    }
}

TEST_F(ExportWindowTest, FastExportAsksBeforeItReplacesWhatNobodyNamed) {
    Start();
    m_global.settings.text.fastFile = Path(u"out.txt");
    std::ofstream(m_folder.File(u"out1.txt")) << "mine";
    CommandPressing(mnuFastExport, IDNO);
    EXPECT_EQ(Contents(Path(u"out1.txt")), "mine");
    EXPECT_FALSE(Exists(u"out2.txt"));
    CommandPressing(mnuFastExport, IDYES);
    m_global.settings.text.rowSize = 1;
    Command(mnuFastExport);  // not asked again, nor about what it has written itself
    EXPECT_THAT(Contents(Path(u"out1.txt")), StartsWith("250\r\n0.0"));
    // A recording is hardly meant; what is no recording is what the user has named.
    m_global.settings.text.fileType = 1;
    m_global.settings.text.fastFile = m_folder.Write(u"other.bin", SawRecording(20));
    const std::string other = Contents(Path(u"other.bin"));
    CommandPressing(mnuFastExport, IDNO);
    EXPECT_EQ(Contents(Path(u"other.bin")), other);
    CommandPressing(mnuFastExport, IDYES);
    EXPECT_THAT(Contents(Path(u"other.bin")), StartsWith("250\r\n"));
}

TEST_F(ExportWindowTest, ARecordingThatGoesWhileTheUserIsAskedEndsTheCommand) {
    Start();
    std::ofstream(m_folder.File(u"text1.txt")) << "mine";
    Choose(Path(u"text.txt"), 4);
    CommandWith(mnuSaveAs, [&](HWND box) {
        std::filesystem::rename(m_source, m_folder.File(u"gone.bin"));
        // Answered once the window has seen it.
        while (!Caption().empty() && Caption() != L"Quillon") Sleep(1);
        PostMessageW(box, WM_COMMAND, IDYES, 0);
    });
    EXPECT_EQ(Contents(m_folder.File(u"text1.txt")), "mine");
}

TEST_F(ExportWindowTest, CopiedDataAreTheTextOfTheSelection) {
    Start();
    m_global.settings.text.rowHead = 1;
    m_global.settings.text.xColumn = 1;
    m_global.settings.text.xFormat = 1;
    m_global.view->Select(99, 101);
    Command(mnuCopy);
    const std::wstring text = ClipboardText();
    EXPECT_EQ(text, L"N\tSignal 1\tSignal 2\r\n99\t98.0\t5.0\r\n100\t99.0\t5.0\r\n101\t0.0\t5.0\r\n");
    EXPECT_EQ(Status(), L"Copied");
    // Another program holds the clipboard for too long: told, and its content stays.
    ASSERT_TRUE(OpenClipboard(m_form->Window()));
    bool done = true;
    std::thread other([&] { done = MakeClipboardText()->Close(); });
    other.join();
    CloseClipboard();
    EXPECT_FALSE(done);
    EXPECT_EQ(ClipboardText(), text);
}

TEST_F(ExportWindowTest, EscAndCloseStopAndLeaveWhatWasThere) {
    Start();
    const auto write = [&](const std::u16string& name) {
        Choose(Path(name), 4);
        SendMessageW(m_form->Window(), WM_COMMAND, mnuSaveAs, 0);
    };
    const auto esc = [&] { PostMessageW(Control(pbGraph), WM_KEYDOWN, VK_ESCAPE, 0); };
    std::ofstream(m_folder.File(u"old.bin")) << "old";
    m_global.settings.text.fileType = 1;
    Command(mnuCopy);
    const std::wstring copied = ClipboardText();
    m_global.view->Select(5, 9);
    const auto files = [&] {
        return std::distance(std::filesystem::directory_iterator(m_folder.Path()),
                             std::filesystem::directory_iterator());
    };
    const auto before = files();
    esc();
    write(u"old.bin");
    EXPECT_EQ(Status(), L"Stopped, not written: " + Wide(Path(u"old.bin")));
    EXPECT_EQ(Contents(Path(u"old.bin")), "old");
    esc();
    Command(mnuCopy);
    EXPECT_EQ(Status(), L"Stopped, nothing copied");
    EXPECT_EQ(ClipboardText(), copied);
    EXPECT_EQ(files(), before);
    Pump();
    EXPECT_TRUE(m_global.view->Selected().active) << "Esc does nothing else";

    PostMessageW(m_form->Window(), WM_QUERYENDSESSION, 0, 0);
    write(u"old.bin");
    EXPECT_EQ(Contents(Path(u"old.bin")), "old") << "nor does the end of the session leave a part";
    EXPECT_EQ(files(), before);

    // What is typed while no message is handled is dropped, too.
    LongCommand frozen;
    frozen.SetWindow(m_form->Window());
    frozen.Run([&] { frozen.RunPart([&] { esc(); }); });
    Pump();
    EXPECT_TRUE(m_global.view->Selected().active);

    for (const WORD answer : {WORD{IDNO}, WORD{IDYES}}) {
        PostMessageW(m_form->Window(), WM_CLOSE, 0, 0);
        const DialogAnswer box([answer](HWND dialog) { PostMessageW(dialog, WM_COMMAND, answer, 0); });
        write(answer == IDNO ? u"new.bin" : u"old.bin");
        Pump();
        EXPECT_EQ(m_form->Window() == nullptr, answer == IDYES);
    }
    EXPECT_TRUE(Exists(u"new.bin"));
    EXPECT_EQ(Contents(Path(u"old.bin")), "old");
    EXPECT_EQ(files(), before + 1);
}

TEST_F(ExportWindowTest, MessagesRunMeanwhileAndStartNothing) {
    Start();
    int seen = 0;
    Choose(Path(u"out.wav"), 2, [&] {
        PostMessageW(m_form->Window(), WM_COMMAND, mnuExit, 0);
        PostMessageW(Control(pbGraph), WM_KEYDOWN, VK_END, 0);
        PostMessageW(Control(pbGraph), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(50, 50));
        InvalidateRect(Control(pbGraph), nullptr, FALSE);
        seen = 1;
    });
    SendMessageW(m_form->Window(), WM_COMMAND, mnuSaveAs, 0);
    ASSERT_EQ(seen, 1);
    ASSERT_NE(m_form->Window(), nullptr);
    EXPECT_EQ(std::filesystem::file_size(Path(u"out.wav")), 44U + 1000U);
    EXPECT_FALSE(GetUpdateRect(Control(pbGraph), nullptr, FALSE)) << "it was painted in between";
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(m_global.view->Axis().FirstColumn(), 0);
    Pump();
    EXPECT_NE(m_form->Window(), nullptr);
}

/// The clipboard's device-independent pixels as the picture box tests have theirs.
Pixels CopiedImage() {
    const std::string bytes = ClipboardBytes(CF_DIB);
    BITMAPINFOHEADER header{};
    if (bytes.size() < sizeof header) return {};
    std::memcpy(&header, bytes.data(), sizeof header);
    Pixels image{static_cast<int>(header.biWidth), static_cast<int>(header.biHeight), {}};
    const int row = (image.width * 3 + 3) / 4 * 4;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, bytes.data() + header.biSize + (image.height - 1 - y) * row + 3 * x, 3);
            image.rgb.push_back(pixel);
        }
    }
    return image;
}

/// Pixels of a part of the picture that differ from those of a window, as `expected` makes them.
int Differences(const Pixels& image, int left, int top, const Pixels& part,
                const std::function<bool(std::uint32_t pixel, std::uint32_t shown)>& same) {
    int count = 0;
    for (int y = 0; y < part.height; ++y) {
        for (int x = 0; x < part.width; ++x) {
            if (!same(image.At(left + x, top + y), part.At(x, y))) ++count;
        }
    }
    return count;
}

TEST_F(ExportWindowTest, AnImageFileHoldsWhatTheClipboardGets) {
    Start();
    const ImageWindows windows{Control(pbScaleY), Control(pbGraph), nullptr, nullptr, Control(pbScaleX)};
    const auto font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    ASSERT_TRUE(ImageCopy(windows, font, u"caption", kClipboardTarget));
    ASSERT_TRUE(ImageCopy(windows, font, u"caption", Path(u"view.bmp"), MakeOutputFile));
    const std::string bytes = ClipboardBytes(CF_DIB);
    const std::string file = Contents(Path(u"view.bmp"));
    const FileBytes header = FileBytes().Text("BM").U32(static_cast<std::uint32_t>(file.size())).U32(0).U32(54);
    EXPECT_EQ(file.substr(0, 14), header.Get());
    EXPECT_EQ(file.substr(14), bytes.substr(0, file.size() - 14));
    EXPECT_FALSE(ImageCopy(windows, font, u"caption", Path(u"none\\view.bmp"), MakeOutputFile));
}

TEST_F(ExportWindowTest, TheCopiedImageHoldsTheView) {
    Start();
    const auto equal = [](std::uint32_t pixel, std::uint32_t shown) { return pixel == shown; };
    for (const bool spectrogram : {false, true}) {
        if (spectrogram) Command(mnuSpectrogram);
        Command(mnuCopy + 1);
        EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
        const Pixels image = CopiedImage();
        const Pixels graph = Capture(pbGraph);
        const Pixels scaleY = Capture(pbScaleY);
        const Pixels scaleX = Capture(pbScaleX);
        const Pixels fft = spectrogram ? Capture(pbFFT) : Pixels{};
        ASSERT_EQ(image.width, scaleY.width + graph.width);
        ASSERT_EQ(image.height, 20 + graph.height + fft.height + scaleX.height);
        EXPECT_EQ(Differences(image, scaleY.width, 20, graph, equal), 0);
        EXPECT_EQ(Differences(image, scaleY.width, 20 + graph.height, fft, equal), 0);
        EXPECT_EQ(Differences(image, scaleY.width, 20 + graph.height + fft.height, scaleX, equal), 0);
        const std::uint32_t background = scaleY.At(0, 0);
        EXPECT_EQ(Differences(image, 0, 20, scaleY,
                              [&](std::uint32_t pixel, std::uint32_t shown) {
                                  return pixel == (shown == background ? 0xFFFFFFU : 0U);
                              }),
                  0);
        if (!spectrogram) continue;
        Pixels scaleF = Capture(pbScaleF);
        EXPECT_EQ(Differences(image, 0, 20 + graph.height, scaleF,
                              [](std::uint32_t pixel, std::uint32_t shown) { return pixel == (shown ^ 0xFFFFFFU); }),
                  0);
    }
    // Titles of lanes keep their colours.
    Command(mnuLanes);
    Command(mnuCopy + 1);
    EXPECT_EQ(Differences(CopiedImage(), 0, 20, Capture(pbScaleY), equal), 0);
    EXPECT_EQ(Differences(CopiedImage(), Capture(pbScaleY).width, 20, Capture(pbGraph), equal), 0);
}

}  // namespace
}  // namespace quillon
