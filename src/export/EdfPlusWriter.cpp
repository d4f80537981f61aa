#include "export/EdfPlusWriter.h"

#include <algorithm>
#include <span>

#include "base/Bilingual.h"
#include "export/EdfHeaderBytes.h"
#include "export/EdfPlusTexts.h"
#include "export/EdfText.h"

namespace quillon {

namespace {

constexpr std::int32_t kPieceSamples = 1024;  ///< read at once of every channel, at least a record

EdfHeaderFields HeaderOf(const RecordingBlock& block, const EdfPlusRequest& request, const EdfPlusStart& start,
                         const EdfPlusRecords& records, std::vector<EdfLimits> limits) {
    EdfHeaderFields fields;
    const std::int64_t samples = std::int64_t{records.count} * records.samples - records.filled;
    fields.patient = u"X X X X";
    fields.recording = EdfPlusRecordingField(start, static_cast<std::int32_t>(samples), records.filled > 0);
    fields.start = EdfDateTime(start.time);
    fields.reserved = "EDF+C";
    fields.records = records.count;
    fields.seconds = records.seconds;
    std::vector<EdfPlusShown> shown(static_cast<std::size_t>(block.ChannelCount()));
    if (request.shown != nullptr) shown = DescribeShown(block, *request.shown, request.averaged);
    for (std::size_t at = 0; at < request.channels.size(); ++at) {
        const std::int16_t channel = request.channels[at];
        const EdfPlusShown& texts = shown.at(static_cast<std::size_t>(channel) - 1);
        fields.signals.push_back({.label = EdfPlusLabel(block.ChannelTitle(channel)),
                                  .transducer = texts.reference,
                                  .unit = EdfPlusUnit(block.ChannelUnit(channel)),
                                  .limits = std::move(limits[at]),
                                  .prefiltering = texts.prefiltering,
                                  .samples = records.samples});
    }
    return fields;
}

EdfSignalFields AnnotationSignal(std::size_t recordBytes) {
    return {.label = u"EDF Annotations",
            .limits = {-32768, 32767, "-1", "1"},
            .samples = static_cast<std::int32_t>(recordBytes / 2)};
}

}  // namespace

bool EdfPlusWriter::Write(RecordingBlock* block, const std::u16string& fileName, const EdfPlusRequest& request) {
    SampleSpan range;
    if (!m_run.FindRange(block, request.first, request.count, range)) return false;
    if (request.channels.empty()) {
        m_run.SetLastFailure(Say(u"There is no channel to write", u"Нет каналов для записи").In(m_run.TextLanguage()));
        return false;
    }
    const EdfPlusStart start = FindEdfPlusStart(*block, range.first);
    File file{*block, request, range, EdfPlusMarks(*block, range, start.fraction)};
    Plan(file);
    std::vector<EdfLimits> limits = m_run.FindLimits(*block, request.channels, range.count, FindWideEdfLimits);
    if (limits.empty()) return false;
    EdfHeaderFields header = HeaderOf(*block, request, start, file.records, std::move(limits));
    header.signals.push_back(AnnotationSignal(file.marks.RecordBytes()));
    ExportOutcome& outcome = m_run.Outcome();
    outcome.filled = file.records.filled;
    outcome.otherDate = !start.known && block->StartTime() != 0.0;
    outcome.ratedAs = file.records.rate;
    return m_run.WriteFile(fileName, EdfHeaderBytes(header),
                           [&](OutputFile& output) { return WriteRecords(file, output); });
}

void EdfPlusWriter::Plan(File& file) {
    // The size of the marks follows from the length of the records, which may have to make room for them.
    const std::size_t channels = file.request.channels.size();
    std::size_t room = 0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        file.records = ChooseEdfPlusRecords(file.block.SampleRate(), file.range.count, channels,
                                            kEdfRecordBytes - std::min(room, kEdfRecordBytes / 2));
        const std::size_t dataBytes = 2 * channels * static_cast<std::size_t>(file.records.samples);
        file.marks.Plan(file.records, dataBytes);
        if (dataBytes + file.marks.RecordBytes() <= kEdfRecordBytes) return;
        room = file.marks.RecordBytes();
    }
}

void EdfPlusWriter::ReadRows(const File& file, std::int32_t first, std::int32_t size, std::size_t stride) {
    const std::vector<std::int16_t>& channels = file.request.channels;
    const std::int32_t from = file.range.first + first;
    if (!file.block.FramesAreCheap() || channels.size() == 1) {
        for (std::size_t at = 0; at < channels.size(); ++at)
            file.block.ReadCodes(channels[at], from, size, m_rows.data() + at * stride);
        return;
    }
    const auto count = static_cast<std::size_t>(size);
    m_all.resize(count * static_cast<std::size_t>(file.block.ChannelCount()));
    file.block.ReadRows(from, size, m_all.data());
    for (std::size_t at = 0; at < channels.size(); ++at)
        std::copy_n(m_all.data() + (static_cast<std::size_t>(channels[at]) - 1) * count, count,
                    m_rows.data() + at * stride);
}

bool EdfPlusWriter::WriteRecord(File& file, std::int32_t record, std::size_t stride, OutputFile& output) {
    const auto samples = static_cast<std::size_t>(file.records.samples);
    const std::size_t first = static_cast<std::size_t>(record) * samples;
    for (std::size_t row = 0; row < file.request.channels.size(); ++row) {
        if (!output.Write(std::as_bytes(std::span(m_rows).subspan(row * stride + first, samples)))) return false;
    }
    const std::string marks = file.marks.NextRecord();
    return output.Write(std::as_bytes(std::span(marks)));
}

bool EdfPlusWriter::WriteRecords(File& file, OutputFile& output) {
    const std::int32_t samples = file.records.samples;
    const std::size_t channels = file.request.channels.size();
    const std::int32_t most = std::max(kPieceSamples / samples, 1);
    const auto stride = static_cast<std::size_t>(most) * static_cast<std::size_t>(samples);
    m_rows.resize(channels * stride);
    for (std::int32_t record = 0; record < file.records.count; record += most) {
        const std::int32_t records = std::min(most, file.records.count - record);
        const std::int32_t first = record * samples;
        const std::int32_t size = std::min(records * samples, file.range.count - first);
        m_run.Read([&] { ReadRows(file, first, size, stride); });
        for (std::size_t row = 0; row < channels; ++row) {
            const std::span codes = std::span(m_rows).subspan(row * stride, stride);
            const auto there = static_cast<std::size_t>(size);
            std::fill(codes.begin() + size, codes.end(), codes[there - 1]);
        }
        for (std::int32_t at = 0; at < records; ++at) {
            if (!WriteRecord(file, at, stride, output)) return false;
        }
        if (!m_run.Report(std::int64_t{first} + size, file.range.count)) return false;
    }
    return true;
}

}  // namespace quillon
