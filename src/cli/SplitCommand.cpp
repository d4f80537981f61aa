#include "cli/SplitCommand.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "base/Bilingual.h"
#include "base/NativePath.h"
#include "base/SystemText.h"
#include "base/Text.h"
#include "cli/CommandSupport.h"
#include "cli/EdfPlusOptions.h"
#include "cli/Interrupt.h"
#include "export/SplitPlan.h"
#include "export/SplitRun.h"
#include "norvik/OutputFile.h"
#include "norvik/SystemBytes.h"

namespace quillon::cli {

namespace {

namespace fs = std::filesystem;

const std::u16string& Required(const ParsedArguments& parsed, const std::u16string& name) {
    const auto found = parsed.options.find(name);
    if (found == parsed.options.end()) throw UsageError(u"'split' needs " + name);
    return found->second;
}

std::int32_t Samples(const ParsedArguments& parsed, const std::u16string& name, const std::u16string& text,
                     double rate) {
    const bool seconds = parsed.Has(u"--seconds");
    const SplitEntry entry = seconds ? ParseSplitSeconds(text, rate) : ParseSplitSamples(text);
    if (entry.fault == EntryFault::TooLarge) throw UsageError(u"'" + text + u"' is too large for " + name);
    if (entry.fault == EntryFault::None) return entry.samples;
    throw UsageError(u"'" + text + u"' is not a positive " + (seconds ? u"number" : u"whole number") + u" for " + name);
}

SplitPlan MakePlan(const ParsedArguments& parsed, const RecordingBlock& block) {
    SplitPlan plan;
    const std::u16string& size = Required(parsed, u"--size");
    const std::u16string names = parsed.Value(u"--names", u"index");
    const std::u16string base = parsed.Value(u"--base");
    if (names != u"index" && names != u"samples") {
        throw UsageError(u"'" + names + u"' is none of index|samples for --names");
    }
    if (base.find_first_of(u"/\\:") != std::u16string::npos) {
        throw UsageError(u"'" + base + u"' is a path, not a name for --base");
    }
    plan.blockSamples = block.SampleCount();
    plan.size = Samples(parsed, u"--size", size, block.SampleRate());
    plan.step = Samples(parsed, u"--step", parsed.Value(u"--step", size), block.SampleRate());
    plan.sampleNames = names == u"samples";
    if (!base.empty()) plan.prefix = base + u'_';
    plan.edfPlus = parsed.Has(u"--type");
    plan.extension = plan.edfPlus ? u"edf" : SplitExtension(parsed.words[1]);
    return plan;
}

[[noreturn]] void Refuse(const CommandContext& context, const Bilingual& reason, const fs::path& path) {
    throw Refusal(reason.In(context.language), FromNativePath(path));
}

/// Throws the Refusal with the system's reason.
[[noreturn]] void RefuseFolder(const CommandContext& context, std::u16string_view english, std::u16string_view russian,
                               const std::error_code& error, const fs::path& folder) {
    const Bilingual reason = SystemText(error);
    Refuse(context,
           {std::u16string(english) + u": " + reason.english, std::u16string(russian) + u": " + reason.russian},
           folder);
}

/// Throws Refusal where the list of the pieces has the path of one of them.
void CheckList(const CommandContext& context, const SplitPlan& plan, const fs::path& folder) {
    if (context.target.IsStandard()) return;
    const fs::path list = NativePath(context.parsed.Value(u"--out"));
    std::error_code error;
    // Without regard to letter case, as on some systems: the folder may not exist yet, so the system cannot be asked.
    const auto place = [&](const fs::path& path) {
        return LowerCase(FromNativePath(fs::weakly_canonical(fs::absolute(path, error), error)));
    };
    const fs::path name = list.filename();
    if (plan.PieceOf(FromNativePath(name)) && place(list) == place(folder / name)) {
        Refuse(context, Say(u"this is the place of a piece", u"это место одной из частей"), list);
    }
}

/// Throws Refusal where a piece's file exists that must not or may not be replaced.
void CheckReplaced(const CommandContext& context, const SplitPlan& plan, const fs::path& folder) {
    std::error_code error;
    CheckList(context, plan, folder);
    if (!fs::exists(folder, error)) return;
    if (!fs::is_directory(folder, error)) Refuse(context, Say(u"this is not a folder", u"это не папка"), folder);
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::optional<std::int64_t> piece = plan.PieceOf(FromNativePath(entry->path().filename()));
        if (!piece) continue;
        // Another letter case is another file on some systems.
        const fs::path path = folder / NativePath(plan.Name(*piece));
        std::error_code ignored;
        const fs::file_status status = fs::symlink_status(path, ignored);
        if (!fs::exists(status)) continue;
        if (fs::equivalent(path, NativePath(context.parsed.words[1]), ignored)) {
            Refuse(context,
                   Say(u"this is the recording itself; it is never written over",
                       u"это сама запись; она никогда не заменяется"),
                   path);
        }
        // The writer would follow a link, wherever it leads.
        if (!fs::is_regular_file(status)) Refuse(context, Say(u"this is not a file", u"это не файл"), path);
        if (!context.parsed.Has(u"--force")) {
            Refuse(context, Say(u"the file exists (--force replaces it)", u"файл уже есть (--force заменит его)"),
                   path);
        }
    }
    if (error) RefuseFolder(context, u"the folder cannot be read", u"папка не читается", error, folder);
}

}  // namespace

