#pragma once

#include <array>
#include <memory>
#include <string>

#include "base/Language.h"
#include "cli/Options.h"
#include "data/ShownSettings.h"
#include "norvik/NorvikCore.h"
#include "nsp/FilterDesign.h"

namespace quillon::cli {

inline constexpr std::array kShownOptions = {
    OptionRule{u"--high-pass", true, u"filter out what is below, 0 for nothing (0)", u"HZ"},
    OptionRule{u"--low-pass", true, u"filter out what is above, 0 for nothing (0)", u"HZ"},
    OptionRule{u"--notch", true, u"filter out a frequency and its multiples, 0 for none (0)", u"HZ"},
    OptionRule{u"--order", true, u"order of high pass and low pass (2)", u"1|2|4"},
    OptionRule{u"--both-ways", false, u"filter forward and backward: no delay, every gain squared", u""},
    OptionRule{u"--reference", true, u"subtract the average of all channels of the unit, or a channel",
               u"average|TITLE"},
    OptionRule{u"--montage", true, u"CHANNEL counts these differences: Fp1-F7,F7-T3", u"PAIRS"},
};

/// How a block is to be shown before it is read: what the command line asks for, as in the window.
class ShownRequest {
  public:
    /// Throws UsageError for what cannot be at any block.
    ShownRequest(const ParsedArguments& parsed, Language language);

    /// The settings that show the block so; the default ones where nothing is asked for. Throws as Show.
    [[nodiscard]] ShownSettings SettingsFor(const RecordingBlock& stored) const;
    /// The block as it is asked for; the stored one itself where nothing is. Throws UsageError for a filter that cannot
    /// be at its rate, Refusal where it lacks a channel. Prepares it where need be, which may read the whole block.
    [[nodiscard]] std::shared_ptr<RecordingBlock> Show(std::shared_ptr<RecordingBlock> stored) const;

  private:
    nsp::FilterSettings m_filter;
    std::u16string m_reference;  ///< as given; empty: as recorded
    std::u16string m_montage;    ///< as given; empty: none
    Language m_language;
};

}  // namespace quillon::cli
