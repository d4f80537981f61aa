#include "data/BlockLoader.h"

#include <gmock/gmock.h>

#include "base/Text.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace ::quillon::testing;

class BlockLoaderTest : public ::testing::Test, public LoaderHost {
  protected:
    static std::shared_ptr<FakeBlock> Block(const std::u16string& title) {
        auto block = std::make_shared<FakeBlock>();
        block->title = title;
        block->samples = {{1, 2, 3}, {4, 5, 6}};
        block->marks = {{2, u"blink"}};
        return block;
    }
    void Open(const std::u16string& name, std::vector<std::shared_ptr<FakeBlock>> blocks) {
        const std::u16string path = u"C:\\data\\" + name;
        auto recording = std::make_shared<FakeRecording>();
        recording->name = path;
        recording->blocks = std::move(blocks);
        m_library.files[path] = recording->blocks.empty() ? nullptr : recording;
        m_loader.OpenFile(u"C:\\data", name, m_pattern);
    }

    // The window's side: a list whose programmatic selection raises its click.
    void ResetViewState() override {}
    void StopSound() override {}
    std::int32_t BlockItemCount() const override { return static_cast<std::int32_t>(m_items.size()); }
    void RemoveBlockItem(std::int32_t position) override { m_items.erase(m_items.begin() + position); }
    void SetBlockItem(std::int32_t position, const std::u16string& text) override {
        if (position == BlockItemCount()) m_items.emplace_back();
        m_items.at(static_cast<std::size_t>(position)) = text;
    }
    std::int32_t SelectedBlockItem() const override { return m_selected; }
    void SelectBlockItem(std::int32_t position) override {
        m_selected = position;
        m_loader.LoadBlock(static_cast<std::int16_t>(position));
    }
    FileStamp StampOf(const std::u16string& path) const override {
        const auto found = m_stamps.find(path);
        return found == m_stamps.end() ? FileStamp{} : found->second;
    }
    void OfferFolder(const std::u16string& folder) override { m_offered.push_back(folder); }
    void ShowBlock() override { m_shown.push_back(m_file.currentBlockIndex); }

    FakeLibrary m_library;
    FakeServices m_services;
    ViewFile m_file;
    ViewBlock m_block;
    ChannelSlots m_slots;
    std::u16string m_pattern = u"*.fake";
    std::vector<std::u16string> m_items;
    std::int32_t m_selected = -1;
    std::vector<std::u16string> m_offered;
    std::vector<int> m_shown;
    std::map<std::u16string, FileStamp> m_stamps;
    BlockLoader m_loader{m_library, m_file, m_block, m_slots, m_services, *this};
};

TEST_F(BlockLoaderTest, OpeningListsTheBlocksAndLoadsTheFirstOnce) {
    Open(u"one.fake", {Block(u"first"), Block(u"")});
    EXPECT_THAT(m_items, ElementsAre(u"first\t1", u"12:00:00\t2"));
    EXPECT_THAT(m_shown, ElementsAre(0));
    EXPECT_THAT(m_offered, ElementsAre(u"C:\\data"));
    // With the first item still selected no click would come from the list; the block is loaded all the same, once.
    m_pattern = u"*.*";
    Open(u"Запись.fake", {Block(u"only")});
    EXPECT_THAT(m_items, ElementsAre(u"only\t1"));
    EXPECT_THAT(m_shown, ElementsAre(0, 0));
    EXPECT_EQ(m_library.closed, 1);
    EXPECT_EQ(m_offered.size(), 1U) << "with the catch-all pattern no folder is remembered";
    m_loader.OpenFile(u"c:\\DATA\\", u"ЗАПИСЬ.FAKE", m_pattern);
    EXPECT_EQ(m_library.opened, 2) << "it is open already";
    Open(u"bad.fake", {});
    EXPECT_EQ(m_services.status, u"bad.fake: no such thing");
    EXPECT_THAT(m_items, IsEmpty());
    EXPECT_THAT(m_shown, ElementsAre(0, 0, -1));
    Open(u"one.fake", {Block(u"first")});
    EXPECT_EQ(m_services.status, u"") << "the reason of the earlier refusal is gone";
}

