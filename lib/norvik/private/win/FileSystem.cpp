#include "norvik/private/FileSystem.h"

#include <utility>

#include "base/SystemText.h"
#include "base/win/SystemPath.h"
#include "base/win/Win32.h"
#include "norvik/OutputFile.h"

namespace quillon {

namespace {

class FileSink final : public ByteSink {
  public:
    /// Takes the handle over. With `durable` Write and Close wait for the disk, as CreateNew tells.
    explicit FileSink(HANDLE file, bool durable = false) : m_file(file), m_durable(durable) {}
    ~FileSink() override {
        if (m_file != INVALID_HANDLE_VALUE) ::CloseHandle(m_file);
    }

    [[nodiscard]] bool Write(std::span<const std::byte> bytes, Bilingual& error) override {
        while (!bytes.empty()) {
            DWORD part = 0;
            const bool done = ::WriteFile(m_file, bytes.data(), static_cast<DWORD>(bytes.size()), &part, nullptr) != 0;
            if (!done || part == 0) {
                error = SystemText(done ? ERROR_DISK_FULL : ::GetLastError());
                return false;
            }
            bytes = bytes.subspan(part);
            m_unflushed += part;
        }
        if (!m_durable || m_unflushed < kFlushedBytes) return true;
        m_unflushed = 0;
        if (::FlushFileBuffers(m_file) != 0) return true;
        error = SystemText(::GetLastError());
        return false;
    }

    [[nodiscard]] bool Close(Bilingual& error) override {
        const HANDLE file = std::exchange(m_file, INVALID_HANDLE_VALUE);
        if (file == INVALID_HANDLE_VALUE) return true;
        const DWORD flushed = m_durable && !::FlushFileBuffers(file) ? ::GetLastError() : ERROR_SUCCESS;
        const DWORD closed = ::CloseHandle(file) == 0 ? ::GetLastError() : ERROR_SUCCESS;
        if (flushed == ERROR_SUCCESS && closed == ERROR_SUCCESS) return true;
        error = SystemText(flushed != ERROR_SUCCESS ? flushed : closed);
        return false;
    }

    [[nodiscard]] bool FreePart() override {
        LARGE_INTEGER rest{};
        if (!::GetFileSizeEx(m_file, &rest)) return false;
        rest.QuadPart -= kFreedBytes;
        return rest.QuadPart > 0 && ::SetFilePointerEx(m_file, rest, nullptr, FILE_BEGIN) && ::SetEndOfFile(m_file);
    }

  private:
    HANDLE m_file;
    bool m_durable;
    std::size_t m_unflushed = 0;  ///< bytes
};

class WindowsFiles final : public FileSystem {
  public:
    [[nodiscard]] std::optional<Place> FindPlace(const std::u16string& path, Bilingual& error) override {
        Place place;
        place.path = path;
        // No sharing: a file that is open for reading, as the recording itself is, is refused. Renaming over it
        // could succeed, as our readers let files be renamed and deleted.
        const HANDLE file = ::CreateFileW(SystemPath(path).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            const DWORD number = ::GetLastError();
            if (number == ERROR_FILE_NOT_FOUND) return place;
            error = SystemText(number);
            return std::nullopt;
        }
        if (::GetFileType(file) == FILE_TYPE_DISK) {
            place.replaces = true;
            ::CloseHandle(file);
            // Below Wine an administrator can open a write-protected file for writing; it is meant to stay.
            const DWORD attributes = ::GetFileAttributesW(SystemPath(path).c_str());
            if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
                error = SystemText(ERROR_ACCESS_DENIED);
                return std::nullopt;
            }
        } else {
            place.device = std::make_unique<FileSink>(file);
        }
        return place;
    }

    [[nodiscard]] std::unique_ptr<ByteSink> CreateNew(const std::u16string& path, const Place& place, bool& taken,
                                                      Bilingual& error) override {
        // Shared for deletion, so that it can be removed while it is open.
        const HANDLE file = ::CreateFileW(SystemPath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                          nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        taken = file == INVALID_HANDLE_VALUE && ::GetLastError() == ERROR_FILE_EXISTS;
        if (file == INVALID_HANDLE_VALUE) {
            error = SystemText(::GetLastError());
            return nullptr;
        }
        return std::make_unique<FileSink>(file, place.replaces);
    }

    [[nodiscard]] bool Rename(const std::u16string& from, const std::u16string& to, Bilingual& error) override {
        if (::MoveFileExW(SystemPath(from).c_str(), SystemPath(to).c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
        error = SystemText(::GetLastError());
        return false;
    }

    bool Remove(const std::u16string& path) override { return ::DeleteFileW(SystemPath(path).c_str()) != 0; }
};

}  // namespace

FileSystem& SystemFiles() {
    static WindowsFiles files;
    return files;
}

bool FileExists(const std::u16string& path) {
    return ::GetFileAttributesW(SystemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace quillon
