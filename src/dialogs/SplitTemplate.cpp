#include "dialogs/SplitTemplate.h"

#include "dialogs/DialogTexts.h"

namespace quillon {

using namespace split_controls;

DialogTemplate MakeSplitTemplate(const UserServices& services, const std::u16string& baseName,
                                 const std::u16string& folder) {
    using namespace control;
    constexpr std::uint32_t group = kFrame;
    constexpr std::uint32_t option = kOption;
    constexpr std::uint32_t box = kTabStop | kGroup | kCheckBox;
    constexpr std::uint32_t combo = kTabStop | kVerticalScroll | kDropDown | kComboAutoScroll;
    constexpr std::uint32_t label = kLeft | kNoPrefix;
    constexpr std::uint32_t button = kTabStop | kPushButton;
    const auto text = [&](int id) { return services.Text(id); };
    DialogTemplate dialog(text(IDS_SPLIT_TITLE), 264, 252);
    const auto item = [&](std::uint16_t kind, std::uint32_t style, int id, std::u16string_view caption, short x,
                          short y, short width,
                          short height) { dialog.Item(kind, style, id, caption, x, y, width, height); };
    item(DialogTemplate::kButton, group, frSplit, text(IDS_SPLIT_FRAME), 7, 5, 250, 62);
    item(DialogTemplate::kStatic, label, lblSize, text(IDS_SPLIT_SIZE), 124, 16, 60, 9);
    item(DialogTemplate::kStatic, label, lblStep, text(IDS_SPLIT_STEP), 190, 16, 60, 9);
    item(DialogTemplate::kButton, option | kGroup | kTabStop, optSplit, text(IDS_SPLIT_BY_0), 14, 29, 106, 10);
    item(DialogTemplate::kButton, option, optSplit + 1, text(IDS_SPLIT_BY_0 + 1), 14, 48, 106, 10);
    for (short mode = 0; mode < 2; ++mode) {
        const auto y = static_cast<short>(27 + 19 * mode);
        dialog.Name(text(IDS_SPLIT_SIZE));
        item(DialogTemplate::kComboBox, combo | kGroup, cboSize + mode, {}, 124, y, 60, 120);
        dialog.Name(text(IDS_SPLIT_STEP));
        item(DialogTemplate::kComboBox, combo | kGroup, cboStep + mode, {}, 190, y, 60, 120);
    }
    item(DialogTemplate::kButton, group | kGroup, frFile, text(IDS_SPLIT_FORMAT), 7, 71, 250, 58);
    item(DialogTemplate::kButton, box, chkBaseName, text(IDS_SPLIT_BASENAME), 14, 83, 106, 10);
    item(DialogTemplate::kStatic, label | kEndEllipsis | kNotify, lblBaseName, baseName, 124, 84, 126, 9);
    item(DialogTemplate::kButton, option | kGroup | kTabStop, optFileIndex, text(IDS_SPLIT_INDEX_0), 14, 98, 106, 10);
    item(DialogTemplate::kButton, option, optFileIndex + 1, text(IDS_SPLIT_INDEX_0 + 1), 14, 113, 106, 10);
    item(DialogTemplate::kStatic, label, lblFileIndex, u"01, 02, 03, ...", 124, 99, 126, 9);
    item(DialogTemplate::kStatic, label, lblFileIndex + 1, u"000-099, 100-199,  ...", 124, 114, 126, 9);
    item(DialogTemplate::kButton, group | kGroup, frPath, text(IDS_SPLIT_PATH), 7, 133, 250, 42);
    item(DialogTemplate::kStatic, label | kPathEllipsis | kNotify, lblFolder, folder, 14, 145, 236, 9);
    item(DialogTemplate::kButton, box, chkDelFiles, text(IDS_SPLIT_DELETE), 14, 159, 236, 10);
    item(DialogTemplate::kStatic, label, lblStatusTitle, text(IDS_SPLIT_STATUS), 7, 181, 60, 9);
    item(DialogTemplate::kStatic, label, lblPieces, {}, 124, 181, 133, 9);
    item(DialogTemplate::kStatic, label | kBreakAsEdit, lblStatus, {}, 7, 192, 250, 36);
    item(DialogTemplate::kButton, kTabStop | kGroup | kDefaultButton, cmdSplit, text(IDS_SPLIT_RUN), 89, 232, 52, 14);
    item(DialogTemplate::kButton, button, cmdCancel, text(IDS_CANCEL), 147, 232, 52, 14);
    item(DialogTemplate::kButton, button, cmdHelp, text(IDS_SPLIT_HELP), 205, 232, 52, 14);
    return dialog;
}

}  // namespace quillon
