#include "norvik/private/TableCells.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>

#include "base/Text.h"

namespace quillon {

std::size_t TableCells::ReadAt(std::uint64_t offset, void* buffer, std::size_t count) {
    if (offset >= m_size) return 0;
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, m_size - offset));
    auto* out = static_cast<std::uint8_t*>(buffer);
    const std::uint64_t inMemory = m_file ? m_fileStart : m_size;
    for (std::size_t done = 0; done < count;) {
        const std::uint64_t at = offset + done;
        if (at >= inMemory) {
            m_file->ReadExactly(at - inMemory, out + done, count - done);
            break;
        }
        const auto place = static_cast<std::size_t>(at % kChunkBytes);
        const std::size_t part = std::min({count - done, kChunkBytes - place, static_cast<std::size_t>(inMemory - at)});
        std::memcpy(out + done, m_chunks[static_cast<std::size_t>(at / kChunkBytes)].get() + place, part);
        done += part;
    }
    return count;
}

void TableCells::Append(std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return;
    if (!m_file && m_size + bytes.size() > m_memory) MakeFile();
    if (!m_file) return KeepInMemory(bytes);
    Bilingual error;
    if (!m_sink->Write(std::as_bytes(bytes), error)) throw FormatError(error, ErrorLanguage());
    m_size += bytes.size();
}

void TableCells::KeepInMemory(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto place = static_cast<std::size_t>(m_size % kChunkBytes);
        if (place == 0) m_chunks.push_back(std::make_unique<std::uint8_t[]>(kChunkBytes));
        const std::size_t part = std::min(bytes.size(), kChunkBytes - place);
        std::memcpy(m_chunks.back().get() + place, bytes.data(), part);
        m_size += part;
        bytes = bytes.subspan(part);
    }
}

void TableCells::MakeFile() {
    constexpr int mostNames = 100;
    FileSystem& system = SystemFiles();
    std::error_code none;
    const std::u16string folder = std::filesystem::temp_directory_path(none).u16string();
    Bilingual error = Say(u"there is no temporary folder", u"нет временной папки");
    // A name of a file that is being removed is refused in other ways than one that is taken.
    std::random_device random;
    for (int names = 0; !folder.empty() && names < mostNames; ++names) {
        bool taken = false;
        Place place;
        place.path = (std::filesystem::path(folder) / (u"quillon-table-" + Decimal(random()) + u".tmp")).u16string();
        m_sink = system.CreateNew(place.path, place, taken, error);
        if (!m_sink) continue;
        m_file = OpenFileSource(place.path, error);
        // Both go on without a name, and the file with them, however the program ends.
        system.Remove(place.path);
        if (m_file) {
            m_file->SetErrorLanguage(ErrorLanguage());
            m_fileStart = m_size;
            return;
        }
        m_sink.reset();
        break;
    }
    throw FormatError(error, ErrorLanguage());
}

}  // namespace quillon
