#include "export/QL_Export.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "base/DateTime.h"
#include "base/FilePath.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"
#include "data/CoreTexts.h"
#include "data/ShownText.h"
#include "export/KVExport.h"
#include "export/TextRows.h"

namespace quillon {

namespace {

/// Position, from 1, of the channel of that acquisition number; 0: there is none.
std::int16_t PositionOf(const RecordingBlock& block, std::int16_t number) {
    std::int16_t position = block.ChannelCount();
    while (position > 0 && block.ChannelNumber(position) != number) --position;
    return position;
}

std::vector<TextChannel> FindChannels(const RecordingBlock& block, const TextExportRequest& request,
                                      const ChannelSlots& slots) {
    std::vector<TextChannel> found;
    for (const std::int16_t number : request.channels) {
        const ChannelSlot* slot = SlotOf(slots, number);
        const std::int16_t position = PositionOf(block, number);
        if (slot == nullptr || position == 0) continue;
        found.push_back(
            {position, TextTitle(slot->title, number), block.ChannelScale(position), block.ChannelOffset(position)});
    }
    return found;
}

TextXColumn XColumnOf(const TextExportRequest& request) {
    if (!request.xColumn) return TextXColumn::None;
    return request.xFormat == 0 ? TextXColumn::Time : TextXColumn::SampleNumber;
}

/// Seconds since midnight of an automation date, whose fraction counts forward from midnight before 1900 too.
double SecondsOfDay(double date) {
    return std::fabs(date - std::trunc(date)) * kSecondsPerDay;
}

/// Reads the codes of a chunk in the order that is cheap for the block.
class ChunkReader {
  public:
    ChunkReader(RecordingBlock& block, const std::vector<TextChannel>& channels)
        : m_block(block),
          m_channels(channels),
          m_frames(channels.size() > 1 && block.FramesAreCheap()),
          m_width(m_frames ? static_cast<std::size_t>(block.ChannelCount()) : channels.size()),
          m_codes(m_width * static_cast<std::size_t>(kTextChunkRows)) {
        for (std::size_t i = 0; i < channels.size(); ++i) {
            const std::size_t start = m_frames ? static_cast<std::size_t>(channels[i].position) - 1
                                               : i * static_cast<std::size_t>(kTextChunkRows);
            m_columns.push_back({m_codes.data() + start, m_frames ? m_width : 1});
        }
    }

    /// `first` counts from 0.
    std::span<const TextCodes> Read(std::int32_t first, std::int32_t count) {
        if (m_frames) {
            m_block.ReadFrames(first, count, m_codes.data());
            return m_columns;
        }
        for (std::size_t i = 0; i < m_channels.size(); ++i) {
            std::int16_t* const codes = m_codes.data() + i * static_cast<std::size_t>(kTextChunkRows);
            m_block.ReadCodes(m_channels[i].position, first, count, codes);
        }
        return m_columns;
    }

  private:
    RecordingBlock& m_block;
    const std::vector<TextChannel>& m_channels;
    bool m_frames;
    std::size_t m_width;
    std::vector<std::int16_t> m_codes;
    std::vector<TextCodes> m_columns;
};

std::string HeaderLines(const TextExportRequest& request, std::int32_t count, double rate, char separator,
                        std::string_view lineEnd) {
    const auto general = static_cast<char16_t>(separator);
    std::string lines;
    const auto add = [&](bool wanted, const std::u16string& text) {
        if (wanted) lines.append(Utf8(text)).append(lineEnd);
    };
    add(request.rowOfSize, Decimal(count));
    add(request.rowOfRate, NumberText(rate, general));
    add(request.rowOfStep, NumberText(1.0 / rate, general));
    return lines;
}

/// The line with its end; empty where the channels are as stored.
std::string ShownLine(const RecordingBlock& block, const std::vector<TextChannel>& channels,
                      const TextExportContext& context) {
    if (context.shown == nullptr) return {};
    std::set<std::int16_t> positions;
    for (const TextChannel& channel : channels) positions.insert(channel.position);
    const std::u16string text = ShownText(*context.shown, block, positions, context.language,
                                          static_cast<char16_t>(TextSeparator(context.format)));
    return text.empty() ? std::string() : TextTitle(text, 0).append(context.lineEnd);
}

/// Numbers of the channel table, in its order.
std::vector<std::int16_t> ChannelList(const TextExportSettings& settings, const ChannelSlots& slots) {
    std::vector<std::int16_t> numbers;
    for (std::int16_t number = 0; number < kSlotCount; ++number) {
        if (settings.channels <= 0 || slots[static_cast<std::size_t>(number)].shown) numbers.push_back(number);
    }
    return numbers;
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char letter) { return static_cast<unsigned char>(letter) < 128; });
}

}  // namespace

std::u16string ChannelFileName(const std::u16string& target, std::int16_t channelNumber) {
    std::size_t dot = target.rfind(u'.');
    if (dot == std::u16string::npos || dot < NameStart(target)) dot = target.size();
    return target.substr(0, dot) + Decimal(channelNumber + 1) + target.substr(dot);
}

