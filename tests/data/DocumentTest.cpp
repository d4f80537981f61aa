#include "data/Document.h"

#include <gmock/gmock.h>

#include "base/Text.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace ::quillon::testing;
using namespace std::string_literals;

class DocumentTest : public ::testing::Test {
  protected:
    static std::shared_ptr<FakeBlock> Block(const std::u16string& title) {
        auto block = std::make_shared<FakeBlock>();
        block->title = title;
        block->samples = {{1, 2, 3}, {4, 5, 6}};
        block->marks = {{2, u"blink"}};
        return block;
    }
    /// As a click on the file does.
    void Open(const std::u16string& name, std::vector<std::shared_ptr<FakeBlock>> blocks) {
        const std::u16string path = u"C:\\data\\" + name;
        auto recording = std::make_shared<FakeRecording>();
        recording->name = path;
        recording->blocks = std::move(blocks);
        m_library.files[path] = recording->blocks.empty() ? nullptr : recording;
        if (!m_document.IsOpen(path, m_stamps[path])) m_document.OpenFile(path, m_stamps[path]);
    }
    FileChange ChangeOf(const FileStamp& stamp, bool asked) { return m_document.ChangeOf({stamp, {}}, asked); }
    bool Unchanged(const FileStamp& stamp, bool asked) { return ChangeOf(stamp, asked) == FileChange::None; }
    [[nodiscard]] std::string Shown() const {
        std::string shown;
        for (std::size_t slot = 0; slot < 4; ++slot) shown += m_document.Slots()[slot].shown ? '1' : '0';
        return shown;
    }

    FakeLibrary m_library;
    FakeServices m_services;
    std::map<std::u16string, FileStamp> m_stamps;
    Document m_document{m_library, m_services};
    const ViewFile& m_file = m_document.File();
    const ViewBlock& m_block = m_document.Block();
};

TEST_F(DocumentTest, OpeningLoadsTheFirstBlockAndARefusedFileLeavesNone) {
    const auto first = Block(u"first");
    const auto second = Block(u"");
    Open(u"one.fake", {first, second});
    EXPECT_THAT(m_document.BlockTitles(), ElementsAre(u"first\t1", u"12:00:00\t2"));
    EXPECT_THAT(first->calls, ::testing::Contains("Prepare"));
    EXPECT_THAT(second->calls, ::testing::Not(::testing::Contains("Prepare"))) << "the list reads no samples";
    EXPECT_EQ(m_file.currentBlockIndex, 0);
    Open(u"Запись.fake", {Block(u"only")});
    EXPECT_THAT(m_document.BlockTitles(), ElementsAre(u"only\t1"));
    EXPECT_EQ(m_library.closed, 1);
    EXPECT_TRUE(m_document.IsOpen(u"c:\\DATA\\ЗАПИСЬ.FAKE", {}));
    Open(u"bad.fake", {});
    EXPECT_EQ(m_file.refusedName, u"bad.fake");
    EXPECT_EQ(m_file.refusal, u"no such thing");
    EXPECT_THAT(m_document.BlockTitles(), IsEmpty());
    EXPECT_EQ(m_file.currentBlockIndex, -1);
    EXPECT_EQ(m_block.block, nullptr);
    Open(u"one.fake", {Block(u"first")});
    EXPECT_EQ(m_file.refusal, u"") << "the reason of the earlier refusal is gone";
}

