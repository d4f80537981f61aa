#include "cli/Cli.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Options.h"
#include "cli/OutputTarget.h"
#include "norvik/RecordingLibrary.h"

namespace quillon::cli {

namespace {

constexpr std::array kOptions = {
    OptionRule{u"--out", true, u"write to PATH instead of the standard output", u"PATH"},
    OptionRule{u"--force", false, u"let the file to write replace one that exists", u""},
    OptionRule{u"--language", true, u"language of reasons and names: en (the default) or ru", u"en|ru"},
    OptionRule{u"--help", false, u"show this text, or that of the command", u""},
    OptionRule{u"--version", false, u"show the version", u""},
};

constexpr std::string_view kExitCodes =
    "Exit codes:\n"
    "  0  done\n"
    "  1  refused: the file cannot be read or written, or the range lies outside it\n"
    "  2  the command line is wrong\n";

/// Those of the program that a command takes; --out, the first of them, only where no word names the output.
std::span<const OptionRule> OptionsFor(const Command* command) {
    return std::span(kOptions).subspan(command != nullptr && command->outputWord != 0 ? 1 : 0);
}

void WriteRules(std::ostream& out, std::span<const OptionRule> rules) {
    for (const OptionRule& rule : rules) {
        std::string name = "  ";
        name += Utf8(rule.name);
        if (rule.takesValue) name.append(" ").append(Utf8(rule.values));
        name.resize(std::max<std::size_t>(name.size() + 2, 22), ' ');
        out << name << Utf8(rule.help) << '\n';
    }
}

void WriteOptionHelp(std::ostream& out, const Command* only) {
    out << "Options (--name value or --name=value; -- ends the options):\n";
    if (only != nullptr) WriteRules(out, only->options);
    WriteRules(out, OptionsFor(only));
}

void WriteFileTypes(std::ostream& out) {
    const std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
    out << "Reads recordings of these types, told by what is in the file:\n";
    for (std::int32_t type = 1; type <= library->FileTypeCount(); ++type)
        out << "  " << Utf8(library->FileTypeName(type)) << " (" << Utf8(library->FileTypeMask(type)) << ")\n";
    out << '\n';
}

void WriteHelp(std::ostream& out, const Command* only) {
    out << "Usage: quillon-cli COMMAND FILE ... [options]\n";
    if (only == nullptr) {
        WriteFileTypes(out);
        out << "Commands:\n";
    }
    for (const Command& command : Commands()) {
        if (only == nullptr || only == &command) {
            out << "  " << Utf8(command.name) << ' ' << Utf8(command.usage) << '\n' << command.help << '\n';
        }
    }
    WriteOptionHelp(out, only);
    out << '\n' << kExitCodes << "\nExamples:\n";
    for (const Command& command : Commands()) {
        if (only == nullptr || only == &command) out << command.example;
    }
}

void WriteVersion(std::ostream& out) {
    out << "quillon-cli " << QUILLON_VERSION_MAJOR << '.' << QUILLON_VERSION_MINOR << '.' << QUILLON_VERSION_REVISION
        << '\n';
}

Language LanguageOf(const ParsedArguments& parsed) {
    const std::u16string value = parsed.Value(u"--language", u"en");
    if (value == u"en") return Language::English;
    if (value == u"ru") return Language::Russian;
    throw UsageError(u"unknown language '" + value + u"' (en or ru)");
}

const Command& FindCommand(const std::u16string& name) {
    for (const Command& command : Commands()) {
        if (command.name == name) return command;
    }
    throw UsageError(u"unknown command '" + name + u"'");
}

/// Those of the program and of all its commands.
std::vector<OptionRule> AllOptions() {
    std::vector<OptionRule> rules(kOptions.begin(), kOptions.end());
    for (const Command& command : Commands()) rules.insert(rules.end(), command.options.begin(), command.options.end());
    return rules;
}

/// The options of a command line, those of its output where a word names that. Throws UsageError for an option that
/// belongs to another command.
ParsedArguments ForCommand(const Command& command, ParsedArguments parsed) {
    const auto names = [](std::span<const OptionRule> rules, const std::u16string& name) {
        return std::any_of(rules.begin(), rules.end(), [&](const OptionRule& rule) { return rule.name == name; });
    };
    for (const auto& option : parsed.options) {
        if (!names(OptionsFor(&command), option.first) && !names(command.options, option.first)) {
            throw UsageError(u"'" + std::u16string(command.name) + u"' takes no option '" + option.first + u"'");
        }
    }
    if (command.outputWord != 0 && parsed.words[command.outputWord].empty()) {
        throw UsageError(u"'" + std::u16string(command.name) + u"' needs a name for OUT");
    }
    if (command.outputWord != 0) parsed.options.emplace(u"--out", parsed.words[command.outputWord]);
    if (parsed.Value(u"--out") == u"-") parsed.options.erase(u"--out");
    return parsed;
}

void RunCommand(const Command& command, const ParsedArguments& parsed, Language language, CliIo& io) {
    const std::size_t given = parsed.words.size() - 1;
    if (given < command.minimumWords) {
        throw UsageError(u"'" + std::u16string(command.name) + u"' needs " + std::u16string(command.usage));
    }
    if (given > command.maximumWords) {
        throw UsageError(u"unexpected word '" + parsed.words[command.maximumWords + 1] + u"'");
    }
    const ParsedArguments own = ForCommand(command, parsed);
    OutputTarget target(io.out, own, own.words[1], language);
    command.run({own, language, target, io.lineEnd, io.error});
    target.Finish();
}

/// `file` and `language` are used in the message of a refusal.
int Dispatch(const std::vector<std::u16string>& arguments, CliIo& io, std::u16string& file, Language& language) {
    const ParsedArguments parsed = ParseArguments(arguments, AllOptions());
    language = LanguageOf(parsed);
    const Command* command = parsed.words.empty() ? nullptr : &FindCommand(parsed.words[0]);
    if (parsed.Has(u"--help") || parsed.Has(u"--version")) {
        if (parsed.Has(u"--help")) {
            WriteHelp(io.out, command);
        } else {
            WriteVersion(io.out);
        }
        OutputTarget::CheckStream(io.out, language);
        return kDone;
    }
    if (command == nullptr) throw UsageError(u"no command given");
    if (parsed.words.size() > 1) file = parsed.words[1];
    RunCommand(*command, parsed, language, io);
    return kDone;
}

}  // namespace

int RunCli(const std::vector<std::u16string>& arguments, CliIo& io) {
    std::u16string file;
    Language language = Language::English;
    const auto refuse = [&](std::string_view reason) {
        io.error << "quillon-cli: " << Utf8(file) << (file.empty() ? "" : ": ") << reason << '\n';
        return kRefused;
    };
    try {
        return Dispatch(arguments, io, file, language);
    } catch (const UsageError& error) {
        io.error << "quillon-cli: " << error.what() << "\nTry 'quillon-cli --help'.\n";
        return kUsage;
    } catch (const Refusal& refusal) {
        if (refusal.IsWhole()) file.clear();
        if (!refusal.File().empty()) file = refusal.File();
        return refuse(refusal.what());
    } catch (const std::bad_alloc&) {
        return refuse(Utf8(Say(u"there is not enough memory", u"не хватает памяти").In(language)));
    } catch (const std::exception& error) {
        return refuse(error.what());
    }
}

}  // namespace quillon::cli
