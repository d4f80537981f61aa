#include "base/Text.h"
#include "base/win/Win32.h"
#include "norvik/OutputFile.h"
#include "norvik/win/SystemText.h"

namespace quillon {

namespace {

class FileSink final : public ByteSink {
  public:
    /// Takes the handle over.
    explicit FileSink(HANDLE file) : m_file(file) {}
    ~FileSink() override { static_cast<void>(Close()); }

    [[nodiscard]] bool Write(std::span<const std::byte> bytes) override {
        while (!bytes.empty()) {
            DWORD part = 0;
            if (!::WriteFile(m_file, bytes.data(), static_cast<DWORD>(bytes.size()), &part, nullptr)) return false;
            if (part == 0) return false;
            bytes = bytes.subspan(part);
        }
        return true;
    }

    [[nodiscard]] bool Close() override {
        if (m_file == INVALID_HANDLE_VALUE) return true;
        const HANDLE file = m_file;
        m_file = INVALID_HANDLE_VALUE;
        return ::CloseHandle(file) != 0;
    }

  private:
    HANDLE m_file;
};

}  // namespace

std::unique_ptr<ByteSink> CreateFileSink(const std::u16string& path, std::u16string& error) {
    const std::wstring wide(path.begin(), path.end());
    // Shared with nobody: a file that is open for reading, as the recording itself is, is refused before it is emptied.
    const HANDLE file =
        ::CreateFileW(wide.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        error = SystemText(::GetLastError());
        return nullptr;
    }
    return std::make_unique<FileSink>(file);
}

}  // namespace quillon
