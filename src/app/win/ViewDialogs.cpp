#include "app/win/ViewDialogs.h"

#include <memory>
#include <utility>

#include "app/FilterChoices.h"
#include "app/SpectrogramChoices.h"
#include "app/StringIds.h"
#include "app/ViewTables.h"
#include "app/win/InputBox.h"
#include "app/win/TableWindow.h"
#include "format/NumberText.h"

namespace quillon {

void ShowStatistics(HWND owner, const ReadoutSource& source, const Selection& selection, const std::u16string& shown,
                    const UserServices& services, const std::function<void(StatisticsPass* pass)>& onWork) {
    StatisticsPass pass(source, selection.Samples());
    // A short pass is shown complete; not with scales that may still change.
    constexpr ULONGLONG quick = 8;  // ms
    const ULONGLONG start = GetTickCount64();
    if (!source.block.block->IsProvisional()) {
        while (GetTickCount64() - start < quick && pass.Step()) {
        }
    }
    TextTable table = StatisticsTable(source, selection, services);
    if (!shown.empty()) table.heading += u", " + shown;
    table.rows = StatisticsRows(source, pass);
    if (pass.IsDone()) return ShowTable(owner, std::move(table));
    // Nobody refers to the pass any longer when this function is left, in whichever way.
    const std::shared_ptr<void> work(nullptr, [&](void*) { onWork(nullptr); });
    onWork(&pass);
    ShowTable(owner, std::move(table), [&](TextTable& present) {
        present.rows = StatisticsRows(source, pass);
        return !pass.IsDone();
    });
}

std::optional<GoToMeaning> AskForPlace(HWND owner, const GoToTexts& offered, const UserServices& services,
                                       const std::function<GoToMeaning(const GoToTexts&)>& meaningOf) {
    const auto text = [&](int id) { return Wide(services.Text(id)); };
    InputBox box{.title = Wide(PlainCaption(services.Text(IDS_GOTOPLACE))),
                 .ok = text(IDS_OK),
                 .cancel = text(IDS_CANCEL),
                 .lines = {{text(IDS_PLACE_PROMPT), Wide(offered.place)}}};
    if (!offered.page.empty()) box.lines.push_back({text(IDS_PAGE_PROMPT), Wide(offered.page)});
    GoToMeaning meaning;
    box.refusal = [&](const std::vector<std::wstring>& texts) {
        meaning = meaningOf({Narrow16(texts[0]), texts.size() > 1 ? Narrow16(texts[1]) : offered.page});
        return meaning.refusal == 0 ? std::wstring() : text(meaning.refusal);
    };
    if (!AskForText(owner, box)) return std::nullopt;
    return meaning;
}

std::optional<std::u16string> AskForMontage(HWND owner, const UserServices& services,
                                            const std::function<std::u16string(const std::u16string&)>& refusalOf) {
    const auto text = [&](int id) { return Wide(services.Text(id)); };
    const InputBox box{
        .title = Wide(PlainCaption(services.Text(IDS_NEWMONTAGE))),
        .ok = text(IDS_OK),
        .cancel = text(IDS_CANCEL),
        .lines = {{text(IDS_MONTAGE_PROMPT), {}}},
        .refusal = [&](const std::vector<std::wstring>& texts) { return Wide(refusalOf(Narrow16(texts[0]))); }};
    const auto texts = AskForText(owner, box);
    return texts ? std::optional(Narrow16(texts->front())) : std::nullopt;
}

std::optional<SpectrumSettings> AskForLevels(HWND owner, const SpectrumSettings& present, const UserServices& services,
                                             const FormatOptions& format) {
    const auto text = [&](int id) { return Wide(services.Text(id)); };
    const auto number = [&](float value) {
        return Wide(SingleNumberText(static_cast<double>(value), format.decimalSeparator));
    };
    std::optional<SpectrumSettings> chosen;
    const InputBox box{.title = Wide(PlainCaption(services.Text(IDS_LEVELS))),
                       .ok = text(IDS_OK),
                       .cancel = text(IDS_CANCEL),
                       .lines = {{text(IDS_HIGHEST_PROMPT), number(present.topLevel)},
                                 {text(IDS_LOWEST_PROMPT), number(present.topLevel - present.decibelRange)}},
                       .refusal = [&](const std::vector<std::wstring>& texts) {
                           chosen =
                               WithLevels(present, Narrow16(texts[0]), Narrow16(texts[1]), format.decimalSeparator);
                           return chosen ? std::wstring() : text(IDS_LEVELS_BAD);
                       }};
    return AskForText(owner, box) ? chosen : std::nullopt;
}

std::optional<double> AskForFrequency(HWND owner, float present, const UserServices& services,
                                      const FormatOptions& format) {
    const auto text = [&](int id) { return Wide(services.Text(id)); };
    const std::u16string all = PlainCaption(services.Text(IDS_ALL_FREQUENCIES));
    std::optional<double> chosen;
    const std::u16string shown =
        present > 0.0F ? SingleNumberText(static_cast<double>(present), format.decimalSeparator) : all;
    const InputBox box{.title = Wide(PlainCaption(services.Text(IDS_FREQUENCIES))),
                       .ok = text(IDS_OK),
                       .cancel = text(IDS_CANCEL),
                       .lines = {{text(IDS_FREQUENCY_PROMPT), Wide(shown)}},
                       .refusal = [&](const std::vector<std::wstring>& texts) {
                           chosen = ParseFrequency(Narrow16(texts[0]), all);
                           return chosen ? std::wstring() : text(IDS_FREQUENCY_BAD);
                       }};
    return AskForText(owner, box) ? chosen : std::nullopt;
}

}  // namespace quillon
