#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "base/DateTime.h"
#include "base/NativePath.h"
#include "base/SystemText.h"
#include "norvik/private/ByteSource.h"

namespace quillon {

namespace {

class FileSource final : public ByteSource {
  public:
    FileSource(int descriptor, const struct stat& status)
        : m_descriptor(descriptor),
          m_size(static_cast<std::uint64_t>(status.st_size)),
          m_modified(LocalDate(status.st_mtime)) {}
    ~FileSource() override { ::close(m_descriptor); }

    [[nodiscard]] std::uint64_t Size() const override { return m_size; }
    [[nodiscard]] double ModifiedTime() const override { return m_modified; }

    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        std::size_t done = 0;
        while (done < count) {
            const auto part = ::pread(m_descriptor, static_cast<char*>(buffer) + done, count - done,
                                      static_cast<off_t>(offset + done));
            if (part < 0 && errno == EINTR) continue;
            if (part < 0) throw ReadError(SystemText(errno), ErrorLanguage());
            if (part == 0) break;
            done += static_cast<std::size_t>(part);
        }
        return done;
    }

  private:
    static double LocalDate(std::time_t time) {
        std::tm local{};
        if (::localtime_r(&time, &local) == nullptr) return 0.0;
        return DateFromCivil(
            {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, 0});
    }

    int m_descriptor;
    std::uint64_t m_size;
    double m_modified;
};

}  // namespace

std::unique_ptr<ByteSource> OpenFileSource(const std::u16string& path, Bilingual& error) {
    // Without O_NONBLOCK, opening a named pipe would wait for its other end.
    const int descriptor = ::open(NativeBytes(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        error = SystemText(errno);
        return nullptr;
    }
    struct stat status {};
    const bool known = ::fstat(descriptor, &status) == 0;
    if (!known || !S_ISREG(status.st_mode)) {
        error = SystemText(known ? (S_ISDIR(status.st_mode) ? EISDIR : EINVAL) : errno);
        ::close(descriptor);
        return nullptr;
    }
    return std::make_unique<FileSource>(descriptor, status);
}

}  // namespace quillon
