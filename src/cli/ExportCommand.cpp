#include "cli/ExportCommand.h"

#include <exception>

#include "cli/CommandSupport.h"
#include "export/KVExport.h"
#include "norvik/SystemBytes.h"

namespace quillon::cli {

namespace {

/// The command's target as the file that the exporter writes. Keeps the first refusal of the target.
class TargetFile final : public OutputFile {
  public:
    TargetFile(OutputTarget& target, std::exception_ptr& refusal) : m_target(target), m_refusal(refusal) {}

    bool Create(const std::u16string&) override { return true; }
    bool Write(std::span<const std::byte> bytes) override {
        if (!m_refusal) {
            try {
                m_target.Write({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
                return true;
            } catch (const Refusal&) {
                m_refusal = std::current_exception();
            }
        }
        ++m_failures;
        return false;
    }
    bool Close() override { return true; }
    [[nodiscard]] std::u16string ErrorText() const override { return {}; }
    [[nodiscard]] std::size_t FailureCount() const override { return m_failures; }

  private:
    OutputTarget& m_target;
    std::exception_ptr& m_refusal;
    std::size_t m_failures = 0;
};

/// 0 where --type is not given.
std::int32_t FileType(const ParsedArguments& parsed) {
    if (!parsed.Has(u"--type")) return 0;
    const std::u16string pattern = u"*." + parsed.Value(u"--type");
    for (std::int32_t type = 1; type <= KVExport::FileTypeCount(); ++type) {
        if (KVExport::FileTypeExtension(type) == pattern) return type;
    }
    throw UsageError(u"'" + parsed.Value(u"--type") + u"' is none of bin|wav|edf for --type");
}

}  // namespace

void RunExport(const CommandContext& context) {
    const ParsedArguments& parsed = context.parsed;
    const std::int32_t type = FileType(parsed);
    const OpenFile file(parsed.words[1], context.language);
    const BlockRange range = FindRange(file.Get(), parsed, context.language);
    SilentServices services;
    std::exception_ptr refusal;
    KVExport exporter(services, {.makeFile = [&] { return std::make_unique<TargetFile>(context.target, refusal); },
                                 .fieldText = SystemBytes,
                                 .language = context.language});
    const bool done = exporter.Export(range.block.get(), parsed.words[2], range.first, range.count, type);
    if (refusal) std::rethrow_exception(refusal);
    if (!done) throw Refusal(FailureText(exporter), parsed.words[2]);
}

}  // namespace quillon::cli
