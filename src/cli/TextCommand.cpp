#include "cli/TextCommand.h"

#include <exception>

#include "cli/CommandSupport.h"
#include "cli/Interrupt.h"
#include "export/QL_Export.h"

namespace quillon::cli {

namespace {

/// The command's target as the text that the export writes. Keeps the first refusal of the target.
class TargetText final : public TextSink {
  public:
    TargetText(OutputTarget& target, std::exception_ptr& refusal) : m_target(target), m_refusal(refusal) {}
    void Write(std::string_view text) override {
        if (m_refusal) return;
        try {
            m_target.Write(text);
        } catch (const Refusal&) {
            m_refusal = std::current_exception();
        }
    }
    [[nodiscard]] bool Failed() const override { return m_refusal != nullptr; }
    bool Close() override { return !m_refusal; }

  private:
    OutputTarget& m_target;
    std::exception_ptr& m_refusal;
};

void TakeHeader(const ParsedArguments& parsed, TextExportRequest& request) {
    if (!parsed.Has(u"--header")) return;
    for (const std::u16string& word : SplitAtCommas(parsed.Value(u"--header"))) {
        bool* const flag = word == u"size"     ? &request.rowOfSize
                           : word == u"rate"   ? &request.rowOfRate
                           : word == u"step"   ? &request.rowOfStep
                           : word == u"titles" ? &request.titleRow
                                               : nullptr;
        if (flag == nullptr) throw UsageError(u"'" + word + u"' is none of size,rate,step,titles for --header");
        *flag = true;
    }
}

}  // namespace

void RunText(const CommandContext& context) {
    const ParsedArguments& parsed = context.parsed;
    TextExportRequest request;
    TakeHeader(parsed, request);
    const std::u16string x = parsed.Value(u"--x");
    request.xColumn = parsed.Has(u"--x");
    request.xFormat = x == u"index" ? 1 : 0;
    if (request.xColumn && x != u"index" && x != u"time")
        throw UsageError(u"'" + x + u"' is none of time|index for --x");
    request.rawCodes = parsed.Has(u"--codes");

    const OpenFile file(parsed.words[1], context.language);
    const BlockRange range = FindRange(file.Get(), parsed, context.language);
    request.first = range.samples.first + 1;
    request.count = range.samples.count;
    request.target = parsed.words[2];
    ChannelSlots slots;
    for (const std::int16_t channel : ChosenChannels(parsed, *range.block, context.language)) {
        request.channels.push_back(range.block->ChannelNumber(channel));
        slots[static_cast<std::size_t>(request.channels.back())].title = range.block->ChannelTitle(channel);
    }
    SilentServices services;
    const FormatOptions format;
    std::exception_ptr refusal;
    TextExportContext text{slots, format, request.rawCodes, services, [&](const std::u16string&, std::u16string&) {
                               return std::make_unique<TargetText>(context.target, refusal);
                           }};
    text.utf8Mark = !context.target.IsStandard();
    if (context.target.IsStandard()) text.lineEnd = context.lineEnd;
    range.block->Prepare();
    const InterruptScope interrupt;
    text.runPending = [&] { return !interrupt.IsAsked(); };
    WriteTextExport(*range.block, request, text);
    if (refusal) std::rethrow_exception(refusal);
    if (text.stopped) RefuseInterrupted(context.language);
}

}  // namespace quillon::cli
