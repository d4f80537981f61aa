#include <gmock/gmock.h>

#include <map>

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
    void Remove(const std::u16string& path) override { SystemFiles().Remove(path); }

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
        FaultyFiles& files;
        std::unique_ptr<ByteSink> file;
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
            SplitPlan plan{block.SampleCount(), 75000, 75000, false, u"p_", u"wav"};
            SplitSystem system;
            system.createFolder = [] { return true; };
            system.exportPiece = [&](std::int64_t piece, const std::u16string& name) {
                return ExportPiece(exporter, block, plan, piece, Path(name));
            };
            const SplitResult result = RunSplit(plan, system);
            EXPECT_EQ(result.end == SplitEnd::Done, services.messages.empty());
        } else if (kind == u"txt") {
            TextExportContext context{
                slots, format, false, services, [&](const std::u16string& target, std::u16string& error) {
                    return BeginTextFile(MakeOutputFileOn(files), target, Language::English, error);
                }};
            try {
                ExportText(Path(u"a.txt"), block, 1, block.SampleCount(), settings, context);
            } catch (const std::exception& error) {
                return exporterName + u": " + Utf16(error.what());
            }
            if (!context.failures.empty()) return context.failures.front();
        } else {
            exporter.Export(&block, Path(u"a." + kind), 1, 0, 0);
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
    const std::u16string exporterName = u"rec.edf";
    KVExport exporter{services, {.makeFile = [this] { return MakeOutputFileOn(files); }}};
};

TEST_F(WriteFaults, LeaveTheFolderAsItWas) {
    exporter.SetRecording(exporterName);
    for (const std::u16string name : {u"a.bin", u"a.wav", u"a.edf", u"a.txt", u"p_1.wav", u"p_2.wav"})
        folder.Write(name, "old " + Utf8(name));
    const Content before = Files();
    for (const std::u16string kind : {u"bin", u"wav", u"edf", u"txt", u"split"}) {
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
        exporter.SetProgress([](std::int32_t done, std::int32_t) {
            if (done > 100000) throw std::runtime_error("stop");
        });
        if (kind.size() == 3 && kind != u"txt") Run(kind);
        exporter.SetProgress({});
        ASSERT_EQ(Files(), before) << "ended by its user";
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
    for (const std::u16string kind : {u"bin", u"wav", u"edf", u"txt", u"split"}) EXPECT_EQ(Run(kind), u"");
    after = Files();
    EXPECT_EQ(after.size(), before.size());
    for (const auto& [name, bytes] : after) EXPECT_GT(bytes.size(), 400000U) << Utf8(name);
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