TEST_F(DocumentTest, ShownChannelsPersistAcrossBlocksAndASoloDoesNot) {
    const auto wide = [](std::vector<std::int16_t> numbers) {
        auto block = std::make_shared<FakeBlock>();
        block->numbers = std::move(numbers);
        block->samples.assign(block->numbers.size(), {1, 2, 3});
        return block;
    };
    Open(u"a.fake", {wide({0, 1, 2, 40}), wide({3, 1, 1})});
    m_document.Show(2, false);
    m_document.Show(4, true);
    EXPECT_FALSE(m_document.IsShown(4)) << "there is no slot for number 40";
    EXPECT_EQ(Shown(), "1011");
    m_document.Solo(std::int16_t{1});
    EXPECT_EQ(Shown(), "1001");
    m_document.Solo(std::nullopt);
    EXPECT_EQ(Shown(), "1011");
    m_document.Solo(std::int16_t{3});
    m_document.Reload({});
    EXPECT_TRUE(m_document.IsSolo());
    EXPECT_EQ(Shown(), "0011");
    m_document.LoadBlock(1);
    EXPECT_EQ(Shown(), "1011") << "another block ends it";
    m_document.InvertShown();
    EXPECT_EQ(Shown(), "1110") << "two channels share slot 1";
    m_document.ShowAll(false);
    EXPECT_EQ(Shown(), "1010") << "slots of other blocks stay";
    // What is chosen during a solo ends it.
    m_document.LoadBlock(0);
    m_document.Solo(std::int16_t{1});
    m_document.Show(2, true);
    EXPECT_FALSE(m_document.IsSolo());
    m_document.CloseCurrentFile();
    EXPECT_EQ(Shown(), "1100");
}

TEST_F(DocumentTest, LetterCaseTellsFilesApartWhereTheFolderDoes) {
    FileStamp& upper = m_stamps[u"C:\\data\\REC.fake"];
    m_stamps[u"C:\\data\\rec.fake"] = upper = {true, 1, 7, 100, 5};
    Open(u"rec.fake", {Block(u"lower")});
    Open(u"REC.fake", {Block(u"upper")});
    EXPECT_EQ(m_library.opened, 1) << "two names of one file";
    upper.file = 8;
    Open(u"REC.fake", {Block(u"upper")});
    EXPECT_EQ(m_library.opened, 2);
    upper.size = 200;
    Open(u"REC.fake", {Block(u"upper")});
    EXPECT_EQ(m_library.opened, 2) << "the name is that of the open file, whatever became of it";
}

TEST_F(DocumentTest, AChangedFileIsLoadedAgainOnceItIsQuiet) {
    FileStamp& stamp = m_stamps[u"C:\\data\\a.fake"];
    EXPECT_TRUE(Unchanged(stamp, true));
    stamp = {true, 1, 7, 100, 5};
    Open(u"a.fake", {Block(u"1"), Block(u"2"), Block(u"3")});
    m_document.LoadBlock(2);
    m_document.ChooseChannel(2);
    EXPECT_TRUE(Unchanged(stamp, true));
    stamp.size = 50;
    EXPECT_TRUE(Unchanged(stamp, false)) << "it may still be written to ...";
    stamp.size = 80;
    EXPECT_TRUE(Unchanged(stamp, false)) << "... and was";
    EXPECT_TRUE(m_document.ChangePending());
    EXPECT_FALSE(Unchanged(stamp, true));
    EXPECT_FALSE(Unchanged(stamp, false));
    EXPECT_TRUE(m_document.Reload({stamp, {}}));
    EXPECT_EQ(m_file.currentBlockIndex, 2);
    EXPECT_EQ(m_document.CurrentChannel(), 2);
    EXPECT_EQ(m_library.closed, 1);
    EXPECT_TRUE(Unchanged(stamp, true));
    // Replaced by one of the same size and time, with fewer blocks.
    stamp.file = 8;
    m_library.files[u"C:\\data\\a.fake"]->blocks.resize(2);
    EXPECT_FALSE(Unchanged(stamp, true));
    EXPECT_TRUE(m_document.Reload({stamp, {}}));
    EXPECT_EQ(m_file.currentBlockIndex, 1);
    // What can no longer be read leaves the open one as it is, and is not tried again and again.
    m_library.files[u"C:\\data\\a.fake"] = nullptr;
    stamp.modified = 6;
    EXPECT_FALSE(m_document.Reload({stamp, {}}));
    EXPECT_EQ(m_file.currentBlockIndex, 1);
    EXPECT_TRUE(Unchanged(stamp, true));
    // One that only gets longer has grown at once, unless something is still being read.
    stamp.size += 10;
    EXPECT_EQ(ChangeOf(stamp, false), FileChange::Grown);
    EXPECT_EQ(ChangeOf(stamp, true), FileChange::Other);
    stamp.file = 9;
    EXPECT_TRUE(Unchanged(stamp, false)) << "another file of that name";
    EXPECT_EQ(ChangeOf(stamp, false), FileChange::Other);
    // One that was refused is looked at too.
    Open(u"b.fake", {});
    EXPECT_FALSE(Unchanged(stamp, true));
    EXPECT_EQ(m_document.LastPath(), u"C:\\data\\b.fake");
}

