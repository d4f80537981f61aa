#include "norvik/RecordingLibrary.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/FileBytes.h"
#include "norvik/Refusal.h"
#include "norvik/TemporaryFolder.h"

namespace quillon {
namespace {

using testing::ExpectRefusal;
using testing::FileBytes;
using testing::TemporaryFolder;

FileBytes SmallWave(std::uint32_t dataBytes = 4) {
    FileBytes file;
    file.Text("RIFF").U32(0).Text("WAVEfmt ").U32(16).U16(1).U16(1).U32(100).U32(200).U16(2).U16(16);
    return file.Text("data").U32(dataBytes).U16(11).U16(22);
}

TEST(RecordingLibrary, OpensByContentUnderAnyNameAndLeavesTheFileFree) {
    const TemporaryFolder folder;
    const auto library = MakeRecordingLibrary(Language::English);
    const std::u16string path = folder.Write(u"\u0417\u0430\u043F\u0438\u0441\u044C.edf", SmallWave());
    std::shared_ptr<Recording> recording;
    ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
    EXPECT_EQ(recording->FileName(), path);
    EXPECT_EQ(recording->FileInfo(), u"WAVE, PCM 16 bit, 1 channel at 100 Hz, 2 samples");
    ASSERT_EQ(recording->BlockCount(), 1);
    EXPECT_THROW(static_cast<void>(recording->GetBlock(0)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(recording->GetBlock(2)), std::out_of_range);
    const auto block = recording->GetBlock(1);
    EXPECT_GT(block->StartTime(), DateFromCivil({2020, 1, 1, 0, 0, 0, 0})) << "the file's own time";

    std::filesystem::rename(path, folder.File(u"renamed.wav"));
    std::int16_t codes[2]{};
    block->ReadCodes(1, 0, 2, codes);
    EXPECT_EQ(codes[1], 22);
    library->CloseRecording(recording);
    EXPECT_FALSE(recording);
}

TEST(RecordingLibrary, AFileCutWhileOpenIsAnErrorOfTheRead) {
    const TemporaryFolder folder;
    const std::u16string path = folder.Write(u"cut.wav", SmallWave());
    std::shared_ptr<Recording> recording;
    ASSERT_TRUE(MakeRecordingLibrary(Language::English)->OpenRecording(path, recording));
    std::filesystem::resize_file(path, 46);
    std::int16_t codes[2]{};
    EXPECT_THROW(recording->GetBlock(1)->ReadCodes(1, 0, 2, codes), ReadError);
    EXPECT_THROW(recording->GetBlock(1)->ReadCodes(1, 1, 2, codes), std::out_of_range);
}

TEST(RecordingLibrary, FailuresAreToldInTheLanguageOfTheLibrary) {
    const TemporaryFolder folder;
    const auto english = MakeRecordingLibrary(Language::English);
    const auto russian = MakeRecordingLibrary(Language::Russian);
    const auto reason = [](RecordingLibrary& library, const std::u16string& path) {
        std::shared_ptr<Recording> recording;
        EXPECT_FALSE(library.OpenRecording(path, recording));
        EXPECT_FALSE(recording);
        return library.LastErrorText();
    };
    const std::u16string empty = folder.Write(u"empty.edf", FileBytes());
    EXPECT_EQ(reason(*english, empty), u"the file is empty");
    EXPECT_EQ(reason(*russian, empty), u"файл пуст");
    const std::u16string picture = folder.Write(u"picture", FileBytes().Text("GIF87a"));
    EXPECT_EQ(reason(*english, picture), u"not a recording of a known format (the file begins with 47 49 46 38)");
    EXPECT_EQ(reason(*russian, picture), u"не запись известного формата (файл начинается с 47 49 46 38)");
    EXPECT_FALSE(reason(*english, folder.File(u"missing.wav").u16string()).empty());
    EXPECT_FALSE(reason(*english, folder.Path()).empty()) << "a folder";
}

TEST(RecordingLibrary, TheExtensionDecidesWhoTellsTheFaultOfAFileThatBeginsLikeNone) {
    const FileBytes junk = FileBytes().Text("\x01\x02\x03");
    ExpectRefusal(junk.Source(), u"A.EDF", "3 of 256");
    ExpectRefusal(junk.Source(), u"a.bdf", "3 of 256");
    ExpectRefusal(junk.Source(), u"a.Rf64", "3 of 12");
    ExpectRefusal(junk.Source(), u"a.bin", "3 of 128");
    ExpectRefusal(junk.Source(), u"a.txt", "begins with 01 02 03)");
}

TEST(RecordingLibrary, FileTypesHaveNamesAndMasks) {
    const auto english = MakeRecordingLibrary(Language::English);
    const auto russian = MakeRecordingLibrary(Language::Russian);
    EXPECT_EQ(english->FileTypeMask(0), u"*.bin;*.wav;*.rf64;*.edf;*.bdf");
    for (std::int32_t type = 0; type <= english->FileTypeCount(); ++type) {
        EXPECT_EQ(english->FileTypeMask(type), russian->FileTypeMask(type));
        EXPECT_NE(english->FileTypeName(type), russian->FileTypeName(type));
    }
    EXPECT_THROW(static_cast<void>(english->FileTypeMask(english->FileTypeCount() + 1)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(english->FileTypeName(-1)), std::out_of_range);
}

}  // namespace
}  // namespace quillon
