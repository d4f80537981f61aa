#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Language.h"
#include "base/SampleSpan.h"
#include "cli/Commands.h"
#include "cli/Options.h"
#include "data/UserServices.h"
#include "export/KVExport.h"
#include "norvik/NorvikCore.h"

/// What several commands need.
namespace quillon::cli {

/// An open recording that is closed at the end of the command. Throws Refusal where it cannot be opened.
class OpenFile {
  public:
    OpenFile(const std::u16string& file, Language language);
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    [[nodiscard]] Recording& Get() const { return *m_recording; }

  private:
    std::shared_ptr<RecordingLibrary> m_library;
    std::shared_ptr<Recording> m_recording;
};

/// Throws a Refusal: %1 is the number given, %2 and %3 the first and last possible one.
[[noreturn]] void RefuseRange(Language language, std::u16string_view english, std::u16string_view russian,
                              std::int64_t given, std::int64_t first, std::int64_t last);

/// Block by its number, from 1. Throws Refusal where there is no such one.
[[nodiscard]] std::shared_ptr<RecordingBlock> FindBlock(Recording& recording, std::int64_t block, Language language);

struct BlockChannel {
    std::shared_ptr<RecordingBlock> block;
    std::int16_t channel = 1;
};

/// Block and channel by their numbers, from 1. Throws Refusal where there is no such one. Prepare() of the block is
/// left to the command, after its other checks: it may read the whole block.
[[nodiscard]] BlockChannel FindChannel(Recording& recording, std::int64_t block, std::int64_t channel,
                                       Language language);

/// The channel of that number, from 1. Throws Refusal where the block has none.
[[nodiscard]] std::int16_t CheckChannel(const RecordingBlock& block, std::int64_t channel, Language language);

/// Titles of all channels, in their order.
[[nodiscard]] std::vector<std::u16string> TitlesOf(const RecordingBlock& block);
/// Throws the Refusal for a title that no channel has.
[[noreturn]] void RefuseTitle(const std::u16string& title, Language language);

/// The channels whose numbers --channels lists, in its order; all where it is not given. Throws UsageError for what is
/// no number, Refusal where the block has none of that number.
[[nodiscard]] std::vector<std::int16_t> ChosenChannels(const ParsedArguments& parsed, const RecordingBlock& block,
                                                       Language language);

/// Some samples of a block.
struct BlockRange {
    std::shared_ptr<RecordingBlock> block;
    SampleSpan samples;
};

/// What --block, --first and --count ask for. A script that asks for samples that are not there has a mistake in it:
/// throws Refusal, where the viewer's own rules would take what there is.
[[nodiscard]] BlockRange FindRange(Recording& recording, const ParsedArguments& parsed, Language language);

/// User services for the command line: there is no user to ask, so relevant messages become a Refusal.
class SilentServices : public UserServices {
  public:
    void ShowMessage(const std::u16string&, const std::u16string&) override {}
    [[nodiscard]] bool Ask(const std::u16string&) override { return false; }
    void SetStatus(const std::u16string&) override {}
    [[nodiscard]] std::u16string Text(int) const override { return {}; }
    [[nodiscard]] std::u16string LongTime(double) const override { return {}; }
    [[nodiscard]] std::u16string DateAndTime(double) const override { return {}; }
};

/// Throws the Refusal for a command that Ctrl+C has stopped.
[[noreturn]] void RefuseInterrupted(Language language);

/// Throws the Refusal for an export to `target` that has failed.
[[noreturn]] void RefuseExport(const KVExport& exporter, const std::u16string& target);

/// Tells what the file that was written differs in from the recording.
void WarnOfLoss(const KVExport& exporter, const std::u16string& target, const CommandContext& context);

/// Appends the lowest `size` bytes of a number, the lowest first.
void AppendLittleEndian(std::vector<char>& bytes, std::uint32_t number, unsigned size);

}  // namespace quillon::cli
