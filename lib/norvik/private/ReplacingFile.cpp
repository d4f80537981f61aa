#include "norvik/private/ReplacingFile.h"

#include <algorithm>
#include <vector>

#include "base/FilePath.h"
#include "base/Text.h"

namespace quillon {

namespace {

constexpr std::size_t kGatheredBytes = std::size_t{256} * 1024;
/// Names that are tried beside a place; each that is taken is one of a program that was killed or is still writing.
constexpr int kMostParts = 10000;

class ReplacingFile final : public OutputFile {
  public:
    explicit ReplacingFile(FileSystem& files) : m_files(files) {}
    ~ReplacingFile() override { Abandon(); }

    bool Create(const std::u16string& fileName) override {
        Abandon();
        m_name = fileName;
        m_error = {};
        std::optional<Place> place = m_files.FindPlace(fileName, m_error);
        if (!place) return Fail();
        m_place = std::move(*place);
        m_sink = std::move(m_place.device);
        if (!m_sink && !CreateBeside()) return Fail();
        m_gathered.reserve(kGatheredBytes);
        return true;
    }

    bool Write(std::span<const std::byte> bytes) override {
        if (!m_sink) return false;
        while (!bytes.empty()) {
            const std::span<const std::byte> part = bytes.first(std::min(bytes.size(), Room()));
            m_gathered.insert(m_gathered.end(), part.begin(), part.end());
            bytes = bytes.subspan(part.size());
            if (Room() == 0 && !Flush()) return Fail();
        }
        return true;
    }

    bool Close() override {
        if (!m_sink || !Flush() || !m_sink->Close(m_error)) return Fail();
        m_sink.reset();
        if (!m_part.empty() && !m_files.Rename(m_part, m_place.path, m_error)) return Fail();
        m_part.clear();
        return true;
    }

    bool AbandonPart() override {
        if (m_sink) GiveUp();
        return m_givenUp && m_givenUp->FreePart();
    }

    [[nodiscard]] Bilingual ErrorText() const override {
        return {m_name + u": " + m_error.english, m_name + u": " + m_error.russian};
    }

  private:
    [[nodiscard]] std::size_t Room() const { return kGatheredBytes - m_gathered.size(); }

    bool CreateBeside() {
        const std::u16string folder = FolderOf(m_place.path);
        for (int number = 1; number <= kMostParts; ++number) {
            const std::u16string part = folder + u"quillon-" + Decimal(number) + u".part";
            bool taken = false;
            m_sink = m_files.CreateNew(part, m_place, taken, m_error);
            if (m_sink) m_part = part;
            if (m_sink || !taken) break;
        }
        return m_sink != nullptr;
    }

    bool Flush() {
        const bool done = m_gathered.empty() || m_sink->Write(m_gathered, m_error);
        m_gathered.clear();
        return done;
    }

    bool Fail() {
        GiveUp();
        return false;
    }

    /// Removes what was begun, but does not free it if it is open.
    void GiveUp() {
        // Under a name that was removed another program may have begun a file by now.
        if (!m_part.empty() && m_files.Remove(m_part)) m_part.clear();
        if (m_sink) m_givenUp = std::move(m_sink);
        m_gathered.clear();
    }

    /// Leaves nothing of what was begun.
    void Abandon() {
        GiveUp();
        m_givenUp.reset();
        // Where it could not be removed while it was open.
        if (!m_part.empty()) m_files.Remove(m_part);
        m_part.clear();
    }

    FileSystem& m_files;
    Place m_place;
    std::unique_ptr<ByteSink> m_sink;
    std::unique_ptr<ByteSink> m_givenUp;  ///< open, but removed
    std::u16string m_name;                ///< as requested
    std::u16string m_part;  ///< where it is written; empty for a device and when there is nothing to remove
    std::vector<std::byte> m_gathered;
    Bilingual m_error;
};

}  // namespace

std::unique_ptr<OutputFile> MakeOutputFileOn(FileSystem& files) {
    return std::make_unique<ReplacingFile>(files);
}

std::unique_ptr<OutputFile> MakeOutputFile() {
    return MakeOutputFileOn(SystemFiles());
}

}  // namespace quillon
