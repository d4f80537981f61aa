#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "RecordingWriters.h"
#include "base/NativePath.h"
#include "cli/CommandLine.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::cli {
namespace {

namespace fs = std::filesystem;
using testing::Contents;
using testing::RunLine;

class RealFaults : public ::testing::Test {
  protected:
    RealFaults() {
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(100.0F, "", {{"A", "V", 1.0F, 0.0F}}, 300000))
            .Codes(std::vector<std::int16_t>(300000));
        m_recording = m_folder.Write(u"rec.bin", bytes.Get());
    }
    testing::TemporaryFolder m_folder;
    fs::path m_recording;
};

TEST_F(RealFaults, DevicesAreWrittenWhereTheyAre) {
    EXPECT_EQ(RunLine("text % /dev/null", {m_recording}).code, kDone);
    for (const char* line : {"export % /dev/full --type=wav", "text % /dev/full", "info % --out=/dev/full"})
        EXPECT_EQ(RunLine(line, {m_recording}).error, "quillon-cli: /dev/full: No space left on device\n") << line;
    EXPECT_EQ(RunLine("info % --out=/dev/full --language=ru", {m_recording}).error,
              "quillon-cli: /dev/full: На диске нет места\n");
    EXPECT_TRUE(fs::is_character_file("/dev/null") && fs::is_character_file("/dev/full"));
}

TEST_F(RealFaults, InterruptingStopsTheCommandInsteadOfTheProcess) {
    const fs::path pipe = m_folder.File(u"pipe.wav");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const char* line : {"export % %", "text % %"}) {
        std::string text;
        // The command waits until the pipe is read, so it is still running at the first byte.
        std::thread reader([&] {
            std::ifstream stream(pipe, std::ios::binary);
            text += static_cast<char>(stream.get());
            std::raise(SIGINT);
            text.append(std::istreambuf_iterator<char>(stream), {});
        });
        EXPECT_EQ(RunLine(line, {m_recording, pipe}).error, "quillon-cli: " + m_recording.string() + ": interrupted\n");
        reader.join();
        EXPECT_LT(text.size(), 600000U) << line;
    }
}

TEST_F(RealFaults, ModesStayAndProtectedFilesToo) {
    const fs::path target = m_folder.File(u"a.raw");
    const auto mode = [&] {
        struct stat status {};
        EXPECT_EQ(::stat(target.c_str(), &status), 0);
        return status.st_mode & 07777U;
    };
    const auto run = [&] { return RunLine("codes % 1 1 --force --out %", {m_recording, target}); };
    const mode_t mask = ::umask(027);
    EXPECT_EQ(run().code, kDone);
    EXPECT_EQ(mode(), 0640U);
    for (const mode_t kept : {0600U, 0664U, 0755U}) {
        ::chmod(target.c_str(), kept);
        EXPECT_EQ(run().code, kDone);
        EXPECT_EQ(mode(), kept);
    }
    ::umask(mask);
    ::chmod(target.c_str(), 0444);
    const std::string before = Contents(target);
    EXPECT_EQ(run().error, "quillon-cli: " + target.string() + ": Permission denied\n");
    EXPECT_TRUE(Contents(target) == before);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.Path()), fs::directory_iterator()), 2);
}

TEST_F(RealFaults, NamesOfAnyBytesAreTheNamesThatAreWritten) {
    // No UTF-8: Latin-1 text, a half of a pair, a sequence that is cut.
    std::string tangled = "\xE9t\xE9-\xED\xA0\x80-\xF0\x9F\x98";
    std::string all;
    for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
    for (const std::string& bytes : {tangled, all, std::string("\xF0\x9F\x98\x80\x80")})
        EXPECT_EQ(NativeBytes(FromNativeBytes(bytes)), bytes);
    const fs::path twin = m_folder.File(u"\uFFFDt\uFFFD.bin");
    m_folder.Write(u"\uFFFDt\uFFFD.bin", "another's");
    const fs::path target = fs::path(m_folder.Path()) / "\xE9t\xE9.bin";
    std::ostringstream out, error;
    CliIo io{out, error};
    const auto run = [&](std::vector<std::u16string> words) { return RunCli(words, io); };
    const std::u16string path = FromNativePath(target);
    EXPECT_EQ(run({u"export", m_recording.u16string(), path, u"--force"}), kDone) << error.str();
    EXPECT_EQ(run({u"export", path, path, u"--force"}), kRefused) << "the recording itself";
    EXPECT_EQ(fs::file_size(target), fs::file_size(m_recording));
    EXPECT_EQ(Contents(twin), "another's");
    EXPECT_EQ(run({u"info", path}), kDone);
    EXPECT_TRUE(IsValidUtf8(out.str()) && IsValidUtf8(error.str()));
    EXPECT_EQ(run({u"split", path, u"--size=200000", u"--base", FromNativeBytes("\xFF"), u"--folder",
                   FromNativePath(fs::path(m_folder.Path()) / "\xFE")}),
              kDone);
    EXPECT_TRUE(fs::exists(fs::path(m_folder.Path()) / "\xFE" / "\xFF_1.bin"));
}

}  // namespace
}  // namespace quillon::cli
