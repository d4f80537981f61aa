#include "cli/OutputTarget.h"

#include "base/Text.h"

namespace quillon::cli {

namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kWriteFailed = u"writing failed (is the disk full or the pipe closed?)";

}  // namespace

Refusal::Refusal(const std::u16string& reason, std::u16string file)
    : std::runtime_error(Utf8(reason)), m_file(std::move(file)) {}

OutputTarget::OutputTarget(std::ostream& standard, const ParsedArguments& parsed, const std::u16string& recording)
    : m_standard(standard), m_path(parsed.Value(u"--out")), m_force(parsed.Has(u"--force")) {
    if (m_path.empty()) return;
    const fs::path path(m_path);
    std::error_code error;
    if (fs::equivalent(path, fs::path(recording), error)) {
        throw Refusal(u"this is the recording itself; it is never written over", m_path);
    }
    m_device = fs::is_character_file(path, error);
    CheckPlace();
}

OutputTarget::~OutputTarget() {
    if (m_finished || m_device || !m_file.is_open()) return;
    m_file.close();
    std::error_code error;
    fs::remove(fs::path(m_partPath), error);
}

void OutputTarget::CheckPlace() const {
    if (m_path.empty() || m_device) return;
    const fs::path path(m_path);
    std::error_code error;
    // A link stands in the place even if it leads nowhere.
    if (!fs::exists(fs::symlink_status(path, error))) return;
    if (fs::exists(path, error) && !fs::is_regular_file(path, error)) throw Refusal(u"this is not a file", m_path);
    if (!m_force) throw Refusal(u"the file exists (--force replaces it)", m_path);
}

std::ostream& OutputTarget::Stream() {
    if (m_path.empty()) return m_standard;
    if (!m_file.is_open()) {
        m_partPath = m_device ? m_path : m_path + u".part";
        std::error_code error;
        for (int number = 2; !m_device && fs::exists(fs::symlink_status(fs::path(m_partPath), error)); ++number) {
            m_partPath = m_path + u".part" + Decimal(number);
        }
        m_file.open(fs::path(m_partPath), std::ios::binary | std::ios::trunc);
        if (!m_file) throw Refusal(u"the file cannot be created", m_path);
    }
    return m_file;
}

void OutputTarget::Write(std::span<const char> bytes) {
    std::ostream& stream = Stream();
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream) throw Refusal(std::u16string(kWriteFailed), m_path);
}

void OutputTarget::Finish() {
    std::ostream& stream = Stream();
    stream.flush();
    if (!stream) throw Refusal(std::u16string(kWriteFailed), m_path);
    if (!m_path.empty() && !m_device) {
        // What has come into the place meanwhile, a piece of a split for one, is not replaced either.
        CheckPlace();
        m_file.close();
        std::error_code error;
        fs::rename(fs::path(m_partPath), fs::path(m_path), error);
        if (error) {
            fs::remove(fs::path(m_partPath), error);
            throw Refusal(u"the file cannot be replaced", m_path);
        }
    }
    m_finished = true;
}

void OutputTarget::CheckStream(std::ostream& stream) {
    stream.flush();
    if (!stream) throw Refusal(std::u16string(kWriteFailed));
}

}  // namespace quillon::cli
