#include "norvik/OutputFile.h"

#include <algorithm>
#include <vector>

namespace quillon {

namespace {

constexpr std::size_t kGatheredBytes = 256 * 1024;

class GatheringFile final : public OutputFile {
  public:
    ~GatheringFile() override { Close(); }

    bool Create(const std::u16string& fileName) override {
        Close();
        m_failures = 0;
        m_failed = false;
        m_error.clear();
        m_sink = CreateFileSink(fileName, m_error);
        if (!m_sink) m_error = fileName + u": " + m_error;
        if (m_sink) m_gathered.reserve(kGatheredBytes);
        return m_sink != nullptr;
    }

    bool Write(std::span<const std::byte> bytes) override {
        bool done = m_sink != nullptr && !m_failed;
        while (done && !bytes.empty()) {
            const std::span<const std::byte> part = bytes.first(std::min(bytes.size(), Room()));
            m_gathered.insert(m_gathered.end(), part.begin(), part.end());
            bytes = bytes.subspan(part.size());
            if (Room() == 0) done = Flush();
        }
        if (!done) ++m_failures;
        return done;
    }

    bool Close() override {
        if (!m_sink) return true;
        const bool flushed = !m_failed && Flush();
        const bool closed = m_sink->Close();
        m_sink.reset();
        if (!flushed || !closed) ++m_failures;
        return flushed && closed;
    }

    [[nodiscard]] std::u16string ErrorText() const override { return m_error; }
    [[nodiscard]] std::size_t FailureCount() const override { return m_failures; }

  private:
    [[nodiscard]] std::size_t Room() const { return kGatheredBytes - m_gathered.size(); }

    bool Flush() {
        m_failed = !m_gathered.empty() && !m_sink->Write(m_gathered);
        m_gathered.clear();
        return !m_failed;
    }

    std::unique_ptr<ByteSink> m_sink;
    std::vector<std::byte> m_gathered;
    std::u16string m_error;
    std::size_t m_failures = 0;
    bool m_failed = false;
};

}  // namespace

std::unique_ptr<OutputFile> MakeOutputFile() {
    return std::make_unique<GatheringFile>();
}

}  // namespace quillon
