#include <gmock/gmock.h>

#include <map>
#include <random>

#include "base/Text.h"
#include "export/KVExport.h"
#include "export/QL_Export.h"
#include "export/SplitRun.h"
#include "norvik/OutputFile.h"
#include "norvik/TemporaryFolder.h"
#include "norvik/TextWriter.h"
#include "norvik/private/ReplacingFile.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// The system's files until one call fails. Counts the bytes that arrive.
class FaultyFiles final : public FileSystem {
  public:
    enum Fault { None, Look_, Create, Write, Close, Rename_ };
    Fault fault = None;
    std::size_t room = 0;  ///< bytes that are written before a fault of Write
    int parts = 0;         ///< in which a file is freed beyond the last

    std::optional<Place> FindPlace(const std::u16string& path, Bilingual& error) override {
        if (fault == Look_) return error = {u"fault", u"сбой"}, std::nullopt;
        return SystemFiles().FindPlace(path, error);
    }
    std::unique_ptr<ByteSink> CreateNew(const std::u16string& path, const Place& place, bool& taken,
                                        Bilingual& error) override {
        if (fault == Create) return error = {u"fault", u"сбой"}, nullptr;
        auto file = SystemFiles().CreateNew(path, place, taken, error);
        if (file) file = std::make_unique<Sink>(*this, std::move(file));
        return file;
    }
    bool Rename(const std::u16string& from, const std::u16string& to, Bilingual& error) override {
        if (fault == Rename_) return error = {u"fault", u"сбой"}, false;
        return SystemFiles().Rename(from, to, error);
    }
    bool Remove(const std::u16string& path) override { return SystemFiles().Remove(path); }

  private:
    struct Sink final : ByteSink {
        Sink(FaultyFiles& owner, std::unique_ptr<ByteSink> sink) : files(owner), file(std::move(sink)) {}
        bool Write(std::span<const std::byte> bytes, Bilingual& error) override {
            if (files.fault == FaultyFiles::Write && bytes.size() > files.room)
                return error = {u"fault", u"сбой"}, false;
            files.room -= std::min(files.room, bytes.size());
            return file->Write(bytes, error);
        }
        bool Close(Bilingual& error) override {
            const bool closed = file->Close(error);
            if (files.fault == FaultyFiles::Close) return error = {u"fault", u"сбой"}, false;
            return closed;
        }
        bool FreePart() override { return file->FreePart() || ++freed <= files.parts; }
        FaultyFiles& files;
        std::unique_ptr<ByteSink> file;
        int freed = 0;
    };
};

class WriteFaults : public ::testing::Test {
  protected:
    WriteFaults() { block.samples.assign(3, std::vector<std::int16_t>(150000, 1)); }
    using Content = std::map<std::u16string, std::string>;
    [[nodiscard]] Content Files() const {
        Content found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            found[entry.path().filename().u16string()] = Contents(entry.path());
        return found;
    }
    [[nodiscard]] std::u16string Path(const std::u16string& name) const { return folder.File(name).u16string(); }

    /// Writes one kind; returns the message to the user, empty when all was written.
    std::u16string Run(const std::u16string& kind) {
        services.messages.clear();
        if (kind == u"split") {
            const std::int32_t half = block.SampleCount() / 2;
            SplitPlan plan{block.SampleCount(), half, half, false, u"p_", u"wav"};
            SplitSystem system;
            system.createFolder = [] { return true; };
            system.runPending = [&] { return !progress || progress(); };
            system.exportPiece = [&](std::int64_t piece, const std::u16string& name) {
                return ExportPiece(exporter, block, plan, piece, Path(name));
            };
            const SplitResult result = RunSplit(plan, system);
            EXPECT_EQ(result.end == SplitEnd::PieceFailed, !services.messages.empty());
            stopped = result.end == SplitEnd::Stopped;
            written = result.written;
        } else if (kind.ends_with(u"txt")) {
            TextExportContext context{
                slots, format, false, services, [&](const std::u16string& target, std::u16string& error) {
                    return BeginTextFile(MakeOutputFileOn(files), target, Language::English, error);
                }};
            context.runPending = progress;
            settings.fileType = kind == u"txt" ? 1 : 0;
            try {
                ExportText(Path(u"a.txt"), block, 1, block.SampleCount(), settings, context);
            } catch (const std::exception& error) {
                return exporterName + u": " + Utf16(error.what());
            }
            stopped = context.stopped;
            written = std::ssize(context.written);
            if (!context.failures.empty()) return context.failures.front();
        } else {
            const std::u16string target = Path(u"a." + kind);
            const bool done = kind == u"edf+" ? exporter.ExportEdfPlus(&block, target, {.channels = {1, 2, 3}})
                                              : exporter.Export(&block, target, 1, 0, 0);
            written = done ? 1 : 0;
            stopped = exporter.Stopped();
        }
        return services.messages.empty() ? std::u16string() : services.messages.front();
    }

