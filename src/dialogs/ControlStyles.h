#pragma once

#include <cstdint>
#include <string_view>

/// The system's numbers that a dialog template is made of, under names of our own; win/ControlStyles.cpp compares them
/// with the system's.
namespace quillon::control {

// Windows and controls of any kind.
inline constexpr std::uint32_t kTabStop = 0x00010000;
inline constexpr std::uint32_t kGroup = 0x00020000;
inline constexpr std::uint32_t kSystemMenu = 0x00080000;
inline constexpr std::uint32_t kVerticalScroll = 0x00200000;
inline constexpr std::uint32_t kCaption = 0x00C00000;
inline constexpr std::uint32_t kClipSiblings = 0x04000000;
inline constexpr std::uint32_t kVisible = 0x10000000;
inline constexpr std::uint32_t kChild = 0x40000000;
inline constexpr std::uint32_t kPopup = 0x80000000;
/// Extended style: a sunken edge.
inline constexpr std::uint32_t kClientEdge = 0x00000200;

// Dialogs.
inline constexpr std::uint32_t kSetFont = 0x0040;
inline constexpr std::uint32_t kModalFrame = 0x0080;
inline constexpr std::uint32_t kIsControl = 0x0400;
inline constexpr std::uint32_t kCenter = 0x0800;

// Buttons.
inline constexpr std::uint32_t kPushButton = 0x0;
inline constexpr std::uint32_t kDefaultButton = 0x1;
inline constexpr std::uint32_t kCheckBox = 0x3;
inline constexpr std::uint32_t kOption = 0x9;
inline constexpr std::uint32_t kFrame = 0x7;
inline constexpr std::uint32_t kOwnerDrawn = 0xB;

// Combo boxes and edit fields.
inline constexpr std::uint32_t kDropDown = 0x0002;
inline constexpr std::uint32_t kDropDownList = 0x0003;
inline constexpr std::uint32_t kComboAutoScroll = 0x0040;
inline constexpr std::uint32_t kEditAutoScroll = 0x0080;

// Static controls.
inline constexpr std::uint32_t kLeft = 0x0;
inline constexpr std::uint32_t kLeftOneLine = 0xC;
inline constexpr std::uint32_t kOwnerDrawnPicture = 0xD;
inline constexpr std::uint32_t kNoPrefix = 0x0080;
inline constexpr std::uint32_t kNotify = 0x0100;
inline constexpr std::uint32_t kBreakAsEdit = 0x2000;
inline constexpr std::uint32_t kEndEllipsis = 0x4000;
inline constexpr std::uint32_t kPathEllipsis = 0x8000;

inline constexpr std::u16string_view kTabClass = u"SysTabControl32";

// Numbers that the keys Enter, Esc and F1 send for.
inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;
inline constexpr int kIdHelp = 9;

}  // namespace quillon::control
