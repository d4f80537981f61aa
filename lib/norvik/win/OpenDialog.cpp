#include "norvik/win/OpenDialog.h"

#include "norvik/win/FileDialog.h"

namespace quillon {

std::u16string AskForFile(const OpenRequest& request) {
    FileDialogTexts texts(request.filter, request.title, request.folder);
    OPENFILENAMEW shown = FileDialogRequest(texts, OFN_FILEMUSTEXIST);
    return GetOpenFileNameW(&shown) != FALSE ? texts.Name() : std::u16string();
}

}  // namespace quillon
