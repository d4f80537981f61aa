#include "norvik/TextWriter.h"

#include <span>

#include "norvik/OutputFile.h"

namespace quillon {

namespace {

class TextFile final : public TextSink {
  public:
    TextFile(std::unique_ptr<OutputFile> file, Language language) : m_file(std::move(file)), m_language(language) {}

    void Write(std::string_view text) override {
        if (!m_failed) m_failed = !m_file->Write(std::as_bytes(std::span<const char>(text.data(), text.size())));
    }
    [[nodiscard]] bool Failed() const override { return m_failed; }
    bool AbandonPart() override {
        m_failed = true;
        return m_file->AbandonPart();
    }
    bool Close() override { return !m_failed && m_file->Close(); }
    [[nodiscard]] std::u16string ErrorText() const override { return m_file->ErrorText().In(m_language); }

  private:
    std::unique_ptr<OutputFile> m_file;
    Language m_language;
    bool m_failed = false;
};

}  // namespace

std::unique_ptr<TextSink> CreateTextFile(const std::u16string& fileName, Language language, std::u16string& error) {
    return BeginTextFile(MakeOutputFile(), fileName, language, error);
}

std::unique_ptr<TextSink> BeginTextFile(std::unique_ptr<OutputFile> file, const std::u16string& fileName,
                                        Language language, std::u16string& error) {
    if (file->Create(fileName)) return std::make_unique<TextFile>(std::move(file), language);
    error = file->ErrorText().In(language);
    return nullptr;
}

}  // namespace quillon
