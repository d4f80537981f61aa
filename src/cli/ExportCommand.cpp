#include "cli/ExportCommand.h"

#include <exception>
#include <limits>

#include "cli/CommandSupport.h"
#include "export/KVExport.h"

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

/// The exporter's message becomes the refusal; there is nobody else to tell.
class SilentServices final : public UserServices {
  public:
    void ShowMessage(const std::u16string&) override {}
    void SetStatus(const std::u16string&) override {}
    [[nodiscard]] std::u16string Text(int) const override { return {}; }
    [[nodiscard]] std::u16string LongTime(double) const override { return {}; }
    [[nodiscard]] std::u16string DateAndTime(double) const override { return {}; }
};

std::int64_t WholeOption(const ParsedArguments& parsed, std::u16string_view name, std::int64_t otherwise) {
    return parsed.Has(name) ? WholeNumber(parsed.Value(name), name) : otherwise;
}

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
    const std::int64_t number = WholeOption(parsed, u"--block", 1);
    const std::int64_t first = WholeOption(parsed, u"--first", 1);
    const std::int64_t count = WholeOption(parsed, u"--count", std::numeric_limits<std::int32_t>::max());
    const OpenFile file(parsed.words[1], context.language);
    const std::shared_ptr<RecordingBlock> block = FindChannel(file.Get(), number, 1, context.language).block;
    const std::int64_t samples = block->SampleCount();
    // A script that asks for what is not there has a mistake in it; the viewer's own rules would take what there is.
    if (first < 1 || first > samples) {
        RefuseRange(context.language, u"there is no sample %1 (samples %2 to %3)",
                    u"нет отсчёта %1 (отсчёты с %2 по %3)", first, 1, samples);
    }
    if (parsed.Has(u"--count") && (count < 1 || count > samples - first + 1)) {
        RefuseRange(context.language, u"a count of %1 does not fit (counts %2 to %3 from there)",
                    u"количество %1 не помещается (отсюда от %2 до %3)", count, 1, samples - first + 1);
    }

    SilentServices services;
    std::exception_ptr refusal;
    KVExport exporter(services, {[&] { return std::make_unique<TargetFile>(context.target, refusal); }});
    const bool done = exporter.Export(block.get(), parsed.words[2], static_cast<std::int32_t>(first),
                                      static_cast<std::int32_t>(count), type);
    if (refusal) std::rethrow_exception(refusal);
    if (!done) throw Refusal(exporter.LastError(), parsed.words[2]);
}

}  // namespace quillon::cli
