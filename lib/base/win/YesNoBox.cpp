#include "base/win/YesNoBox.h"

namespace quillon {

bool AskYesNo(HWND owner, const std::u16string& question, const std::u16string& title) {
    return MessageBoxW(owner, Wide(question).c_str(), Wide(title).c_str(),
                       MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
}

}  // namespace quillon
