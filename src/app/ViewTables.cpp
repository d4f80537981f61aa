#include "app/ViewTables.h"

#include <utility>

#include "app/Commands.h"
#include "app/GraphKeys.h"
#include "app/StringIds.h"
#include "base/Text.h"

namespace quillon {

namespace {

/// Title, minimum, maximum, their difference, mean, RMS, standard deviation.
constexpr std::size_t kStatisticsColumns = 7;

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

std::u16string RangeText(const ViewBlock& block, const SampleSpan& samples, const FormatOptions& format,
                         const UserServices& services) {
    std::u16string text = PositionText(block, samples.first + 1, u" ", format) + u" \u2013 " +
                          PositionText(block, samples.End(), u" ", format) + u", " + Decimal(samples.count) + u' ' +
                          services.Text(IDS_SAMPLES);
    if (!(block.sampleRate > 0.0)) return text;
    FormatOptions duration = format;
    duration.timeOfDay = false;
    return text + u", " + FormatTime(samples.count / block.sampleRate, u" ", duration);
}

TextTable StatisticsTable(const ReadoutSource& source, const Selection& selection, const UserServices& services) {
    TextTable table;
    table.title = PlainCaption(services.Text(IDS_STATISTICS));
    // Too long for a title bar, whose font and buttons the system chooses.
    table.heading = RangeText(source.block, selection.Samples(), source.format, services);
    for (int column = 0; column < static_cast<int>(kStatisticsColumns); ++column)
        table.columns.push_back(services.Text(IDS_STAT_0 + column));
    table.numeric = true;
    table.close = services.Text(IDS_CLOSE);
    table.copy = services.Text(IDS_COPY);
    return table;
}

std::vector<std::vector<std::u16string>> StatisticsRows(const ReadoutSource& source, const StatisticsPass& pass) {
    std::vector<std::vector<std::u16string>> rows;
    const auto add = [&](std::int16_t channel, const std::vector<double>& values) {
        const std::int16_t number = source.block.channelNumbers[static_cast<std::size_t>(channel - 1)];
        std::vector<std::u16string> row{source.slots[static_cast<std::size_t>(number)].title};
        for (const double value : values) row.push_back(ReadoutValue(source, channel, value));
        row.resize(kStatisticsColumns, u"\u2026");
        rows.push_back(std::move(row));
    };
    if (pass.IsDone()) {
        for (const ChannelStatistics& found : pass.Result()) {
            add(found.channel,
                {found.minimum, found.maximum, found.maximum - found.minimum, found.mean, found.rms, found.deviation});
        }
    } else if (const auto extremes = pass.Extremes()) {
        for (const ChannelStatistics& found : *extremes)
            add(found.channel, {found.minimum, found.maximum, found.maximum - found.minimum});
    } else {
        for (const std::int16_t channel : pass.Channels()) add(channel, {});
    }
    return rows;
}

TextTable KeysTable(const UserServices& services) {
    TextTable table;
    table.title = PlainCaption(services.Text(IDS_KEYSANDMOUSE));
    table.columns = {services.Text(IDS_TABLE_KEY), services.Text(IDS_TABLE_ACTION)};
    table.close = services.Text(IDS_CLOSE);
    table.copy = services.Text(IDS_COPY);
    for (const KeyBinding& binding : KeyBindings()) {
        const int captionId = CaptionId(binding.command);
        std::u16string action =
            PlainCaption(captionId == 0 ? ComputedCaption(binding.command, false, u'.') : services.Text(captionId));
        if (captionId == 0) action.insert(0, PlainCaption(services.Text(IDS_MENU_PAGE)) + u": ");
        // The menus use the same captions for both zooms.
        if (binding.command / 2 == mnuZoomX / 2) action.insert(0, PlainCaption(services.Text(IDS_MENU_XZOOM)) + u": ");
        if (binding.command / 2 == mnuZoomY / 2) action.insert(0, PlainCaption(services.Text(IDS_MENU_YSCALE)) + u": ");
        if (Within(binding.command, mnuRead, static_cast<int>(kReadingSteps.size())))
            action.insert(0, PlainCaption(services.Text(IDS_MENU_READ)) + u": ");
        if (Within(binding.command, mnuLane, static_cast<int>(LaneStep::Count)))
            action.insert(0, PlainCaption(services.Text(IDS_MENU_LANE)) + u": ");
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
