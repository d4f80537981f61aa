#include "app/ExportCommands.h"

#include <gmock/gmock.h>

#include <map>

#include "app/StringIds.h"
#include "base/Text.h"
#include "data/CoreTexts.h"
#include "export/QL_Export.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

class ExportCommandsTest : public ViewFixture {
  protected:
    struct Services : FakeServices {
        bool Ask(const std::u16string& text) override { return FakeServices::Ask(text), yes; }
        std::u16string Text(int id) const override {
            const auto found = texts.find(id);
            return found == texts.end() ? FakeServices::Text(id) : found->second;
        }
        bool yes = false;
        std::map<int, std::u16string> texts;
    };
    struct Sink : TextSink {
        explicit Sink(std::string& target) : written(target) {}
        void Write(std::string_view text) override { written += text; }
        bool Close() override { return finished = true; }
        ~Sink() override {
            if (!finished) written = "unfinished";
        }
        bool finished = false;
        std::string& written;
    };

    ExportCommandsTest() {
        Load(Sevens(10, 100));
        m_commands.onDialog = [] {};
        m_commands.onWork = [](const std::function<void()>& work) { work(); };
        m_commands.onPrepare = [] { return true; };
        m_commands.onPending = [] { return true; };
        m_commands.isGone = [] { return false; };
    }
    Services m_told;
    TextExportSettings m_settings{};
    FormatOptions m_format;
    KVExport m_exporter{m_told, {MakeOutputFile}};
    FakeSaveDialog m_dialog;
    std::map<std::u16string, std::string> m_texts;
    TextSinkFactory m_open = [this](const std::u16string& target, std::u16string&) {
        return std::make_unique<Sink>(m_texts[target]);
    };
    TemporaryFolder m_folder;
    ExportCommands m_commands{
        {m_document, m_view, m_settings, m_format, m_library, m_exporter, m_dialog, m_open, Language::English, m_told}};
};

TEST_F(ExportCommandsTest, SaveAsProposesTheBareNameBesideTheRecordingOrWhereTheLastWent) {
    m_dialog.answer = [](FakeSaveDialog&) { return false; };
    m_settings.folder = m_folder.Path() + u"/gone";
    for (const auto& [file, name] :
         {std::pair{u"C:\\d\\x.v2.WAV.edf.bin", u"x.v2"}, {u"C:\\d\\.bin.bin", u".bin"}, {u"C:\\d\\plain", u"plain"}}) {
        m_library.files[file] = m_library.files[u"C:\\a.fake"];
        m_library.files[file]->name = file;
        m_document.OpenFile(file, {});
        m_commands.SaveAs();
        EXPECT_EQ(std::pair(m_dialog.folder, m_dialog.fileName),
                  std::pair(std::u16string(u"C:\\d\\"), std::u16string(name)));
    }
    m_settings.folder = m_folder.Path();
    m_commands.SaveAs();
    EXPECT_EQ(m_dialog.folder, m_folder.Path());
}

TEST_F(ExportCommandsTest, OneQuestionNamesTheFilesThatWouldBeLostAndNoLosesNone) {
    // A file per channel: the dialog has asked about none of them.
    m_dialog.answer = [&](FakeSaveDialog& dialog) { return dialog.fileName = m_folder.Path() + u"/t.txt", true; };
    const std::vector<std::u16string> files =
        TextExportFiles(m_folder.Path() + u"/t.txt", *m_document.Block().block, m_settings, m_document.Slots());
    ASSERT_EQ(files.size(), 10U);
    for (const std::u16string& file : files) static_cast<void>(std::ofstream(std::filesystem::path(file)));
    m_commands.SaveAs();
    ASSERT_EQ(m_told.messages.size(), 1U);
    EXPECT_EQ(std::count(m_told.messages[0].begin(), m_told.messages[0].end(), u'\n'), 1 + 8 + 1);
    EXPECT_TRUE(m_told.messages[0].ends_with(u"... (10)"));
    EXPECT_TRUE(m_texts.empty());
    m_told.yes = true;
    m_view.Select(11, 20);
    m_commands.SaveAs();
    EXPECT_EQ(m_texts.size(), 10U);
    EXPECT_EQ(std::count(m_texts[files[3]].begin(), m_texts[files[3]].end(), '\n'), 10) << "of the selection";
    EXPECT_TRUE(m_told.status.starts_with(m_told.Text(IDS_WRITTEN) + u": " + files[0] + u" ... "));
}

