#include "app/win/ViewDialogs.h"

#include <memory>
#include <utility>

#include "app/StringIds.h"
#include "app/ViewTables.h"
#include "app/win/InputBox.h"
#include "app/win/TableWindow.h"

namespace quillon {

void ShowStatistics(HWND owner, const ReadoutSource& source, const Selection& selection, const UserServices& services,
                    const std::function<void(StatisticsPass* pass)>& onWork) {
    StatisticsPass pass(source, selection.Samples());
    // A short pass is shown complete; not with scales that may still change.
    constexpr ULONGLONG quick = 20;  // ms
    const ULONGLONG start = GetTickCount64();
    if (!source.block.block->IsProvisional()) {
        while (GetTickCount64() - start < quick && pass.Step()) {
        }
    }
    TextTable table = StatisticsTable(source, selection, services);
    table.rows = StatisticsRows(source, pass);
    if (pass.IsDone()) return ShowTable(owner, std::move(table));
    // Nobody refers to the pass any longer when this function is left, in whichever way.
    const std::shared_ptr<void> work(nullptr, [&](void*) { onWork(nullptr); });
    onWork(&pass);
    ShowTable(owner, std::move(table), [&](TextTable& shown) {
        shown.rows = StatisticsRows(source, pass);
        return !pass.IsDone();
    });
}

std::optional<std::u16string> AskForPlace(HWND owner, const std::u16string& present, const UserServices& services) {
    const std::optional<std::wstring> answer =
        AskForText(owner,
                   {Wide(PlainCaption(services.Text(IDS_GOTOPLACE))), Wide(services.Text(IDS_PLACE_PROMPT)),
                    Wide(services.Text(IDS_OK)), Wide(services.Text(IDS_CANCEL))},
                   Wide(present));
    if (!answer) return std::nullopt;
    return Narrow16(*answer);
}

}  // namespace quillon
