#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileSystem.h"

namespace quillon {

/// The bytes of a table's cells as they were read: in memory, and beyond a limit in a file of the system's temporary
/// folder, which is removed at the end.
class TableCells final : public ByteSource {
  public:
    static constexpr std::uint64_t kMemory = std::uint64_t{256} << 20;

    explicit TableCells(std::uint64_t memory = kMemory) : m_memory(memory) {}

    [[nodiscard]] std::uint64_t Size() const override { return m_size; }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override;
    /// Throws FormatError where the temporary file cannot be written; what was appended before stays.
    void Append(std::span<const std::uint8_t> bytes);

  private:
    static constexpr std::size_t kChunkBytes = std::size_t{1} << 20;

    void KeepInMemory(std::span<const std::uint8_t> bytes);
    void MakeFile();

    std::uint64_t m_memory;
    std::uint64_t m_size = 0;
    std::uint64_t m_fileStart = 0;  ///< bytes that are in memory, once there is a file
    std::vector<std::unique_ptr<std::uint8_t[]>> m_chunks;
    std::unique_ptr<ByteSource> m_file;
    std::unique_ptr<ByteSink> m_sink;
};

}  // namespace quillon
