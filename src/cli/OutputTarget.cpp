#include "cli/OutputTarget.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "base/Bilingual.h"
#include "base/NativePath.h"
#include "base/SystemText.h"
#include "base/Text.h"
#include "norvik/OutputFile.h"

namespace quillon::cli {

namespace {

namespace fs = std::filesystem;

}  // namespace

Refusal::Refusal(const std::u16string& reason, std::u16string file)
    : std::runtime_error(Utf8(reason)), m_file(std::move(file)) {}

Refusal Refusal::Whole(const std::u16string& text) {
    Refusal refusal(text);
    refusal.m_whole = true;
    return refusal;
}

OutputTarget::OutputTarget(std::ostream& standard, const ParsedArguments& parsed, const std::u16string& recording,
                           Language language)
    : m_standard(standard), m_path(parsed.Value(u"--out")), m_language(language), m_force(parsed.Has(u"--force")) {
    if (m_path.empty()) return;
    std::error_code error;
    if (fs::equivalent(NativePath(m_path), NativePath(recording), error)) {
        throw Refusal(Say(u"this is the recording itself; it is never written over",
                          u"это сама запись; она никогда не заменяется")
                          .In(language),
                      m_path);
    }
    CheckPlace();
}

void OutputTarget::CheckPlace() const {
    const fs::path path = NativePath(m_path);
    std::error_code error;
    // A dangling link counts as an existing file.
    if (m_force || !fs::exists(fs::symlink_status(path, error))) return;
    // Devices are written directly; for a folder the system's own error is reported.
    if (fs::exists(path, error) && !fs::is_regular_file(path, error)) return;
    throw Refusal(Say(u"the file exists (--force replaces it)", u"файл уже есть (--force заменит его)").In(m_language),
                  m_path);
}

void OutputTarget::Open() {
    if (m_path.empty() || m_file) return;
    m_file = MakeOutputFile();
    if (!m_file->Create(m_path)) throw Refusal::Whole(m_file->ErrorText().In(m_language));
}

void OutputTarget::Write(std::span<const char> bytes) {
    Open();
    if (m_file) {
        if (!m_file->Write(std::as_bytes(bytes))) throw Refusal::Whole(m_file->ErrorText().In(m_language));
        return;
    }
    errno = 0;
    m_standard.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!m_standard) CheckStream(m_standard, m_language);
}

void OutputTarget::Finish() {
    Open();
    if (!m_file) return CheckStream(m_standard, m_language);
    // Checked again: a file created at this path meanwhile, e.g. a piece of a split, is not replaced either.
    CheckPlace();
    if (!m_file->Close()) throw Refusal::Whole(m_file->ErrorText().In(m_language));
}

void OutputTarget::CheckStream(std::ostream& stream, Language language) {
    if (stream) errno = 0;
    stream.flush();
    if (stream) return;
    const Bilingual reason = errno != 0 ? ErrnoText(errno) : Say(u"writing failed", u"запись не удалась");
    throw Refusal(reason.In(language), Say(u"standard output", u"стандартный вывод").In(language));
}

}  // namespace quillon::cli
