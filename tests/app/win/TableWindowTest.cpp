#include "app/win/DialogUser.h"
#include "app/win/MainWindowFixture.h"
#include "app/win/TableWindow.h"

namespace quillon::testing {
namespace {

TEST(TableWindow, ShowsAndCopiesTheTable) {
    const TableTexts texts{L"T", {L"Канал", L"Среднее значение", L"Единица"}, L"Закрыть", L"Копировать", true};
    const std::wstring all = L"Канал\tСреднее значение\tЕдиница\r\nC3 A1\t-1.5\tмкВ\r\nO2\t20\t\r\n";
    for (const int key : {VK_ESCAPE, VK_RETURN}) {
        const DialogAnswer answer([&](HWND dialog) {
            const HWND list = GetDlgItem(dialog, 101);
            EXPECT_EQ(ListView_GetItemCount(list), 2);
            wchar_t text[32] = {};
            LVITEMW item{};
            item.iSubItem = 1;
            item.pszText = text;
            item.cchTextMax = 32;
            SendPointer(list, LVM_GETITEMTEXTW, 0, &item);
            EXPECT_STREQ(text, L"-1.5");
            LVCOLUMNW column{};
            column.mask = LVCF_FMT;
            SendPointer(list, LVM_GETCOLUMNW, 1, &column);
            EXPECT_EQ(column.fmt & LVCFMT_JUSTIFYMASK, LVCFMT_RIGHT);
            EXPECT_EQ(GetWindowLongW(list, GWL_STYLE) & (WS_HSCROLL | WS_VSCROLL), 0) << "all of it is seen";
            SendMessageW(dialog, WM_COMMAND, 102, 0);
            EXPECT_EQ(ClipboardText(), all);
            PostMessageW(list, WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        });
        ShowTable(nullptr, texts, {{L"C3\tA1", L"-1.5", L"мкВ"}, {L"O2", L"20"}});
    }
}

}  // namespace
}  // namespace quillon::testing