TEST_F(BlockLoaderTest, LetterCaseTellsFilesApartWhereTheFolderDoes) {
    FileStamp& upper = m_stamps[u"C:\\data\\REC.fake"];
    m_stamps[u"C:\\data\\rec.fake"] = upper = {true, 1, 7, 100, 5};
    Open(u"rec.fake", {Block(u"lower")});
    Open(u"REC.fake", {Block(u"upper")});
    EXPECT_EQ(m_library.opened, 1) << "two names of one file";
    upper.file = 8;
    Open(u"REC.fake", {Block(u"upper")});
    EXPECT_THAT(m_items, ElementsAre(u"upper\t1"));
    upper.size = 200;
    Open(u"REC.fake", {Block(u"upper")});
    EXPECT_EQ(m_library.opened, 2) << "the name is that of the open file, whatever became of it";
}

TEST_F(BlockLoaderTest, AChangedFileIsLoadedAgainOnceItIsQuiet) {
    FileStamp& stamp = m_stamps[u"C:\\data\\a.fake"];
    EXPECT_FALSE(m_loader.HasChanged(true));
    stamp = {true, 1, 7, 100, 5};
    const std::vector<std::shared_ptr<FakeBlock>> blocks{Block(u"1"), Block(u"2"), Block(u"3")};
    Open(u"a.fake", blocks);
    SelectBlockItem(2);
    EXPECT_FALSE(m_loader.HasChanged(true));
    stamp.size = 150;
    EXPECT_FALSE(m_loader.HasChanged(false)) << "it may still be written to ...";
    stamp.size = 200;
    EXPECT_FALSE(m_loader.HasChanged(false)) << "... and was";
    EXPECT_TRUE(m_loader.ChangePending());
    EXPECT_TRUE(m_loader.HasChanged(true));
    EXPECT_TRUE(m_loader.HasChanged(false));
    EXPECT_TRUE(m_loader.Reload());
    EXPECT_EQ(m_file.currentBlockIndex, 2);
    EXPECT_EQ(m_library.closed, 1);
    EXPECT_FALSE(m_loader.HasChanged(true));
    // Replaced by one of the same size and time, with fewer blocks.
    stamp.file = 8;
    m_library.files[u"C:\\data\\a.fake"]->blocks.resize(2);
    EXPECT_TRUE(m_loader.HasChanged(true));
    EXPECT_TRUE(m_loader.Reload());
    EXPECT_EQ(m_file.currentBlockIndex, 1);
    EXPECT_THAT(m_items, ElementsAre(u"1\t1", u"2\t2"));
    // What can no longer be read leaves the open one as it is, and is not tried again and again.
    const auto readable = std::exchange(m_library.files[u"C:\\data\\a.fake"], nullptr);
    stamp.modified = 6;
    EXPECT_FALSE(m_loader.Reload());
    EXPECT_EQ(m_file.currentBlockIndex, 1);
    EXPECT_FALSE(m_loader.HasChanged(true));
    // One that was refused is opened when it has become readable.
    Open(u"b.fake", {});
    m_stamps[u"C:\\data\\b.fake"] = stamp;
    m_library.files[u"C:\\data\\b.fake"] = readable;
    EXPECT_TRUE(m_loader.HasChanged(true));
    EXPECT_TRUE(m_loader.Reload());
    EXPECT_EQ(m_file.currentBlockIndex, 0);
    EXPECT_EQ(m_offered.size(), 2U);
}

TEST_F(BlockLoaderTest, LoadingReadsChannelsSlotsAndMarks) {
    auto block = Block(u"b");
    block->numbers = {7, 32};
    block->scales = {0.25F, 0.0F};
    block->titles = {u"Fp1", u""};
    Open(u"one.fake", {block});
    EXPECT_THAT(m_block.channelNumbers, ElementsAre(7, 32));
    EXPECT_THAT(m_block.invScale, ElementsAre(4.0F, 0.0F)) << "a scale of 0 has no reciprocal";
    EXPECT_THAT(m_block.offsets, ElementsAre(1.0F, 2.0F)) << "32 has no slot";
    EXPECT_EQ(m_slots[7].title, u"Fp1");
    ASSERT_EQ(m_block.marks.size(), 1U);
    EXPECT_EQ(m_block.marks[0].position, 2);
    EXPECT_EQ(m_block.marks[0].text, u"blink");
    block->numbers = {0, -1};
    block->titles = {u"", u""};
    Open(u"two.fake", {block});
    EXPECT_EQ(m_slots[0].title, u"Канал 1");
}

TEST_F(BlockLoaderTest, AFailingCallLeavesItsFieldEmptyAndTheLoadGoesOn) {
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
        EXPECT_EQ(m_slots[0].unit, call == "ChannelUnit" ? u"" : u"V");
    }
}

}  // namespace
}  // namespace quillon
