#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/CommandState.h"
#include "app/FilterChoices.h"
#include "app/WindowPlacement.h"
#include "base/Language.h"
#include "data/Document.h"
#include "data/UserServices.h"
#include "format/QL_Format.h"

namespace quillon {

/// What the user chooses about how signals are shown: filters by the group of the current channel's unit, channels left
/// unfiltered, the reference and the montage. Filters and the user's montages are remembered between runs; the others
/// name channels of a recording.
class ShownCommands {
  public:
    /// Most montages that can be chosen from.
    static constexpr std::size_t kMostMontages = 60;

    /// The arguments must outlive this object.
    ShownCommands(Document& document, WindowPlacement& remembered, const UserServices& services,
                  const FormatOptions& format, Language language)
        : m_document(document),
          m_remembered(remembered),
          m_services(services),
          m_format(format),
          m_language(language) {}

    // To be set by the owner.
    /// Signals are shown otherwise; `signals`: there are others, those of a montage.
    std::function<void(bool signals)> onChange;
    std::function<void()> onPairs;   ///< a montage was chosen, whose pairs need lanes
    std::function<void()> onRow;     ///< the row of filters is shown or hidden
    std::function<void()> onChoice;  ///< something was chosen, whether or not it changes a signal of this block
    /// Why something was not chosen; empty when something is.
    std::function<void(const std::u16string& reason)> onRefused;

    /// Takes the filters and the montages that were remembered; at the start.
    void Restore();

    /// What was chosen, also while raw signals are shown instead.
    [[nodiscard]] const ShownSettings& Chosen() const { return m_kept ? *m_kept : m_document.Shown(); }
    /// Group of the current channel's unit; none without a channel.
    [[nodiscard]] std::optional<std::u16string> Group() const;
    /// The filter of that group.
    [[nodiscard]] nsp::FilterSettings Filter() const;
    /// Whether the current channel is left unfiltered.
    [[nodiscard]] bool IsUnfiltered() const;
    /// Title of the current channel; empty without one.
    [[nodiscard]] std::u16string ChannelTitle() const;

    /// What decides of it whether commands are available.
    void Describe(CommandState& state) const;
    /// A value as lists name it: "Off", "0.5 Hz", "Order 2", "Forward".
    [[nodiscard]] std::u16string Caption(const FilterChoice& choice) const;
    /// Why it cannot be chosen; empty where it can.
    [[nodiscard]] std::u16string RefusalOfChoice(const FilterChoice& choice) const;

    /// Shows or hides the row of filters.
    void ToggleRow();
    /// What cannot be is told and changes nothing, in all of these.
    void Choose(const FilterChoice& choice);
    /// A frequency as it was typed.
    void Type(FilterField field, std::u16string_view text);
    void ToggleUnfiltered();
    /// To the current channel where the kind is Channel. Ends a montage.
    void SetReference(Reference::Kind kind);

    /// Those that can be chosen: usual ones that have a pair in the block, then the user's own.
    [[nodiscard]] std::vector<Montage> Montages() const;
    [[nodiscard]] const std::vector<Montage>& OwnMontages() const { return m_own; }
    /// Which of Montages() is shown; -1: none.
    [[nodiscard]] int MontageIndex() const;
    /// Shows all its pairs. Chosen again, it is taken off. The reference becomes that of the recording.
    void ChooseMontage(int index);
    /// Why a montage "Name: Fp1-F7, F7-T3" cannot be made; empty where it can.
    [[nodiscard]] std::u16string RefusalOfMontage(std::u16string_view text) const;
    /// Keeps the montage of such a text in place of one of the same name, and shows it.
    void AddMontage(std::u16string_view text);
    /// Whether the montage that is shown is the user's own.
    [[nodiscard]] bool ShowsOwnMontage() const;
    void DeleteMontage();

    /// Shows the signals as they are stored as long as `hold` is the last that was said.
    void HoldRaw(bool hold);

  private:
    [[nodiscard]] std::vector<std::u16string> Titles() const;
    void Show(const ShownSettings& settings);
    void Apply(const ShownSettings& settings);
    /// The same with a montage, all of whose pairs are shown.
    void ShowPairs(const ShownSettings& settings);
    void Remember();

    Document& m_document;
    WindowPlacement& m_remembered;
    const UserServices& m_services;
    const FormatOptions& m_format;
    Language m_language;
    std::vector<Montage> m_own;
    std::optional<ShownSettings> m_kept;  ///< chosen, while raw signals are shown
};

}  // namespace quillon
