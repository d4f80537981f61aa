#include "app/win/ViewDialogs.h"

#include "app/Commands.h"
#include "app/GraphKeys.h"
#include "app/StringIds.h"
#include "app/win/InputBox.h"
#include "app/win/TableWindow.h"
#include "base/Text.h"

namespace quillon {

namespace {

/// A caption without the mark of its mnemonic and its dots.
std::wstring Plain(const std::u16string& caption) {
    std::wstring text;
    for (const wchar_t letter : Wide(caption)) {
        if (letter != L'&' && letter != L'.') text.push_back(letter);
    }
    return text;
}

}  // namespace

void ShowStatistics(HWND owner, const ReadoutSource& source, const Selection& selection, const UserServices& services) {
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    const std::vector<ChannelStatistics> statistics = StatisticsOf(source, selection.Samples());
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    TableTexts texts;
    texts.title = Plain(services.Text(IDS_STATISTICS));
    // Too long for a caption, whose letters and buttons are of the system's choice.
    texts.heading = Wide(PositionText(source.block, selection.First(), u" ", source.format) + u" \u2013 " +
                         PositionText(source.block, selection.Last(), u" ", source.format) + u", " +
                         Decimal(selection.Count()) + u' ' + services.Text(IDS_SAMPLES));
    if (source.block.sampleRate > 0.0) {
        FormatOptions duration = source.format;
        duration.timeOfDay = false;
        texts.heading += L", " + Wide(FormatTime(selection.Count() / source.block.sampleRate, u" ", duration));
    }
    constexpr int columns = 7;
    for (int column = 0; column < columns; ++column) texts.columns.push_back(Wide(services.Text(IDS_STAT_0 + column)));
    texts.numeric = true;
    texts.close = Wide(services.Text(IDS_CLOSE));
    texts.copy = Wide(services.Text(IDS_COPY));
    std::vector<std::vector<std::wstring>> rows;
    for (const ChannelStatistics& channel : statistics) {
        const auto at = static_cast<std::size_t>(channel.channel - 1);
        std::vector<std::wstring> row{
            Wide(source.slots[static_cast<std::size_t>(source.block.channelNumbers[at])].title)};
        for (const double value : {channel.minimum, channel.maximum, channel.maximum - channel.minimum, channel.mean,
                                   channel.rms, channel.deviation})
            row.push_back(Wide(ReadoutValue(source, channel.channel, value)));
        rows.push_back(std::move(row));
    }
    ShowTable(owner, texts, rows);
}

void ShowKeys(HWND owner, const UserServices& services) {
    TableTexts texts;
    texts.title = Plain(services.Text(IDS_KEYSANDMOUSE));
    texts.columns = {Wide(services.Text(IDS_TABLE_KEY)), Wide(services.Text(IDS_TABLE_ACTION))};
    texts.close = Wide(services.Text(IDS_CLOSE));
    texts.copy = Wide(services.Text(IDS_COPY));
    std::vector<std::vector<std::wstring>> rows;
    for (const KeyBinding& binding : KeyBindings()) {
        std::wstring action = Plain(services.Text(CaptionId(binding.command)));
        // Both zooms are called the same in their menus.
        if (binding.command / 2 == mnuZoomX / 2) action = Plain(services.Text(IDS_MENU_XZOOM)) + L": " + action;
        if (binding.command / 2 == mnuZoomY / 2) action = Plain(services.Text(IDS_MENU_YSCALE)) + L": " + action;
        if (binding.place != KeyPlace::Everywhere && binding.place != KeyPlace::Graph) {
            const int list = static_cast<int>(binding.place) - static_cast<int>(KeyPlace::FolderList);
            action += L" (" + Wide(services.Text(IDS_IN_LIST_0 + list)) + L")";
        }
        rows.push_back({Wide(KeyText(binding, services)), action});
    }
    for (int gesture = 0; gesture < IDS_MOUSE_COUNT; ++gesture)
        rows.push_back(
            {Wide(services.Text(IDS_MOUSE_0 + 2 * gesture)), Wide(services.Text(IDS_MOUSE_0 + 2 * gesture + 1))});
    ShowTable(owner, texts, rows);
}

std::optional<std::u16string> AskForPlace(HWND owner, const std::u16string& present, const UserServices& services) {
    const std::optional<std::wstring> answer =
        AskForText(owner,
                   {Plain(services.Text(IDS_GOTOPLACE)), Wide(services.Text(IDS_PLACE_PROMPT)),
                    Wide(services.Text(IDS_OK)), Wide(services.Text(IDS_CANCEL))},
                   Wide(present));
    if (!answer) return std::nullopt;
    return Narrow16(*answer);
}

}  // namespace quillon
