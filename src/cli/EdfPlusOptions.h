#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Language.h"
#include "cli/Options.h"
#include "cli/ShownOptions.h"
#include "data/ShownSettings.h"
#include "export/EdfPlusWriter.h"
#include "norvik/NorvikCore.h"

namespace quillon::cli {

/// The value of --type for EDF+ with marks.
inline constexpr std::u16string_view kEdfPlusType = u"edf+";

inline constexpr std::array kEdfPlusOptions = {
    OptionRule{u"--channels", true, u"edf+: channels to write, by number or title (all)", u"1,3,Fp1"},
};

/// What a command that writes recordings is asked for EDF+ with marks: its channels, and how they are shown.
class EdfPlusOrder {
  public:
    /// Throws UsageError where the type is another and options of EDF+ are given, and for what can be at no block.
    EdfPlusOrder(const ParsedArguments& parsed, Language language);

    [[nodiscard]] bool IsWanted() const { return m_wanted; }
    /// The block to write of: as it is asked for, prepared. Throws as ShownRequest does, and Refusal for a channel that
    /// is not there.
    [[nodiscard]] std::shared_ptr<RecordingBlock> Show(std::shared_ptr<RecordingBlock> stored);
    /// Of the block shown last, from its first sample to its end. Valid as long as this object.
    [[nodiscard]] EdfPlusRequest Request() const;

  private:
    [[nodiscard]] std::int16_t Find(const std::u16string& word, const RecordingBlock& block) const;

    ShownRequest m_shown;
    Language m_language;
    bool m_wanted = false;
    std::optional<std::u16string> m_list;  ///< of --channels
    ShownSettings m_settings;
    std::vector<std::int16_t> m_channels;
};

}  // namespace quillon::cli
