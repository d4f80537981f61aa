#include "cli/ExportCommand.h"

#include <algorithm>
#include <exception>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "cli/CommandSupport.h"
#include "cli/Interrupt.h"
#include "export/KVExport.h"
#include "norvik/SystemBytes.h"

namespace quillon::cli {

namespace {

/// The command's target as the file that the exporter writes, which is completed with the command. Keeps the refusal of
/// the target.
class TargetFile final : public OutputFile {
  public:
    TargetFile(OutputTarget& target, std::exception_ptr& refusal) : m_target(target), m_refusal(refusal) {}

    bool Create(const std::u16string&) override {
        return Try([&] { m_target.Open(); });
    }
    bool Write(std::span<const std::byte> bytes) override {
        return Try([&] { m_target.Write({reinterpret_cast<const char*>(bytes.data()), bytes.size()}); });
    }
    bool Close() override { return !m_refusal; }
    [[nodiscard]] Bilingual ErrorText() const override { return {}; }

  private:
    template <typename Call>
    bool Try(Call call) {
        try {
            if (!m_refusal) call();
        } catch (const Refusal&) {
            m_refusal = std::current_exception();
        }
        return !m_refusal;
    }

    OutputTarget& m_target;
    std::exception_ptr& m_refusal;
};

/// The type given by --type, else by the extension of the output.
std::int32_t FileType(const ParsedArguments& parsed, Language language) {
    const std::u16string& name = parsed.words[2];
    const std::u16string extension =
        parsed.Has(u"--type") ? u"." + parsed.Value(u"--type") : name.substr(std::min(name.rfind(u'.'), name.size()));
    for (std::int32_t type = 1; type <= KVExport::FileTypeCount(); ++type) {
        if (KVExport::FileTypeExtension(type) == u"*" + extension) return type;
    }
    if (parsed.Has(u"--type")) {
        throw UsageError(u"'" + parsed.Value(u"--type") + u"' is none of bin|wav|edf for --type");
    }
    throw Refusal(Say(u"the extension is none of .bin, .wav, .edf (--type tells the format)",
                      u"расширение не .bin, .wav или .edf (формат задаёт --type)")
                      .In(language),
                  name);
}

}  // namespace

void RunExport(const CommandContext& context) {
    const ParsedArguments& parsed = context.parsed;
    const std::int32_t type = FileType(parsed, context.language);
    const OpenFile file(parsed.words[1], context.language);
    const BlockRange range = FindRange(file.Get(), parsed, context.language);
    SilentServices services;
    std::exception_ptr refusal;
    KVExport exporter(services, {.makeFile = [&] { return std::make_unique<TargetFile>(context.target, refusal); },
                                 .fieldText = SystemBytes,
                                 .language = context.language});
    range.block->Prepare();
    const InterruptScope interrupt;
    exporter.SetProgress([&](std::int32_t, std::int32_t) { return !interrupt.IsAsked(); });
    const bool done =
        exporter.Export(range.block.get(), parsed.words[2], range.samples.first + 1, range.samples.count, type);
    if (refusal) std::rethrow_exception(refusal);
    if (exporter.Stopped()) RefuseInterrupted(context.language);
    if (!done) RefuseExport(exporter, parsed.words[2]);
    const std::u16string loss = DescribeLoss(exporter.Outcome(), context.language);
    if (!loss.empty()) context.error << "quillon-cli: " << Utf8(parsed.words[2]) << ": " << Utf8(loss) << '\n';
}

}  // namespace quillon::cli
