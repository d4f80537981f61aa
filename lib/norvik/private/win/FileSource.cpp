#include <algorithm>

#include "base/DateTime.h"
#include "base/SystemText.h"
#include "base/Text.h"
#include "base/win/SystemPath.h"
#include "base/win/Win32.h"
#include "norvik/private/ByteSource.h"

namespace quillon {

namespace {

double LocalDate(const FILETIME& time) {
    SYSTEMTIME universal{};
    SYSTEMTIME local{};
    if (!::FileTimeToSystemTime(&time, &universal)) return 0.0;
    // By the daylight saving rule of the file's own date, not of today.
    if (!::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local)) return 0.0;
    return DateFromCivil({local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond, 0});
}

class FileSource final : public ByteSource {
  public:
    /// Takes the handle over.
    FileSource(HANDLE file, std::uint64_t size, double modified) : m_file(file), m_size(size), m_modified(modified) {}
    ~FileSource() override { ::CloseHandle(m_file); }

    [[nodiscard]] std::uint64_t Size() const override { return m_size; }
    [[nodiscard]] double ModifiedTime() const override { return m_modified; }

    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        constexpr std::size_t most = std::size_t{1} << 30;
        LARGE_INTEGER position{};
        position.QuadPart = static_cast<LONGLONG>(offset);
        if (!::SetFilePointerEx(m_file, position, nullptr, FILE_BEGIN)) Fail();
        std::size_t done = 0;
        while (done < count) {
            const auto wanted = static_cast<DWORD>(std::min(count - done, most));
            DWORD part = 0;
            if (!::ReadFile(m_file, static_cast<char*>(buffer) + done, wanted, &part, nullptr)) Fail();
            if (part == 0) break;
            done += part;
        }
        return done;
    }

  private:
    [[noreturn]] void Fail() const { throw ReadError(SystemText(::GetLastError()), ErrorLanguage()); }

    HANDLE m_file;
    std::uint64_t m_size;
    double m_modified;
};

}  // namespace

std::unique_ptr<ByteSource> OpenFileSource(const std::u16string& path, Bilingual& error) {
    // A folder opened this way is refused by the system: "access is denied".
    const HANDLE file =
        ::CreateFileW(SystemPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        error = SystemText(::GetLastError());
        return nullptr;
    }
    // A device or a pipe has no size and may keep a reader waiting.
    if (::GetFileType(file) != FILE_TYPE_DISK) {
        error = Say(u"not a file", u"это не файл");
        ::CloseHandle(file);
        return nullptr;
    }
    BY_HANDLE_FILE_INFORMATION information{};
    const bool known = ::GetFileInformationByHandle(file, &information) != 0;
    const bool isFolder = known && (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    LARGE_INTEGER size{};
    if (!known || isFolder || !::GetFileSizeEx(file, &size)) {
        error = SystemText(isFolder ? ERROR_ACCESS_DENIED : ::GetLastError());
        ::CloseHandle(file);
        return nullptr;
    }
    return std::make_unique<FileSource>(file, static_cast<std::uint64_t>(size.QuadPart),
                                        LocalDate(information.ftLastWriteTime));
}

}  // namespace quillon
