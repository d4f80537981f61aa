#include "norvik/private/FileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <string>
#include <utility>

#include "base/NativePath.h"
#include "base/SystemText.h"
#include "norvik/OutputFile.h"

namespace quillon {

namespace {

class FileSink final : public ByteSink {
  public:
    /// Takes the descriptor over. With `durable` Write and Close wait for the disk, as CreateNew tells.
    explicit FileSink(int descriptor, bool durable = false) : m_descriptor(descriptor), m_durable(durable) {}
    ~FileSink() override {
        if (m_descriptor >= 0) ::close(m_descriptor);
    }

    [[nodiscard]] bool Write(std::span<const std::byte> bytes, Bilingual& error) override {
        while (!bytes.empty()) {
            const auto part = ::write(m_descriptor, bytes.data(), bytes.size());
            if (part < 0 && errno == EINTR) continue;
            if (part <= 0) {
                error = SystemText(part < 0 ? errno : ENOSPC);
                return false;
            }
            bytes = bytes.subspan(static_cast<std::size_t>(part));
            m_unflushed += static_cast<std::size_t>(part);
        }
        if (!m_durable || m_unflushed < kFlushedBytes) return true;
        m_unflushed = 0;
        if (::fsync(m_descriptor) == 0) return true;
        error = SystemText(errno);
        return false;
    }

    [[nodiscard]] bool Close(Bilingual& error) override {
        const int descriptor = std::exchange(m_descriptor, -1);
        if (descriptor < 0) return true;
        const int synced = m_durable && ::fsync(descriptor) != 0 ? errno : 0;
        const int closed = ::close(descriptor) != 0 ? errno : 0;
        if (synced == 0 && closed == 0) return true;
        error = SystemText(synced != 0 ? synced : closed);
        return false;
    }

    [[nodiscard]] bool FreePart() override {
        const std::int64_t rest = ::lseek(m_descriptor, 0, SEEK_END) - kFreedBytes;
        return rest > 0 && ::ftruncate(m_descriptor, rest) == 0;
    }

  private:
    int m_descriptor;
    bool m_durable;
    std::size_t m_unflushed = 0;  ///< bytes
};

/// Follows links, also one that leads to nothing yet, as opening a file for writing would. False, with the reason in
/// errno, for links in a circle.
bool FollowLinks(std::string& path) {
    constexpr int mostLinks = 40;  // as many as the system follows
    for (int link = 0; link < mostLinks; ++link) {
        char target[PATH_MAX];
        const auto size = ::readlink(path.c_str(), target, sizeof target);
        if (size < 0) return errno == EINVAL || errno == ENOENT;  // no link, or nothing there
        const std::string next(target, static_cast<std::size_t>(size));
        const std::size_t name = path.rfind('/');
        const bool absolute = next.starts_with('/') || name == std::string::npos;
        path = absolute ? next : path.substr(0, name + 1) + next;
    }
    errno = ELOOP;
    return false;
}

class PosixFiles final : public FileSystem {
  public:
    [[nodiscard]] std::optional<Place> FindPlace(const std::u16string& path, Bilingual& error) override {
        const auto refuse = [&](int number) {
            error = SystemText(number);
            return std::nullopt;
        };
        Place place;
        std::string native = NativeBytes(path);
        struct stat status {};
        const bool exists = ::stat(native.c_str(), &status) == 0;
        if (!exists && errno != ENOENT) return refuse(errno);
        if (exists && (S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode))) {
            const int descriptor = ::open(native.c_str(), O_WRONLY | O_CLOEXEC);
            if (descriptor < 0) return refuse(errno);
            place.device = std::make_unique<FileSink>(descriptor);
            return place;
        }
        if (exists && !S_ISREG(status.st_mode)) return refuse(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
        // Root may write any file; still refuse one without any write permission, as it is meant to be kept.
        constexpr mode_t anyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
        if (exists && (status.st_mode & anyWrite) == 0) return refuse(EACCES);
        if (exists && ::access(native.c_str(), W_OK) != 0) return refuse(errno);
        if (!FollowLinks(native)) return refuse(errno);
        place.path = FromNativeBytes(native);
        place.replaces = exists;
        place.mode = status.st_mode & 07777U;
        place.owner = status.st_uid;
        place.group = status.st_gid;
        return place;
    }

    [[nodiscard]] std::unique_ptr<ByteSink> CreateNew(const std::u16string& path, const Place& place, bool& taken,
                                                      Bilingual& error) override {
        constexpr mode_t usual = 0666;  // less what the user's mask takes away
        constexpr mode_t own = 0600;
        const int descriptor =
            ::open(NativeBytes(path).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, place.replaces ? own : usual);
        taken = descriptor < 0 && errno == EEXIST;
        if (descriptor < 0) {
            error = SystemText(errno);
            return nullptr;
        }
        if (place.replaces) {
            // Only the administrator can give files away; a change of owner takes bits of the mode, so that comes last.
            const bool given = ::fchown(descriptor, place.owner, place.group) == 0;
            static_cast<void>(given || ::fchown(descriptor, static_cast<uid_t>(-1), place.group) == 0);
            static_cast<void>(::fchmod(descriptor, place.mode));
        }
        return std::make_unique<FileSink>(descriptor, place.replaces);
    }

    [[nodiscard]] bool Rename(const std::u16string& from, const std::u16string& to, Bilingual& error) override {
        if (::rename(NativeBytes(from).c_str(), NativeBytes(to).c_str()) == 0) return true;
        error = SystemText(errno);
        return false;
    }

    bool Remove(const std::u16string& path) override { return ::unlink(NativeBytes(path).c_str()) == 0; }
};

}  // namespace

FileSystem& SystemFiles() {
    static PosixFiles files;
    return files;
}

bool FileExists(const std::u16string& path) {
    struct stat status {};
    return ::lstat(NativeBytes(path).c_str(), &status) == 0;
}

}  // namespace quillon
