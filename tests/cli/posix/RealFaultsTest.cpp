#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <map>

#include "RecordingWriters.h"
#include "base/NativePath.h"
#include "cli/CommandLine.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::cli {
namespace {

namespace fs = std::filesystem;
using testing::Answer;
using testing::Contents;
using testing::RunLine;

/// While it lives no file of this process grows beyond that size.
class SizeLimit {
  public:
    explicit SizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

  private:
    rlimit m_before{};
    void (*m_handler)(int);
};

class RealFaults : public ::testing::Test {
  protected:
    RealFaults() {
        samples::Bytes bytes;
        bytes.Text(samples::BinHeader(100.0F, "", {{"A", "V", 1.0F, 0.0F}}, 300000))
            .Codes(std::vector<std::int16_t>(300000));
        m_recording = m_folder.Write(u"rec.bin", bytes.Get());
    }
    [[nodiscard]] std::map<std::string, std::string> Files() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::directory_iterator(m_folder.Path()))
            files[entry.path().filename().string()] = Contents(entry.path());
        return files;
    }
    testing::TemporaryFolder m_folder;
    fs::path m_recording;
};

TEST_F(RealFaults, ADiskThatFillsUpLeavesEveryFileAsItWas) {
    for (const char16_t* name : {u"a.bin", u"a.wav", u"a.edf", u"a.txt", u"a.raw", u"1.bin"})
        m_folder.Write(name, "old");
    const auto before = Files();
    const auto expect = [&](const std::string& line, const std::u16string& target, const fs::path& argument) {
        for (const rlim_t limit : {rlim_t{0}, rlim_t{300000}}) {
            const SizeLimit full(limit);
            const Answer answer = RunLine(line + " --force", {m_recording, argument});
            EXPECT_EQ(answer.code, kRefused) << line;
            EXPECT_EQ(answer.error, "quillon-cli: " + m_folder.File(target).string() + ": File too large\n");
            ASSERT_TRUE(Files() == before) << line;
        }
    };
    for (const char16_t* name : {u"a.bin", u"a.wav", u"a.edf"}) expect("export % %", name, m_folder.File(name));
    expect("text % %", u"a.txt", m_folder.File(u"a.txt"));
    expect("codes % 1 1 --out %", u"a.raw", m_folder.File(u"a.raw"));
    expect("split % --size 200000 --folder %", u"1.bin", m_folder.Path());
    for (const char* line : {"export % /dev/full --type=wav", "text % /dev/full", "info % --out=/dev/full"}) {
        const Answer answer = RunLine(line, {m_recording});
        EXPECT_EQ(answer.error, "quillon-cli: /dev/full: No space left on device\n") << line;
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
    const auto before = Files();
    EXPECT_EQ(run().error, "quillon-cli: " + target.string() + ": Permission denied\n");
    EXPECT_TRUE(Files() == before);
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