bool ExportText(const std::u16string& target, RecordingBlock& block, std::int32_t first, std::int32_t count,
                const TextExportSettings& settings, TextExportContext& context) {
    TextExportRequest request{target,
                              settings.rowSize != 0,
                              settings.rowRate != 0,
                              settings.rowStep != 0,
                              settings.rowHead != 0,
                              settings.xColumn != 0,
                              settings.xFormat,
                              context.rawCodes,
                              {},
                              first,
                              count};
    request.channels = ChannelList(settings, context.slots);
    if (target == kClipboardTarget || settings.fileType != 0) return WriteTextExport(block, request, context);
    bool any = false;
    std::vector<std::int16_t> numbers = std::move(request.channels);
    std::erase_if(numbers, [&](std::int16_t number) { return PositionOf(block, number) == 0; });
    request.files = static_cast<std::int32_t>(numbers.size());
    for (const std::int16_t number : numbers) {
        request.channels = {number};
        request.target = ChannelFileName(target, number);
        if (WriteTextExport(block, request, context)) any = true;
        if (context.ended) return false;
        ++request.file;
    }
    return any;
}

bool WriteTextExport(RecordingBlock& block, const TextExportRequest& request, TextExportContext& context) {
    context.ended = false;
    const std::vector<TextChannel> channels = FindChannels(block, request, context.slots);
    const std::int32_t samples = block.SampleCount();
    if (channels.empty() || request.first < 1 || request.first > samples || request.count < 1) return false;
    const std::int32_t count = std::min(request.count, samples - request.first + 1);
    const std::int32_t chunks = (count - 1) / kTextChunkRows + 1;
    std::int64_t shown = -1;
    const double rate = block.SampleRate();
    const char separator = TextSeparator(context.format);
    const TextXValues x(XColumnOf(request), rate, SecondsOfDay(block.StartTime()), request.first, context.format);
    TextRows rows(x, channels, request.rawCodes, separator, context.lineEnd);
    ChunkReader reader(block, channels);

    std::u16string failure;
    const std::unique_ptr<TextSink> sink = context.open(request.target, failure);
    if (!sink) {
        context.failures.push_back(failure);
        return false;
    }
    const auto abandon = [&] {
        while (sink->AbandonPart()) static_cast<void>(context.runPending && context.runPending());
        return false;
    };
    const auto isStopped = [&] {
        return context.ended = context.stopped = context.runPending && !context.runPending();
    };
    const bool file = request.target != kClipboardTarget;
    const std::string titles = request.titleRow ? TextTitleLine(x.kind(), channels, context.lineEnd) : std::string();
    const std::string shownLine = ShownLine(block, channels, context);
    if (file && context.utf8Mark && !IsAscii(shownLine + titles)) sink->Write("\xEF\xBB\xBF");
    sink->Write(shownLine);
    sink->Write(HeaderLines(request, count, rate, separator, context.lineEnd));
    sink->Write(titles);
    for (std::int32_t chunk = 0; chunk < chunks && !sink->Failed(); ++chunk) {
        const std::int64_t percent = (std::int64_t{request.file} * chunks + chunk) * 100 / chunks / request.files;
        // The same in every language, as are the other fixed texts of this file.
        if (percent != std::exchange(shown, percent))
            context.services.SetStatus(u"Export to text: " + Decimal(percent) + u"% ");
        const std::int32_t done = chunk * kTextChunkRows;
        const std::int32_t size = std::min(kTextChunkRows, count - done);
        sink->Write(rows.Make(done, size, reader.Read(request.first - 1 + done, size)));
        if (isStopped()) return abandon();
    }
    if (!file) context.services.SetStatus(u"Copy text...");
    while (sink->FinishPart()) {
        if (isStopped()) return abandon();
    }
    if (!sink->Close()) {
        context.failures.push_back(sink->ErrorText());
        context.ended = true;
        return abandon();
    }
    context.written.push_back(request.target);
    if (request.file + 1 == request.files) context.services.SetStatus({});
    return true;
}

std::vector<std::u16string> TextExportFiles(const std::u16string& target, const RecordingBlock& block,
                                            const TextExportSettings& settings, const ChannelSlots& slots) {
    if (settings.fileType != 0) return {target};
    std::vector<std::u16string> files;
    for (const std::int16_t number : ChannelList(settings, slots)) {
        if (PositionOf(block, number) != 0) files.push_back(ChannelFileName(target, number));
    }
    return files;
}

std::u16string BuildSaveFilter() {
    std::u16string filter;
    for (std::int32_t type = 1; type <= KVExport::FileTypeCount(); ++type) {
        const std::u16string extension = KVExport::FileTypeExtension(type);
        filter += KVExport::FileTypeDescription(type) + u" (" + extension + u")|" + extension + u"|";
    }
    return filter + u"Text files (*.txt)|*.txt|EDF+ with marks (*.edf)|*.edf";
}

bool FastExportDialog(SaveFileDialog& dialog, const UserServices& services, std::u16string& fileName) {
    dialog.title = services.Text(IDS_FAST_FILE);
    dialog.filter = u"Text files (*.txt)|*.txt|All files (*.*)|*.*";
    dialog.folder = FolderOf(fileName);
    dialog.fileName = FileNameOf(fileName);
    const bool text = fileName.size() > 4 && LowerCase(fileName).ends_with(u".txt");
    dialog.filterIndex = fileName.empty() || text ? 1 : 2;
    if (!dialog.Show()) return false;
    fileName = dialog.fileName;
    return true;
}

}  // namespace quillon
