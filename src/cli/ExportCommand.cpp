#include "cli/ExportCommand.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "cli/CommandSupport.h"
#include "cli/EdfPlusOptions.h"
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
        throw UsageError(u"'" + parsed.Value(u"--type") + u"' is none of bin|wav|edf|edf+ for --type");
    }
    throw Refusal(Say(u"the extension is none of .bin, .wav, .edf (--type tells the format)",
                      u"расширение не .bin, .wav или .edf (формат задаёт --type)")
                      .In(language),
                  name);
}

}  // namespace

void RunExport(const CommandContext& context) {
    const ParsedArguments& parsed = context.parsed;
    EdfPlusOrder edfPlus(parsed, context.language);
    const std::int32_t type = edfPlus.IsWanted() ? 0 : FileType(parsed, context.language);
    const OpenFile file(parsed.words[1], context.language);
    BlockRange range = FindRange(file.Get(), parsed, context.language);
    SilentServices services;
    std::exception_ptr refusal;
    KVExport exporter(services, {.makeFile = [&] { return std::make_unique<TargetFile>(context.target, refusal); },
                                 .fieldText = SystemBytes,
                                 .language = context.language});
    if (edfPlus.IsWanted()) range.block = edfPlus.Show(std::move(range.block));
    range.block->Prepare();
    const InterruptScope interrupt;
    exporter.SetProgress([&](std::int32_t, std::int32_t) { return !interrupt.IsAsked(); });
    const std::u16string& name = parsed.words[2];
    bool done = false;
    if (edfPlus.IsWanted()) {
        EdfPlusRequest request = edfPlus.Request();
        request.first = range.samples.first + 1;
        request.count = range.samples.count;
        done = exporter.ExportEdfPlus(range.block.get(), name, request);
    } else {
        done = exporter.Export(range.block.get(), name, range.samples.first + 1, range.samples.count, type);
    }
    if (refusal) std::rethrow_exception(refusal);
    if (exporter.Stopped()) RefuseInterrupted(context.language);
    if (!done) RefuseExport(exporter, name);
    WarnOfLoss(exporter, name, context);
}

}  // namespace quillon::cli