void RunSplitCommand(const CommandContext& context) {
    const ParsedArguments& parsed = context.parsed;
    if (parsed.Value(u"--type", kEdfPlusType) != kEdfPlusType)
        throw UsageError(u"'" + parsed.Value(u"--type") + u"' is not edf+ for --type");
    EdfPlusOrder edfPlus(parsed, context.language);
    const fs::path folder = NativePath(Required(parsed, u"--folder"));
    const std::int64_t number = parsed.Has(u"--block") ? WholeNumber(parsed.Value(u"--block"), u"--block") : 1;
    Required(parsed, u"--size");
    const OpenFile file(parsed.words[1], context.language);
    std::shared_ptr<RecordingBlock> block = FindChannel(file.Get(), number, 1, context.language).block;
    const SplitPlan plan = MakePlan(parsed, *block);
    if (plan.PieceCount() < 1) {
        throw Refusal(Say(u"the block is too short for a piece of %1 samples: it has %2",
                          u"блок короче части из %1 отсчётов: в нём их %2",
                          {Decimal(plan.size), Decimal(plan.blockSamples)})
                          .In(context.language));
    }
    CheckReplaced(context, plan, folder);
    if (edfPlus.IsWanted()) block = edfPlus.Show(std::move(block));
    block->Prepare();

    SilentServices services;
    KVExport exporter(services, {.makeFile = MakeOutputFile, .fieldText = SystemBytes, .language = context.language});
    SplitSystem system;
    std::u16string path;  // of the last piece
    std::error_code folderError;
    system.createFolder = [&] {
        std::error_code ignored;
        fs::create_directories(folder, folderError);
        return fs::is_directory(folder, ignored);
    };
    system.exportPiece = [&](std::int64_t piece, const std::u16string& name) {
        path = FromNativePath(folder / NativePath(name));
        const bool written = ExportPiece(exporter, *block, plan, piece, path, edfPlus.Request());
        if (written) {
            WarnOfLoss(exporter, path, context);
            context.target.Write(Utf8(name + u'\t' + Decimal(plan.FirstSample(piece)) + u'\t' +
                                      Decimal(plan.SampleCount(piece)) + u'\n'));
        }
        return written;
    };
    const InterruptScope interrupt;
    system.runPending = [&] { return !interrupt.IsAsked(); };
    exporter.SetProgress([&](std::int32_t, std::int32_t) { return !interrupt.IsAsked(); });
    const SplitEnd end = RunSplit(plan, system).end;
    if (end == SplitEnd::FolderFailed) {
        RefuseFolder(context, u"the folder cannot be created", u"папка не создаётся", folderError, folder);
    }
    if (end == SplitEnd::Stopped) RefuseInterrupted(context.language);
    if (end == SplitEnd::PieceFailed) RefuseExport(exporter, path);
}

}  // namespace quillon::cli
