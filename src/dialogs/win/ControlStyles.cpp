#include "dialogs/ControlStyles.h"

#include "base/win/Win32.h"

namespace quillon::control {

static_assert(kTabStop == WS_TABSTOP && kGroup == WS_GROUP && kSystemMenu == WS_SYSMENU);
static_assert(kVerticalScroll == WS_VSCROLL && kCaption == WS_CAPTION && kClipSiblings == WS_CLIPSIBLINGS);
static_assert(kVisible == WS_VISIBLE && kChild == WS_CHILD && kPopup == WS_POPUP && kClientEdge == WS_EX_CLIENTEDGE);
static_assert(kSetFont == DS_SETFONT && kModalFrame == DS_MODALFRAME && kIsControl == DS_CONTROL);
static_assert(kCenter == DS_CENTER);
static_assert(kPushButton == BS_PUSHBUTTON && kDefaultButton == BS_DEFPUSHBUTTON && kCheckBox == BS_AUTOCHECKBOX);
static_assert(kOption == BS_AUTORADIOBUTTON && kFrame == BS_GROUPBOX && kOwnerDrawn == BS_OWNERDRAW);
static_assert(kDropDown == CBS_DROPDOWN && kDropDownList == CBS_DROPDOWNLIST && kComboAutoScroll == CBS_AUTOHSCROLL);
static_assert(kEditAutoScroll == ES_AUTOHSCROLL);
static_assert(kLeft == SS_LEFT && kLeftOneLine == SS_LEFTNOWORDWRAP && kOwnerDrawnPicture == SS_OWNERDRAW);
static_assert(kNoPrefix == SS_NOPREFIX && kNotify == SS_NOTIFY && kBreakAsEdit == SS_EDITCONTROL);
static_assert(kEndEllipsis == SS_ENDELLIPSIS && kPathEllipsis == SS_PATHELLIPSIS);
static_assert(std::wstring_view(WC_TABCONTROLW) == L"SysTabControl32" && kTabClass == u"SysTabControl32");
static_assert(kIdOk == IDOK && kIdCancel == IDCANCEL && kIdHelp == IDHELP);

}  // namespace quillon::control
