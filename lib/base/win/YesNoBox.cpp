#include "base/win/YesNoBox.h"

namespace quillon {

bool AskYesNo(HWND owner, const std::u16string& question) {
    return MessageBoxW(owner, Wide(question).c_str(), L"Quillon", MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
}

}  // namespace quillon