TEST_F(ExportCommandsTest, EdfPlusHoldsTheShownChannelsOfTheSelectionAsStoredOrAsShown) {
    m_told.texts = {{IDS_WRITTEN, u"written"}, {IDS_NO_SHOWN_CHANNEL, u"none"}};
    const std::u16string name = m_folder.Path() + u"/a.edf";
    std::vector<std::u16string> offered;
    m_dialog.answer = [&](FakeSaveDialog& dialog) {
        EXPECT_TRUE(dialog.filter.ends_with(u"Text files (*.txt)|*.txt|EDF+ with marks (*.edf)|*.edf"));
        dialog.onType(dialog.filterIndex);
        offered.push_back(m_told.status);
        dialog.onType(5);
        offered.push_back(m_told.status);
        return dialog.fileName = name, dialog.filterIndex = 5, true;
    };
    const auto library = MakeRecordingLibrary(Language::English);
    const auto save = [&] {
        m_commands.SaveAs();
        std::shared_ptr<Recording> recording;
        EXPECT_TRUE(library->OpenRecording(name, recording)) << Utf8(m_told.status);
        return recording->GetBlock(1);
    };
    Load(Sevens(10, 1000));
    m_document.Show(3, false);
    m_document.Show(9, false);
    m_view.Select(101, 350);
    ShownSettings settings;
    settings.filters[u"V"] = {.highPass = 1.0};
    m_document.ShowAs(settings);
    for (const bool asShown : {false, true}) {
        m_settings.asShown = asShown ? 1 : 0;
        const auto block = save();
        EXPECT_EQ(m_told.status, u"written: " + name + u": 2.5 s from 00:00:01, 8 of 10 channels, EDF+" +
                                     (asShown ? u", as shown" : u", as stored"));
        ASSERT_EQ(std::pair(block->ChannelCount(), block->SampleCount()), std::pair(std::int16_t{8}, 250));
        block->Prepare();
        std::int16_t code = -1;
        block->ReadCodes(4, 0, 1, &code);
        EXPECT_EQ(code, asShown ? 0 : 7) << "a high pass takes a constant out";
        EXPECT_EQ(Contents(name).find("HP:1Hz") != std::string::npos, asShown);
    }
    // While the dialog is open with this type; the first time it opened with another.
    const std::u16string line = u"2.5 s from 00:00:01, 8 of 10 channels, EDF+";
    const std::u16string shown = line + u", as shown";
    EXPECT_EQ(offered, (std::vector<std::u16string>{u"", line + u", as stored", shown, shown}));
    m_document.ShowAs({});
    save();
    EXPECT_EQ(m_told.status, u"written: " + name + u": " + line) << "there is no difference";
    for (const std::int32_t last : {5, 1}) {
        m_dialog.answer = [=](FakeSaveDialog& dialog) { return dialog.onType(5), dialog.onType(last), false; };
        m_commands.SaveAs();
        EXPECT_EQ(m_told.status, u"") << "nothing is going to be written as that";
    }
    m_dialog.answer = [&](FakeSaveDialog& dialog) { return dialog.fileName = name, true; };
    m_document.ShowAll(false);
    m_commands.SaveAs();
    EXPECT_EQ(m_told.status, u"none");
}

TEST_F(ExportCommandsTest, WhatIsStoppedIsTold) {
    m_told.texts = {{IDS_STOPPED_FILE, u"stopped"}, {IDS_STOPPED_COPY, u"no copy"}, {IDS_STOPPED_FILES, u"%1 of %2"}};
    const std::u16string base = m_folder.Path() + u"/t";
    const auto stopAfter = [&](int calls) { m_commands.onPending = [calls]() mutable { return --calls > 0; }; };
    std::u16string extension = u".bin";
    m_dialog.answer = [&](FakeSaveDialog& dialog) { return dialog.fileName = base + extension, true; };
    for (const char16_t* one : {u".bin", u".wav", u".edf"}) {
        extension = one;
        stopAfter(1);
        m_commands.SaveAs();
        EXPECT_EQ(m_told.status, u"stopped: " + base + extension);
    }
    EXPECT_TRUE(std::filesystem::is_empty(std::filesystem::path(m_folder.Path())));
    extension = u".txt";
    const std::u16string expected[] = {u"0 of 10", u"1 of 10: " + base + u"1.txt",
                                       u"2 of 10: " + base + u"1.txt ... t2.txt"};
    for (int files = 0; files < 3; ++files) {
        stopAfter(files + 1);
        m_commands.SaveAs();
        EXPECT_EQ(m_told.status, expected[files]);
    }
    EXPECT_EQ(m_texts[base + u"3.txt"], "unfinished");
    EXPECT_FALSE(m_texts.contains(base + u"4.txt"));
    m_settings.fileType = 1;
    stopAfter(1);
    m_commands.SaveAs();
    EXPECT_EQ(m_told.status, u"stopped: " + base + u".txt");
    stopAfter(1);
    m_commands.CopyData();
    EXPECT_EQ(m_told.status, u"no copy");
    EXPECT_TRUE(m_told.messages.empty());
}

TEST_F(ExportCommandsTest, TextHoldsWhatIsShownOnlyWhereItIsWantedAndSaysSo) {
    const auto copied = [&] {
        m_texts.clear();
        m_commands.CopyData();
        return m_texts[std::u16string(kClipboardTarget)];
    };
    const std::string stored = copied();
    m_settings.asShown = 1;
    EXPECT_TRUE(copied() == stored) << "nothing is shown otherwise";
    ShownSettings settings;
    settings.filters[u"V"] = {.highPass = 1.0};
    settings.montage = Montage{u"Own", u"a-b"};
    m_document.ShowAs(settings);
    const std::string shown = copied();
    EXPECT_TRUE(shown.starts_with("> 1 Hz\r\n0.00\t0.00\t")) << shown.substr(0, 40) << ": sevens are a constant";
    m_settings.asShown = 0;
    EXPECT_TRUE(copied() == stored);
}

/// Says that it is large.
struct LargeBlock : FakeBlock {
    std::int32_t SampleCount() const override { return 40'000'000; }
};

TEST_F(ExportCommandsTest, ATextTooLargeForTheClipboardIsAskedAbout) {
    auto block = std::make_shared<LargeBlock>();
    block->samples.assign(1, std::vector<std::int16_t>(100, 7));
    Load(block);
    m_commands.CopyData();
    ASSERT_EQ(m_told.messages.size(), 1U);
    EXPECT_TRUE(m_told.messages[0].ends_with(u"640 MB"));
    EXPECT_TRUE(m_texts.empty());
    m_view.Select(1, 100);
    m_commands.CopyData();
    EXPECT_EQ(m_told.messages.size(), 1U) << "the selection is small";
    EXPECT_EQ(m_texts.size(), 1U);
}

}  // namespace
}  // namespace quillon
