#include "cli/OutputTarget.h"

#include "base/Text.h"

namespace quillon::cli {

namespace {

constexpr std::u16string_view kWriteFailed = u"writing failed (is the disk full or the pipe closed?)";

}  // namespace

Refusal::Refusal(const std::u16string& reason, std::u16string file)
    : std::runtime_error(Utf8(reason)), m_file(std::move(file)) {}

OutputTarget::OutputTarget(std::ostream& standard, const ParsedArguments& parsed, const std::u16string& recording)
    : m_standard(standard), m_path(parsed.Value(u"--out")) {
    if (m_path.empty()) return;
    const std::filesystem::path path(m_path);
    std::error_code error;
    const bool exists = std::filesystem::exists(path, error);
    if (exists && std::filesystem::equivalent(path, std::filesystem::path(recording), error)) {
        throw Refusal(u"this is the recording itself; it is never written over", m_path);
    }
    if (exists && !std::filesystem::is_regular_file(path, error)) throw Refusal(u"this is not a file", m_path);
    if (exists && !parsed.Has(u"--force")) throw Refusal(u"the file exists (--force replaces it)", m_path);
}

OutputTarget::~OutputTarget() {
    if (m_finished || !m_file.is_open()) return;
    m_file.close();
    std::error_code error;
    std::filesystem::remove(std::filesystem::path(m_partPath), error);
}

std::ostream& OutputTarget::Stream() {
    if (m_path.empty()) return m_standard;
    if (!m_file.is_open()) {
        m_partPath = m_path + u".part";
        std::error_code error;
        for (int number = 2; std::filesystem::exists(std::filesystem::path(m_partPath), error); ++number) {
            m_partPath = m_path + u".part" + Decimal(number);
        }
        m_file.open(std::filesystem::path(m_partPath), std::ios::binary | std::ios::trunc);
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
    if (!m_path.empty()) {
        m_file.close();
        std::error_code error;
        std::filesystem::rename(std::filesystem::path(m_partPath), std::filesystem::path(m_path), error);
        if (error) {
            std::filesystem::remove(std::filesystem::path(m_partPath), error);
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
