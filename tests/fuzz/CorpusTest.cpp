// The checks that the fuzzers run, on every seed and every damaged recording, and on seeds that are damaged at random.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <vector>

#include "fuzz/Checks.h"
#include "norvik/TemporaryFolder.h"
#include "norvik/private/EdfAnnotations.h"

#ifdef __SANITIZE_ADDRESS__
// No number in a file may size an allocation before it is compared with the size of the file: the sanitizer ends the
// tests at larger ones. The largest that is meant is the memory for annotations.
extern "C" const char* __asan_default_options() {
    return "max_allocation_size_mb=512";
}
#endif

namespace quillon {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Contents by file name.
std::vector<std::pair<std::string, Bytes>> FilesOf(const std::filesystem::path& folder) {
    std::vector<std::pair<std::string, Bytes>> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".json") continue;
        const std::string content = testing::Contents(entry.path());
        files.emplace_back(entry.path().filename().string(), Bytes(content.begin(), content.end()));
    }
    std::sort(files.begin(), files.end());
    return files;
}

void CheckAll(const std::string& name, const Bytes& bytes) {
    EXPECT_NO_THROW(fuzz::CheckReaders(bytes)) << name;
    EXPECT_NO_THROW(fuzz::CheckUses(bytes)) << name;
}

TEST(Corpus, ChecksPassOnWholeAndDamagedSeeds) {
    const auto seeds = FilesOf("fuzz/corpus");
    ASSERT_FALSE(seeds.empty());
    std::mt19937 random(7);
    for (const auto& [name, seed] : seeds) {
        CheckAll(name, seed);
        for (int variant = 0; variant < 16; ++variant) {
            Bytes bytes = seed;
            const auto change = [&](std::size_t at) { bytes[at] = static_cast<std::uint8_t>(random()); };
            for (int changes = 0; changes < 3; ++changes) change(random() % bytes.size());
            // These choose the name, a longer file, and one that becomes shorter while it is read.
            for (std::size_t at = 1; variant % 2 == 1 && at <= 4; ++at) change(bytes.size() - at);
            if (variant % 4 == 0) bytes.resize(random() % bytes.size() + 1);
            CheckAll(name + " damaged, variant " + std::to_string(variant), bytes);
        }
    }
}

TEST(Corpus, ExtremeNumbersInHeadersAreChecked) {
    for (const auto& [name, seed] : FilesOf("fuzz/corpus")) {
        for (std::size_t at = 0; at + 4 <= std::min<std::size_t>(seed.size(), 1024); at += 4) {
            for (const std::string_view number : {"\xFF\xFF\xFF\x7F", "\xFE\xFF\xFF\xFF", "9999"}) {
                Bytes bytes = seed;
                std::copy(number.begin(), number.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
                EXPECT_NO_THROW(fuzz::CheckReaders(bytes)) << name << " at byte " << at;
            }
        }
    }
}

TEST(Corpus, AnnotationsStayWithinTheirMemory) {
    EdfAnnotations annotations;
    const std::string list = "+1\x14" + std::string(100000, 'x') + "\x14" + std::string(1, '\0');
    while (!annotations.LimitReached()) annotations.Feed(list);
    std::size_t bytes = 0;
    for (const EdfAnnotation& annotation : annotations.All())
        bytes += sizeof annotation + annotation.text.size() * sizeof(char16_t);
    EXPECT_LE(bytes, kAnnotationMemory);
    EXPECT_GT(bytes, kAnnotationMemory / 2);
}

TEST(Corpus, ChecksPassOnDamagedRecordings) {
    const std::filesystem::path recordings = "../shared/recordings";
    if (!std::filesystem::exists(recordings)) GTEST_SKIP() << "no reference recordings beside the project";
    for (const char* folder : {"malformed", "malformed-derived"}) {
        for (const auto& [name, bytes] : FilesOf(recordings / folder)) CheckAll(name, bytes);
    }
}

}  // namespace
}  // namespace quillon
