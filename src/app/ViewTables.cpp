#include "app/ViewTables.h"

#include <utility>

#include "app/Commands.h"
#include "app/GraphKeys.h"
#include "app/StringIds.h"
#include "base/Text.h"
#include "view/Statistics.h"

namespace quillon {

namespace {

void AppendLine(std::u16string& text, std::size_t columns, const auto& cellAt) {
    for (std::size_t column = 0; column < columns; ++column) {
        if (column != 0) text += u'\t';
        for (const char16_t letter : std::u16string(cellAt(column)))
            text += letter == u'\t' || letter == u'\r' || letter == u'\n' ? u' ' : letter;
    }
    text += u"\r\n";
}

}  // namespace

std::u16string TabbedText(const TextTable& table) {
    std::u16string text;
    const std::size_t columns = table.columns.size();
    AppendLine(text, columns, [&](std::size_t column) { return table.columns[column]; });
    for (std::size_t row = 0; row < table.rows.size(); ++row)
        AppendLine(text, columns, [&](std::size_t column) { return table.Cell(row, column); });
    return text;
}

std::u16string PlainCaption(const std::u16string& caption) {
    std::u16string text = caption;
    std::erase_if(text, [](char16_t letter) { return letter == u'&' || letter == u'.'; });
    return text;
}

TextTable StatisticsTable(const ReadoutSource& source, const Selection& selection, const UserServices& services) {
    TextTable table;
    table.title = PlainCaption(services.Text(IDS_STATISTICS));
    // Too long for a title bar, whose font and buttons the system chooses.
    table.heading = PositionText(source.block, selection.First(), u" ", source.format) + u" \u2013 " +
                    PositionText(source.block, selection.Last(), u" ", source.format) + u", " +
                    Decimal(selection.Count()) + u' ' + services.Text(IDS_SAMPLES);
    if (source.block.sampleRate > 0.0) {
        FormatOptions duration = source.format;
        duration.timeOfDay = false;
        table.heading += u", " + FormatTime(selection.Count() / source.block.sampleRate, u" ", duration);
    }
    constexpr int columns = 7;
    for (int column = 0; column < columns; ++column) table.columns.push_back(services.Text(IDS_STAT_0 + column));
    table.numeric = true;
    table.close = services.Text(IDS_CLOSE);
    table.copy = services.Text(IDS_COPY);
    for (const ChannelStatistics& channel : StatisticsOf(source, selection.Samples())) {
        const auto at = static_cast<std::size_t>(channel.channel - 1);
        std::vector<std::u16string> row{source.slots[static_cast<std::size_t>(source.block.channelNumbers[at])].title};
        for (const double value : {channel.minimum, channel.maximum, channel.maximum - channel.minimum, channel.mean,
                                   channel.rms, channel.deviation})
            row.push_back(ReadoutValue(source, channel.channel, value));
        table.rows.push_back(std::move(row));
    }
    return table;
}

TextTable KeysTable(const UserServices& services) {
    TextTable table;
    table.title = PlainCaption(services.Text(IDS_KEYSANDMOUSE));
    table.columns = {services.Text(IDS_TABLE_KEY), services.Text(IDS_TABLE_ACTION)};
    table.close = services.Text(IDS_CLOSE);
    table.copy = services.Text(IDS_COPY);
    for (const KeyBinding& binding : KeyBindings()) {
        std::u16string action = PlainCaption(services.Text(CaptionId(binding.command)));
        // The menus use the same captions for both zooms.
        if (binding.command / 2 == mnuZoomX / 2) action.insert(0, PlainCaption(services.Text(IDS_MENU_XZOOM)) + u": ");
        if (binding.command / 2 == mnuZoomY / 2) action.insert(0, PlainCaption(services.Text(IDS_MENU_YSCALE)) + u": ");
        if (binding.place != KeyPlace::Everywhere && binding.place != KeyPlace::Graph) {
            const int list = static_cast<int>(binding.place) - static_cast<int>(KeyPlace::FolderList);
            action += u" (" + services.Text(IDS_IN_LIST_0 + list) + u")";
        }
        table.rows.push_back({KeyText(binding, services), action});
    }
    for (int gesture = 0; gesture < IDS_MOUSE_COUNT; ++gesture)
        table.rows.push_back({services.Text(IDS_MOUSE_0 + 2 * gesture), services.Text(IDS_MOUSE_0 + 2 * gesture + 1)});
    return table;
}

}  // namespace quillon