TEST_F(DocumentTest, AFileBesideTheRecordingGrowsItToo) {
    Open(u"a.vhdr", {Block(u"1")});
    auto& others = m_library.files[u"C:\\data\\a.vhdr"]->others;
    others = {{u"C:\\data\\a.eeg", 100}, {u"C:\\data\\a.vmrk", 20}};
    RecordingStamp now{{true, 1, 7, 50, 5}, {{true, 1, 8, 100, 5}, {true, 1, 9, 20, 5}}};
    m_document.Reload(now);
    EXPECT_EQ(m_document.ChangeOf(now, false), FileChange::None);
    now.others[0].size = 120;
    now.others[0].modified = 6;
    EXPECT_EQ(m_document.ChangeOf(now, false), FileChange::Grown);
    // What was written between opening it and the first look is not missed.
    m_document.Reload(now);
    EXPECT_EQ(m_document.ChangeOf(now, false), FileChange::Grown);
    others[0].size = 120;
    m_document.Reload(now);
    EXPECT_EQ(m_document.ChangeOf(now, false), FileChange::None);
    RecordingStamp cut = now;
    cut.others[0].size = 130;
    cut.others[1].size = 19;
    EXPECT_EQ(m_document.ChangeOf(cut, false), FileChange::None) << "it may still be written to";
    EXPECT_EQ(m_document.ChangeOf(cut, false), FileChange::Other);
    cut.others[1] = {};
    EXPECT_EQ(m_document.ChangeOf(cut, true), FileChange::None) << "gone for now";
    now.others[1].file = 10;
    EXPECT_EQ(m_document.ChangeOf(now, true), FileChange::Other) << "another file of that name";
}

TEST_F(DocumentTest, LoadingReadsChannelsSlotsAndMarks) {
    auto block = Block(u"b");
    block->numbers = {7, 32};
    block->scales = {0.25F, 0.0F};
    block->titles = {u"Fp1", u""};
    Open(u"one.fake", {block});
    EXPECT_THAT(m_block.channelNumbers, ElementsAre(7, 32));
    EXPECT_THAT(m_block.invScale, ElementsAre(4.0F, 0.0F)) << "a scale of 0 has no reciprocal";
    EXPECT_THAT(m_block.offsets, ElementsAre(1.0F, 2.0F)) << "32 has no slot";
    EXPECT_EQ(m_document.Slots()[7].title, u"Fp1");
    ASSERT_EQ(m_block.marks.size(), 1U);
    EXPECT_EQ(m_block.marks[0].position, 2);
    EXPECT_EQ(m_block.marks[0].text, u"blink");
    block->numbers = {0, -1};
    block->titles = {u"", u""};
    Open(u"two.fake", {block});
    EXPECT_EQ(m_document.Slots()[0].title, u"Канал 1");
}

