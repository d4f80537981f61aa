#include "norvik/RecordingLibrary.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "RecordingWriters.h"
#include "base/DateTime.h"
#include "norvik/BlockChecks.h"
#include "norvik/TemporaryFolder.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

TEST(RecordingLibrary, OpensByContentUnderAnyNameAndLeavesTheFileFree) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Write(u"Запись.edf", samples::WaveFile(1, 100, {11, 22}, {}));
    const auto library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
    EXPECT_EQ(recording->FileName(), path);
    EXPECT_EQ(recording->FileInfo(), u"WAVE, PCM 16 bit, 1 channel at 100 Hz, 2 samples");
    ASSERT_EQ(recording->BlockCount(), 1);
    EXPECT_THROW(static_cast<void>(recording->GetBlock(0)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(recording->GetBlock(2)), std::out_of_range);
    const auto block = recording->GetBlock(1);
    EXPECT_GT(block->StartTime(), DateFromCivil({2020, 1, 1, 0, 0, 0, 0})) << "the file's own time";

    const std::filesystem::path renamed = folder.File(u"renamed.wav");
    std::filesystem::rename(path, renamed);
    std::int16_t codes[2]{};
    block->ReadCodes(1, 0, 2, codes);
    EXPECT_EQ(codes[1], 22);
    EXPECT_THROW(block->ReadCodes(1, 1, 2, codes), std::out_of_range);
    std::filesystem::resize_file(renamed, 46);
    EXPECT_THROW(block->ReadCodes(1, 0, 2, codes), ReadError) << "cut while open";
}

TEST(RecordingLibrary, FailuresAreToldInTheLanguageOfTheLibrary) {
    const TemporaryFolder folder;
    const auto reason = [](Language language, const std::u16string& path) {
        const auto library = MakeRecordingLibrary(language);
        std::shared_ptr<Recording> recording;
        EXPECT_FALSE(library->OpenRecording(path, recording) || recording);
        return library->LastErrorText();
    };
    const std::u16string empty = folder.Write(u"empty.edf", "");
    EXPECT_EQ(reason(Language::English, empty), u"the file is empty");
    EXPECT_EQ(reason(Language::Russian, empty), u"файл пуст");
    EXPECT_FALSE(reason(Language::English, folder.File(u"missing.wav").u16string()).empty());
    EXPECT_FALSE(reason(Language::English, folder.Path()).empty()) << "a folder";
}

TEST(RecordingLibrary, TheExtensionDecidesWhoTellsTheFaultOfAFileThatBeginsLikeNone) {
    using Case = std::pair<std::u16string_view, std::string>;
    for (const auto& [name, part] :
         {Case(u"A.EDF", "3 of 256"), Case(u"a.bdf", "3 of 256"), Case(u"a.Rf64", "3 of 12"),
          Case(u"a.bin", "3 of 128"),
          Case(u"a.txt", "not a recording of a known format (the file begins with 01 02 03)")})
        ExpectRefusal(SourceOf(FileBytes().Text("\x01\x02\x03")), name, part);
}

}  // namespace
}  // namespace quillon
