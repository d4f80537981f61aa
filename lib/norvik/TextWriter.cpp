#include "norvik/TextWriter.h"

#include <span>

#include "norvik/OutputFile.h"

namespace quillon {

namespace {

class TextFile final : public TextSink {
  public:
    explicit TextFile(std::unique_ptr<OutputFile> file) : m_file(std::move(file)) {}

    void Write(std::string_view text) override {
        m_file->Write(std::as_bytes(std::span<const char>(text.data(), text.size())));
    }
    [[nodiscard]] bool Failed() const override { return m_file->FailureCount() != 0; }
    bool Close() override { return m_file->Close() && m_file->FailureCount() == 0; }

  private:
    std::unique_ptr<OutputFile> m_file;
};

}  // namespace

std::unique_ptr<TextSink> CreateTextFile(const std::u16string& fileName, std::u16string& error) {
    std::unique_ptr<OutputFile> file = MakeOutputFile();
    if (!file->Create(fileName)) {
        error = file->ErrorText();
        return nullptr;
    }
    return std::make_unique<TextFile>(std::move(file));
}

}  // namespace quillon