    TemporaryFolder folder;
    FaultyFiles files;
    FakeBlock block;
    FakeServices services;
    ChannelSlots slots;
    FormatOptions format;
    TextExportSettings settings{1, 0, 0, 0, 0, 0, 0, 0};
    std::function<bool()> progress;  ///< called by all kinds
    bool stopped = false;            ///< by it
    std::int64_t written = 0;        ///< files
    const std::u16string exporterName = u"rec.edf";
    KVExport exporter{services, {.makeFile = [this] { return MakeOutputFileOn(files); }}};
};

TEST_F(WriteFaults, LeaveTheFolderAsItWas) {
    exporter.SetRecording(exporterName);
    for (const std::u16string name : {u"a.bin", u"a.wav", u"a.edf", u"a.edf+", u"a.txt", u"p_1.wav", u"p_2.wav"})
        folder.Write(name, "old " + Utf8(name));
    const Content before = Files();
    for (const std::u16string kind : {u"bin", u"wav", u"edf", u"edf+", u"txt", u"split"}) {
        const std::u16string target = kind == u"split" ? Path(u"p_1.wav") : Path(u"a." + kind);
        for (int fault = FaultyFiles::Look_; fault <= FaultyFiles::Rename_; ++fault) {
            SCOPED_TRACE(Utf8(kind) + " fault " + std::to_string(fault));
            for (const std::size_t room : {0U, 300000U}) {
                files.fault = static_cast<FaultyFiles::Fault>(fault);
                files.room = room;
                const std::u16string message = Run(kind);
                EXPECT_TRUE(message.ends_with(target + u": fault")) << Utf8(message);
                ASSERT_EQ(Files(), before);
            }
        }
        files.fault = FaultyFiles::None;
        block.holeFrom = 40000;
        block.holeTo = 150000;
        EXPECT_TRUE(Run(kind).ends_with(exporterName + u": hole")) << "the recording is what failed";
        ASSERT_EQ(Files(), before) << Utf8(kind);
        block.holeTo = 0;
    }
    // Pieces that were written before stay.
    block.holeFrom = 100000;
    block.holeTo = 150000;
    EXPECT_NE(Run(u"split"), u"");
    Content after = Files();
    EXPECT_EQ(after[u"p_1.wav"].size(), 44U + 450000U);
    after[u"p_1.wav"] = "old p_1.wav";
    EXPECT_EQ(after, before);

    // Without a fault everything is replaced, and no temporary file is left.
    block.holeTo = 0;
    for (const std::u16string kind : {u"bin", u"wav", u"edf", u"edf+", u"txt", u"split"}) EXPECT_EQ(Run(kind), u"");
    after = Files();
    EXPECT_EQ(after.size(), before.size());
    for (const auto& [name, bytes] : after) EXPECT_GT(bytes.size(), 400000U) << Utf8(name);
}

