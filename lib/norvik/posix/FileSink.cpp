#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/Text.h"
#include "norvik/OutputFile.h"

namespace quillon {

namespace {

class FileSink final : public ByteSink {
  public:
    explicit FileSink(int descriptor) : m_descriptor(descriptor) {}
    ~FileSink() override { static_cast<void>(Close()); }

    [[nodiscard]] bool Write(std::span<const std::byte> bytes) override {
        while (!bytes.empty()) {
            const auto part = ::write(m_descriptor, bytes.data(), bytes.size());
            if (part < 0 && errno == EINTR) continue;
            if (part <= 0) return false;
            bytes = bytes.subspan(static_cast<std::size_t>(part));
        }
        return true;
    }

    [[nodiscard]] bool Close() override {
        if (m_descriptor < 0) return true;
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return ::close(descriptor) == 0;
    }

  private:
    int m_descriptor;
};

}  // namespace

std::unique_ptr<ByteSink> CreateFileSink(const std::u16string& path, std::u16string& error) {
    const int descriptor = ::open(Utf8(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        error = Utf16(std::generic_category().message(errno));
        return nullptr;
    }
    return std::make_unique<FileSink>(descriptor);
}

}  // namespace quillon
