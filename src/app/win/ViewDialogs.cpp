#include "app/win/ViewDialogs.h"

#include "app/StringIds.h"
#include "app/ViewTables.h"
#include "app/win/InputBox.h"
#include "app/win/TableWindow.h"

namespace quillon {

void ShowStatistics(HWND owner, const ReadoutSource& source, const Selection& selection, const UserServices& services) {
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    const TextTable table = StatisticsTable(source, selection, services);
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    ShowTable(owner, table);
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