TEST_F(WriteFaults, WhatIsStoppedKeepsTheFilesThatWereFinished) {
    const std::map<std::u16string, std::vector<std::u16string>> kinds = {
        {u"bin", {u"a.bin"}},
        {u"wav", {u"a.wav"}},
        {u"edf", {u"a.edf"}},
        {u"edf+", {u"a.edf+"}},
        {u"long.edf", {u"a.long.edf"}},
        {u"txt", {u"a.txt"}},
        {u"channels.txt", {u"a1.txt", u"a2.txt", u"a3.txt"}},
        {u"split", {u"p_1.wav", u"p_2.wav"}},
    };
    std::mt19937 random(7);
    block.scales = {0.5F, 0.25F, 0.125F};
    for (const auto& [kind, names] : kinds) {
        // One record of a long one holds all samples of the channels.
        block.rate = kind == u"long.edf" ? 1e6 : 100.0;
        block.samples.assign(3, std::vector<std::int16_t>(kind == u"long.edf" ? 400000 : 30000, 1));
        int calls = 0;
        int stopAt = 0;
        progress = [&] { return ++calls < stopAt || stopAt == 0; };
        exporter.SetProgress([&](std::int32_t, std::int32_t) { return progress(); });
        Run(kind);
        ASSERT_EQ(written, std::ssize(names));
        ASSERT_GE(calls, 18) << Utf8(kind) << ": a stop must not wait long";
        const Content whole = Files();
        const int all = std::exchange(calls, 0);
        for (int time = 0; time < 10; ++time, calls = 0) {
            for (const std::u16string& name : names) folder.Write(name, "old");
            // The last call may come when everything is written.
            stopAt = std::uniform_int_distribution(1, all - 1)(random);
            SCOPED_TRACE(Utf8(kind) + " stopped at " + std::to_string(stopAt));
            EXPECT_EQ(Run(kind), u"");
            EXPECT_TRUE(stopped);
            EXPECT_EQ(calls - stopAt, kind == u"split" && calls > stopAt ? 1 : 0) << "nothing is done after it";
            Content expected = whole;
            for (auto i = static_cast<std::size_t>(written); i < names.size(); ++i) expected[names[i]] = "old";
            ASSERT_EQ(Files(), expected);
        }
    }
}

TEST_F(WriteFaults, ALargeUnfinishedFileGoesInPartsBetweenWhichTheCallerIsAsked) {
    constexpr int parts = 5;
    files.parts = parts;
    int calls = 0;
    int stopAt = 0;
    progress = [&] { return ++calls < stopAt || stopAt == 0; };
    exporter.SetProgress([&](std::int32_t, std::int32_t) { return progress(); });
    for (const std::u16string kind : {u"bin", u"wav", u"edf", u"edf+", u"txt", u"channels.txt"}) {
        SCOPED_TRACE(Utf8(kind));
        calls = 0;
        stopAt = 10;
        EXPECT_EQ(Run(kind), u"");
        EXPECT_TRUE(stopped && written == 0);
        EXPECT_EQ(calls, stopAt + parts);
        EXPECT_TRUE(Files().empty());
        // Also where the disk is full, and what is told of it stays.
        stopAt = 0;
        files.fault = FaultyFiles::Write;
        files.room = 300000;
        EXPECT_TRUE(Run(kind).ends_with(u": fault"));
        EXPECT_FALSE(stopped);
        EXPECT_TRUE(Files().empty());
        files.fault = FaultyFiles::None;
    }
    // The system's file: removed while it is open, it shrinks until little is left, and takes nobody's place.
    bool taken = false;
    Bilingual error;
    auto sink = SystemFiles().CreateNew(Path(u"large"), {}, taken, error);
    ASSERT_TRUE(sink);
    const std::vector<std::byte> piece(std::size_t{1} << 20);
    for (std::int64_t size = 0; size <= 2 * kFreedBytes; size += std::ssize(piece))
        ASSERT_TRUE(sink->Write(piece, error));
    ASSERT_TRUE(SystemFiles().Remove(Path(u"large")));
    EXPECT_TRUE(sink->FreePart());
    EXPECT_TRUE(sink->FreePart());
    EXPECT_FALSE(sink->FreePart());
    sink.reset();
    EXPECT_TRUE(Files().empty());
}

TEST_F(WriteFaults, TemporaryNamesAvoidExistingFilesAndAreShortEnough) {
    folder.Write(u"quillon-1.part", "another's");
    const std::u16string longest = std::u16string(246, u'n') + u".bin";
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(exporter.Export(&block, Path(longest), 1, 10, 0)) << Utf8(exporter.LastError());
        EXPECT_FALSE(exporter.Export(&block, Path(u"n" + longest + longest), 1, 10, 0));
        EXPECT_FALSE(exporter.Export(&block, Path(u"none") + u"/a.bin", 1, 10, 0));
    }
    EXPECT_THAT(Files(), ::testing::UnorderedElementsAre(::testing::Key(longest), ::testing::Key(u"quillon-1.part")));
}

}  // namespace
}  // namespace quillon
