#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "RecordingWriters.h"

namespace quillon::testing {

using FileBytes = samples::Bytes;

/// All bytes of a file.
inline std::string Contents(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A folder of its own, removed with all that is in it.
class TemporaryFolder {
  public:
    TemporaryFolder() : m_path(std::filesystem::temp_directory_path() / ("quillon_" + std::to_string(Seed()))) {
        std::filesystem::create_directories(m_path);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] std::filesystem::path File(const std::u16string& name) const { return m_path / name; }
    std::u16string Write(const std::u16string& name, std::string_view bytes) const {
        std::ofstream(File(name), std::ios::binary) << bytes;
        return File(name).u16string();
    }
    std::u16string Write(const std::u16string& name, const FileBytes& bytes) const { return Write(name, bytes.Get()); }
    [[nodiscard]] std::u16string Path() const { return m_path.u16string(); }

  private:
    static long long Seed() { return std::chrono::steady_clock::now().time_since_epoch().count(); }
    std::filesystem::path m_path;
};

}  // namespace quillon::testing