TEST_F(DocumentTest, WhatOpeningLeftOutIsTakenOverAsItIsRead) {
    const auto second = Block(u"second");
    Open(u"one.fake", {Block(u"first"), second});
    FakeRecording& recording = *m_library.files[u"C:\\data\\one.fake"];
    m_document.LoadBlock(1);
    m_document.ChooseChannel(2);
    m_document.Solo(std::int16_t{2});
    auto grown = Block(u"second");
    grown->samples = {{1, 2, 3, 4}, {4, 5, 6, 7}};
    grown->marks = {};
    recording.steps = {[&] { recording.blocks[0]->title = u"first of three"; },
                       [&] { recording.blocks[1] = grown, recording.blocks.push_back(Block(u"third")); },
                       [&] {
                           second->marks.insert(second->marks.begin(), {1, u"earlier"});
                       },
                       [] {}};
    const auto told = [](const ReadStep& step) {
        std::string text;
        for (const auto& [is, name] : {std::pair(step.more, "more"),
                                       {step.marksChanged, "marks"},
                                       {step.blocksChanged, "blocks"},
                                       {step.titlesChanged, "titles"},
                                       {step.infoChanged, "info"},
                                       {step.grown, "grown"}})
            text += is ? name + " "s : "";
        return text;
    };
    EXPECT_EQ(told(m_document.ReadMore(7)), "more ");
    EXPECT_EQ(recording.asked.back(), std::pair(std::int16_t{2}, 7));
    EXPECT_EQ(told(m_document.ReadMore(7)), "more marks ");
    ASSERT_EQ(m_block.marks.size(), 2U);
    EXPECT_EQ(m_block.marks[0].text, u"earlier");
    EXPECT_EQ(told(m_document.ReadMore(7)), "more marks blocks grown ");
    EXPECT_EQ(m_block.sampleCount, 4);
    EXPECT_EQ(m_block.marks.size(), 0U);
    EXPECT_EQ(m_file.blockCount, 3);
    EXPECT_EQ(m_file.currentBlockIndex, 1);
    EXPECT_EQ(m_document.CurrentChannel(), 2);
    EXPECT_EQ(Shown(), "0111") << "the solo goes on";
    EXPECT_EQ(told(m_document.ReadMore(7)), "titles ");
    EXPECT_EQ(told(m_document.ReadMore(7)), "");
    // A block that has grown by little is taken over at the end, though the last step finds nothing new.
    const auto last = std::make_shared<FakeBlock>(*grown);
    recording.steps = {[&] { --recording.version; }, [&] { recording.blocks[1] = last; }};
    EXPECT_EQ(told(m_document.ReadMore(7)), "more ");
    EXPECT_EQ(told(m_document.ReadMore(7)), "marks grown ");
    EXPECT_EQ(m_block.block, last);
    m_document.CloseCurrentFile();
    EXPECT_EQ(told(m_document.ReadMore(7)), "");
}

TEST_F(DocumentTest, AFailingCallLeavesItsFieldEmptyAndTheLoadGoesOn) {
    for (const std::string call :
         {"SampleCount", "SampleRate", "StartTime", "ChannelNumber", "ChannelTitle", "ChannelUnit", "ChannelScale",
          "ChannelOffset", "MarkCount", "MarkPosition", "MarkText"}) {
        SCOPED_TRACE(call);
        auto block = Block(u"b");
        block->failing = {call};
        Open(Utf16(call), {block});
        EXPECT_EQ(m_block.channelCount, 2);
        EXPECT_EQ(m_block.sampleCount, call == "SampleCount" ? 0 : 3);
        EXPECT_EQ(m_block.sampleRate, call == "SampleRate" ? 0.0 : 100.0);
        EXPECT_EQ(m_block.marks.size(), call == "MarkCount" ? 0U : 1U);
        EXPECT_EQ(m_block.offsets[1], call == "ChannelOffset" ? 0.0F : 2.0F);
        EXPECT_EQ(m_document.Slots()[0].unit, call == "ChannelUnit" ? u"" : u"V");
    }
}

}  // namespace
}  // namespace quillon
