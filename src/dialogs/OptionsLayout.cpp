#include "dialogs/OptionsLayout.h"

#include <utility>

#include "base/Text.h"
#include "dialogs/DialogTexts.h"
#include "view/CursorPicture.h"

namespace quillon {

namespace {

/// A control in dialog units of its page.
struct PageItem {
    std::uint16_t windowClass;
    std::uint32_t style;
    int id;
    int text;  ///< number of its caption, 0: none; of lists and fields of the name that is not seen
    short x;
    short y;
    short width;
    short height;
};

constexpr std::uint16_t kButton = DialogTemplate::kButton;
constexpr std::uint16_t kStatic = DialogTemplate::kStatic;
constexpr std::uint16_t kCombo = DialogTemplate::kComboBox;

constexpr std::uint32_t kFrame = control::kFrame | control::kGroup;
constexpr std::uint32_t kFirstOption = control::kOption | control::kGroup | control::kTabStop;
constexpr std::uint32_t kNextOption = control::kOption;
constexpr std::uint32_t kCheck = control::kCheckBox | control::kGroup | control::kTabStop;
constexpr std::uint32_t kList = control::kDropDownList | control::kVerticalScroll | control::kGroup | control::kTabStop;
constexpr std::uint32_t kEditList =
    control::kDropDown | control::kComboAutoScroll | control::kVerticalScroll | control::kGroup | control::kTabStop;
constexpr std::uint32_t kLabel = control::kLeftOneLine | control::kGroup;
constexpr std::uint32_t kPicture = control::kOwnerDrawnPicture | control::kNotify | control::kGroup;

constexpr short kPageWidth = 312;
constexpr short kPageHeight = 173;

constexpr PageItem kGeneral[] = {
    {kButton, kFrame, frTime, IDS_OPT_TIME, 4, 2, 150, 72},
    {kButton, kFirstOption, optTime, IDS_OPT_TIME_0, 12, 14, 136, 10},
    {kButton, kNextOption, optTime + 1, IDS_OPT_TIME_0 + 1, 12, 27, 136, 10},
    {kButton, kNextOption, optTime + 2, IDS_OPT_TIME_0 + 2, 12, 57, 136, 10},
    {kCombo, kList, cboTime, IDS_OPT_TIME_0 + 1, 24, 39, 84, 100},
    {kButton, kFrame, frScale, IDS_OPT_SCALE, 158, 2, 150, 72},
    {kButton, kFirstOption, optScale, IDS_OPT_SCALE_0, 166, 14, 66, 10},
    {kButton, kNextOption, optScale + 1, IDS_OPT_SCALE_0 + 1, 234, 14, 68, 10},
    {kButton, kCheck, chkUnitScaling, IDS_OPT_UNITSCALING, 166, 28, 136, 10},
    {kButton, kFirstOption, optDigits, IDS_OPT_DIGITS_0, 166, 43, 98, 10},
    {kButton, kNextOption, optDigits + 1, IDS_OPT_DIGITS_0 + 1, 166, 57, 98, 10},
    {kCombo, kList, cboDigits, IDS_OPT_DIGITS_0 + 1, 266, 48, 36, 140},
    {kButton, kFrame, frGrid, IDS_OPT_GRID, 4, 78, 304, 32},
    {kButton, control::kOwnerDrawn | control::kGroup | control::kTabStop, pbGridColor, IDS_OPT_GRIDCOLOR, 12, 89, 26,
     14},
    {kButton, kFirstOption, optGridStyle, IDS_OPT_GRID_0, 56, 91, 76, 10},
    {kButton, kNextOption, optGridStyle + 1, IDS_OPT_GRID_0 + 1, 136, 91, 76, 10},
    {kButton, kNextOption, optGridStyle + 2, IDS_OPT_GRID_0 + 2, 216, 91, 86, 10},
    {kButton, kFrame, frWCursor, IDS_OPT_CURSOR, 4, 114, 304, 56},
    {kStatic, kPicture, imgCur, 0, 20, 124, 24, 24},
    {kStatic, kPicture, imgCur + 1, 0, 94, 124, 24, 24},
    {kStatic, kPicture, imgCur + 2, 0, 168, 124, 24, 24},
    {kStatic, kPicture, imgCur + 3, 0, 242, 124, 24, 24},
    {kButton, kFirstOption, optCursor, IDS_OPT_CURSOR_0, 12, 152, 72, 10},
    {kButton, kNextOption, optCursor + 1, IDS_OPT_CURSOR_0 + 1, 86, 152, 72, 10},
    {kButton, kNextOption, optCursor + 2, IDS_OPT_CURSOR_0 + 2, 160, 152, 72, 10},
    {kButton, kNextOption, optCursor + 3, IDS_OPT_CURSOR_0 + 3, 234, 152, 70, 10},
};

constexpr PageItem kSpectrogram[] = {
    {kButton, kFrame, frFFTPalette, IDS_OPT_PALETTE, 4, 2, 150, 58},
    {kButton, kFirstOption, optFFTPalette, IDS_OPT_PALETTE_0, 12, 14, 136, 10},
    {kButton, kNextOption, optFFTPalette + 1, IDS_OPT_PALETTE_0 + 1, 12, 28, 136, 10},
    {kButton, kNextOption, optFFTPalette + 2, IDS_OPT_PALETTE_0 + 2, 12, 42, 136, 10},
    {kButton, kFrame, frSpectrumType, IDS_OPT_SPECTRUM, 158, 2, 150, 58},
    {kButton, kFirstOption, optSpectrumType, IDS_OPT_SPECTRUM_0, 166, 14, 136, 10},
    {kButton, kNextOption, optSpectrumType + 1, IDS_OPT_SPECTRUM_0 + 1, 166, 28, 136, 10},
    {kStatic, kLabel, lblAmpScale, IDS_OPT_AMPSCALE, 12, 72, 74, 8},
    {kCombo, kEditList, cboAmpScale, 0, 88, 70, 66, 140},
    {kStatic, kLabel, lblDBRange, IDS_OPT_DBRANGE, 12, 90, 74, 8},
    {kCombo, kEditList, cboDBRange, 0, 88, 88, 66, 100},
    {kStatic, kLabel, lbDB, IDS_OPT_DB, 160, 90, 60, 8},
    {kStatic, kLabel, lblFFTWindow, IDS_OPT_WINDOW, 12, 108, 74, 8},
    {kCombo, kList, cboFFTWindow, 0, 88, 106, 66, 100},
    {kStatic, kLabel, lblFFTSize, IDS_OPT_FFTSIZE, 12, 126, 74, 8},
    {kCombo, kList, cboFFTSize, 0, 88, 124, 66, 120},
    {kStatic, kLabel, lblFFTPersent, 0, 160, 126, 140, 8},
};

constexpr PageItem kExport[] = {
    {kButton, kFrame, frText, IDS_OPT_TEXT, 4, 2, 304, 50},
    {kButton, kCheck, chkXColumn, IDS_OPT_XCOLUMN, 12, 15, 74, 10},
    {kButton, kFirstOption, optXFormat, IDS_OPT_XFORMAT_0, 88, 15, 70, 10},
    {kButton, kNextOption, optXFormat + 1, IDS_OPT_XFORMAT_0 + 1, 162, 15, 70, 10},
    {kButton, kCheck, chkAsShown, IDS_OPT_ASSHOWN, 234, 15, 70, 10},
    {kButton, kCheck, chkRowHead, IDS_OPT_ROW_0, 12, 34, 74, 10},
    {kButton, kCheck, chkRowSize, IDS_OPT_ROW_0 + 1, 88, 34, 70, 10},
    {kButton, kCheck, chkRowRate, IDS_OPT_ROW_0 + 2, 162, 34, 70, 10},
    {kButton, kCheck, chkRowStep, IDS_OPT_ROW_0 + 3, 234, 34, 70, 10},
    {kButton, kFrame, frFile, IDS_OPT_FILE, 4, 56, 150, 44},
    {kButton, kFirstOption, optFile, IDS_OPT_FILE_0, 12, 68, 136, 10},
    {kButton, kNextOption, optFile + 1, IDS_OPT_FILE_0 + 1, 12, 82, 136, 10},
    {kButton, kFrame, frCh, IDS_OPT_CH, 158, 56, 150, 44},
    {kButton, kFirstOption, optCh, IDS_OPT_CH_0, 166, 68, 136, 10},
    {kButton, kNextOption, optCh + 1, IDS_OPT_CH_0 + 1, 166, 82, 136, 10},
    {kButton, kFrame, frFastFile, IDS_OPT_FASTFILE, 4, 104, 304, 34},
    {DialogTemplate::kEdit, control::kEditAutoScroll | control::kGroup | control::kTabStop, txtFastFile,
     IDS_OPT_FASTFILE, 12, 117, 236, 13},
    {kButton, control::kPushButton | control::kGroup | control::kTabStop, cmdBrowse, IDS_OPT_BROWSE, 252, 116, 50, 14},
};

constexpr OptionChoice kChoices[] = {
    {optTime, 3, &OptionEntries::timeFormat},
    {cboTime, 0, &OptionEntries::timeIndex},
    {optScale, 2, &OptionEntries::scaleFormat},
    {optDigits, 2, &OptionEntries::digitsType},
    {cboDigits, 0, &OptionEntries::digitsCount},
    {optGridStyle, 3, &OptionEntries::gridStyle},
    {optCursor, kCursorStyles, &OptionEntries::waveformCursor},
    {optFFTPalette, 3, &OptionEntries::palette},
    {optSpectrumType, 2, &OptionEntries::spectrumType},
    {cboFFTWindow, 0, &OptionEntries::window},
    {cboFFTSize, 0, &OptionEntries::fftSize},
    {optXFormat, 2, &OptionEntries::xFormat},
    {optFile, 2, &OptionEntries::fileType},
    {optCh, 2, &OptionEntries::channels},
};

constexpr OptionTick kTicks[] = {
    {chkUnitScaling, &OptionEntries::unitScaling}, {chkXColumn, &OptionEntries::xColumn},
    {chkRowHead, &OptionEntries::rowHead},         {chkRowSize, &OptionEntries::rowSize},
    {chkRowRate, &OptionEntries::rowRate},         {chkRowStep, &OptionEntries::rowStep},
    {chkAsShown, &OptionEntries::asShown},
};

constexpr OptionText kTexts[] = {
    {cboAmpScale, &OptionEntries::amplitudeScale},
    {cboDBRange, &OptionEntries::decibelRange},
    {txtFastFile, &OptionEntries::fastFile},
};

}  // namespace

std::span<const OptionChoice> OptionChoices() {
    return kChoices;
}

std::span<const OptionTick> OptionTicks() {
    return kTicks;
}

std::span<const OptionText> OptionTexts() {
    return kTexts;
}

std::vector<std::u16string> OptionLines(const UserServices& services, int id) {
    std::vector<std::u16string> lines;
    const auto add = [&](int first, int count) {
        for (int text = first; text < first + count; ++text) lines.push_back(services.Text(text));
    };
    switch (id) {
        case cboTime: add(IDS_OPT_TIMEUNIT_0, kTimeUnits); break;
        case cboDigits:
            add(IDS_OPT_AUTO, 1);
            for (int digits = 1; digits < kDigitCounts; ++digits) lines.push_back(Decimal(digits));
            break;
        case cboAmpScale: lines.assign(kAmplitudeScales.begin(), kAmplitudeScales.end()); break;
        case cboDBRange: lines.assign(kDecibelRanges.begin(), kDecibelRanges.end()); break;
        case cboFFTWindow: add(IDS_OPT_WINDOW_0, 4); break;
        case cboFFTSize:
            for (int size = 0; size < kFftSizes; ++size) lines.push_back(Decimal(FftSize(size)));
            break;
        default: break;
    }
    return lines;
}

DialogTemplate OptionsFrame(const UserServices& services) {
    const auto text = [&](int id) { return services.Text(id); };
    // Larger than a page by more than the tabs and edges of the strip need.
    constexpr short width = kPageWidth + 8;
    constexpr short height = kPageHeight + 20;
    constexpr short row = 7 + height + 5;
    DialogTemplate dialog(text(IDS_DLG_OPTIONS), width + 14, row + 14 + 7);
    dialog.Item(DialogTemplate::kButton, control::kGroup | control::kTabStop | control::kDefaultButton, cmdOk,
                text(IDS_OK), width - 151, row, 50, 14);
    dialog.Item(DialogTemplate::kButton, control::kTabStop | control::kPushButton, cmdCancel, text(IDS_CANCEL),
                width - 97, row, 50, 14);
    dialog.Item(DialogTemplate::kButton, control::kTabStop | control::kPushButton, cmdHelp, text(IDS_OPT_HELP),
                width - 43, row, 50, 14);
    dialog.Name(text(IDS_DLG_OPTIONS));
    // Behind the pages in front of it, and therefore last in the tab order.
    dialog.Item(control::kTabClass, control::kGroup | control::kTabStop | control::kClipSiblings, tabOptions, 7, 7,
                width, height, 0);
    return dialog;
}

DialogTemplate OptionsPage(const UserServices& services, int page) {
    const std::span<const PageItem> items = page == 0   ? std::span<const PageItem>(kGeneral)
                                            : page == 1 ? std::span<const PageItem>(kSpectrogram)
                                                        : std::span<const PageItem>(kExport);
    DialogTemplate dialog({}, kPageWidth, kPageHeight, DialogTemplate::kPage);
    for (const PageItem& item : items) {
        std::u16string text = item.text != 0 ? services.Text(item.text) : std::u16string();
        const bool showsOther = item.windowClass == kCombo || item.windowClass == DialogTemplate::kEdit;
        if (showsOther && !text.empty()) dialog.Name(std::exchange(text, {}));
        dialog.Item(item.windowClass, item.style, item.id, text, item.x, item.y, item.width, item.height);
    }
    return dialog;
}

}  // namespace quillon
