#include "norvik/private/WfdbRecord.h"

#include <algorithm>
#include <map>

#include "base/FilePath.h"
#include "base/Text.h"
#include "norvik/private/DifferenceSource.h"
#include "norvik/private/FlacSource.h"
#include "norvik/private/GatheredSource.h"
#include "norvik/private/PackedSource.h"
#include "norvik/private/PartSource.h"
#include "norvik/private/Refusals.h"
#include "norvik/private/ReorderedSource.h"

namespace quillon {

namespace {

/// The formats of whole FLAC files: this, and the bits of a sample.
constexpr int kFlacFormat = 500;

/// A file of samples, and the signals in it.
struct SignalFile {
    std::u16string name;               ///< for the user
    std::vector<std::size_t> signals;  ///< indexes in WfdbHeader::signals
    NumberFile numbers;
    std::uint64_t frames = 0;
    /// Whether frames hold one number of each signal: those of FLAC files always do, whatever the record's frames hold.
    [[nodiscard]] bool HoldsOneOfEach() const { return numbers.frameNumbers == signals.size(); }
};

/// The files in the order in which they are first named.
std::vector<SignalFile> FilesOf(const WfdbHeader& header) {
    std::vector<SignalFile> files;
    std::map<std::string_view, std::size_t> known;
    for (std::size_t at = 0; at < header.signals.size(); ++at) {
        const auto [entry, isNew] = known.try_emplace(header.signals[at].file, files.size());
        // A path would be that of another computer.
        if (isNew) files.push_back({FileNameOf(FromUtf8OrLatin1(header.signals[at].file)), {}, {}, 0});
        files[entry->second].signals.push_back(at);
    }
    return files;
}

std::shared_ptr<ByteSource> OpenFile(const WfdbRecord& record, const std::u16string& headerName, CompanionPool& files,
                                     SignalFile& file, Bilingual& remark) {
    Bilingual error;
    std::shared_ptr<ByteSource> source = files.Open(file.name, error);
    const std::u16string recordName = FromUtf8OrLatin1(record.header.name);
    if (!source && !recordName.empty() && file.name.starts_with(recordName)) {
        const std::u16string renamed = headerName + file.name.substr(recordName.size());
        Bilingual ignored;
        source = files.Open(renamed, ignored);
        if (source) remark = ReadInstead(renamed, file.name);
    }
    if (source) return source;
    const Bilingual reason =
        Say(u"the header names the file of samples '%1', which cannot be opened in its folder",
            u"заголовок называет файл отсчётов «%1», который в его папке не открывается", {file.name});
    throw FormatError({reason.english + u": " + error.english, reason.russian + u": " + error.russian});
}

/// The same file from its first sample on.
std::shared_ptr<ByteSource> FromFirstSample(std::shared_ptr<ByteSource> source, const WfdbHeader& header,
                                            const SignalFile& file) {
    // Every line should tell it; some only the first.
    const WfdbSignal* farthest = &header.signals[file.signals.front()];
    for (const std::size_t at : file.signals) {
        if (header.signals[at].offset > farthest->offset) farthest = &header.signals[at];
    }
    if (farthest->offset == 0) return source;
    if (farthest->offset >= source->Size()) {
        throw FormatError(Say(u"line %1: byte %2, where samples are to begin, lies beyond the end of '%3'",
                              u"строка %1: байт %2, с которого начинаются отсчёты, лежит за концом «%3»",
                              {Number(farthest->line), Number(farthest->offset), file.name}));
    }
    return std::make_shared<PartSource>(std::move(source), farthest->offset);
}

std::shared_ptr<FlacSource> OpenFlac(const std::shared_ptr<ByteSource>& source, const WfdbHeader& header,
                                     const SignalFile& file) {
    std::shared_ptr<FlacSource> flac;
    try {
        flac = FlacSource::Open(source);
    } catch (const ReadError&) {
        throw;
    } catch (const FormatError& error) {
        throw FormatError({file.name + u": " + error.Reason().english, file.name + u": " + error.Reason().russian});
    }
    const auto depth = static_cast<unsigned>(header.signals[file.signals.front()].format - kFlacFormat);
    if (flac->Channels() != file.signals.size() || flac->Depth() != depth) {
        throw FormatError(Say(
            u"'%1' holds %2 channels of %3 bits, the header tells of %4 of %5",
            u"в «%1» каналов: %2 по %3 бит, а в заголовке: %4 по %5",
            {file.name, Number(flac->Channels()), Number(flac->Depth()), Number(file.signals.size()), Number(depth)}));
    }
    return flac;
}

std::shared_ptr<ByteSource> SumDifferences(std::shared_ptr<ByteSource> source, const WfdbHeader& header,
                                           const SignalFile& file) {
    std::vector<std::size_t> signalOfPlace;
    std::vector<std::int32_t> initial;
    for (const std::size_t at : file.signals) {
        signalOfPlace.insert(signalOfPlace.end(), header.signals[at].samplesPerFrame, initial.size());
        initial.push_back(header.signals[at].initial);
    }
    return std::make_shared<DifferenceSource>(std::move(source), std::move(signalOfPlace), std::move(initial));
}

/// Samples as numbers that blocks read.
void MakeNumbers(const std::shared_ptr<ByteSource>& source, const WfdbHeader& header, SignalFile& file) {
    const WfdbSignal& first = header.signals[file.signals.front()];
    NumberFile& numbers = file.numbers;
    for (const std::size_t at : file.signals) numbers.frameNumbers += header.signals[at].samplesPerFrame;
    const auto use = [&](std::shared_ptr<ByteSource> made, SampleKind kind = SampleKind::Int16) {
        numbers.source = std::move(made);
        numbers.kind = kind;
    };
    const auto unpack = [&](Packing packing) { use(std::make_shared<PackedSource>(source, packing)); };
    std::size_t framesPerFrame = 1;
    switch (first.format) {
        case 8: use(SumDifferences(source, header, file), SampleKind::Int32); break;
        case 16: use(source); break;
        case 24: use(source, SampleKind::Int24); break;
        case 32: use(source, SampleKind::Int32); break;
        case 61: use(std::make_shared<ReorderedSource>(source, 2, true, false)); break;
        case 80: use(source, SampleKind::Unsigned8); break;
        case 160: use(std::make_shared<ReorderedSource>(source, 2, false, true)); break;
        case 212: unpack(Packing::Format212); break;
        case 310: unpack(Packing::Format310); break;
        case 311: unpack(Packing::Format311); break;
        default: {
            const auto flac = OpenFlac(source, header, file);
            use(flac, flac->Width() == 2 ? SampleKind::Int16 : SampleKind::Int32);
            framesPerFrame = first.samplesPerFrame;
            numbers.frameNumbers = file.signals.size();
        }
    }
    file.frames = numbers.source->Size() / numbers.FrameBytes() / framesPerFrame;
    if (file.frames > 0) return;
    throw FormatError(
        Say(u"'%1' holds no whole sample of every signal", u"в «%1» нет ни одного отсчёта всех сигналов", {file.name}));
}

ChannelDescription DescribeChannel(const WfdbSignal& signal) {
    ChannelDescription channel;
    channel.number = static_cast<std::int16_t>(signal.ordinal % kBlockChannels);
    channel.inputNumber = static_cast<std::int16_t>(std::min<std::size_t>(signal.ordinal + 1, 32767));
    channel.title = signal.title;
    channel.unit = signal.unit;
    channel.scale = static_cast<float>(1.0 / signal.gain);
    channel.offset = static_cast<float>(0.0 - signal.baseline / signal.gain);
    return channel;
}

/// Sets where the samples of a group lie: in a file as it is, where they are neighbours, or gathered.
void PlaceSignals(const std::vector<SignalFile>& files, const std::vector<GatheredSignal>& places, std::uint64_t frames,
                  WfdbGroup& group) {
    std::vector<NumberFile> used;
    std::map<std::size_t, std::size_t> known;
    std::vector<GatheredSignal> signals;
    bool neighbours = true;
    std::size_t frameBytes = 0;
    for (const std::size_t ordinal : group.signals) {
        const GatheredSignal& place = places[ordinal];
        const auto [entry, isNew] = known.try_emplace(place.file, used.size());
        if (isNew) {
            used.push_back(files[place.file].numbers);
            used.back().runNumbers = files[place.file].HoldsOneOfEach() ? 1 : group.samplesPerFrame;
            frameBytes += used.back().FrameBytes() / used.back().runNumbers;
        }
        neighbours = neighbours && (signals.empty() || place.place == signals.back().place + 1);
        signals.push_back({entry->second, place.place});
    }
    if (used.size() == 1 && used[0].runNumbers == 1 && neighbours) {
        group.source = used[0].source;
        group.layout = {used[0].kind, 0, used[0].FrameBytes(), signals[0].place};
        return;
    }
    const SampleKind kind = GatheredSource::IsWideSet(used) ? SampleKind::Int32 : SampleKind::Int16;
    group.layout = {kind, 0, signals.size() * SampleBytes(kind), 0, frameBytes};
    group.source =
        std::make_shared<GatheredSource>(std::move(used), std::move(signals), frames * group.samplesPerFrame);
}

void MakeGroups(const std::vector<SignalFile>& files, WfdbRecord& record) {
    const std::vector<WfdbSignal>& signals = record.header.signals;
    std::vector<SignalShape> shapes;
    for (const WfdbSignal& signal : signals) {
        const double rate = static_cast<double>(signal.samplesPerFrame) * record.header.rate;
        shapes.push_back({.samplesPerRecord = signal.samplesPerFrame, .rate = rate});
    }
    std::vector<GatheredSignal> places(signals.size());
    for (std::size_t file = 0; file < files.size(); ++file) {
        std::size_t place = 0;
        for (const std::size_t at : files[file].signals) {
            places[at] = {file, place};
            place += files[file].HoldsOneOfEach() ? 1 : signals[at].samplesPerFrame;
        }
    }
    for (SignalGroup& group : GroupSignals(shapes)) {
        WfdbGroup made{std::move(group), 1, nullptr, {}, nullptr};
        made.samplesPerFrame = signals[made.signals.front()].samplesPerFrame;
        std::vector<ChannelDescription> channels;
        for (const std::size_t ordinal : made.signals) channels.push_back(DescribeChannel(signals[ordinal]));
        made.channels = std::make_shared<const std::vector<ChannelDescription>>(std::move(channels));
        PlaceSignals(files, places, record.frames, made);
        record.groups.push_back(std::move(made));
    }
}

}  // namespace

WfdbRecord OpenWfdbRecord(WfdbHeader header, const std::u16string& headerName, CompanionPool& files) {
    if (header.signals.empty())
        throw FormatError(Say(u"no signal of the record has samples", u"ни у одного сигнала записи нет отсчётов"));
    WfdbRecord record;
    record.header = std::move(header);
    std::vector<SignalFile> found = FilesOf(record.header);
    for (SignalFile& file : found) {
        Bilingual remark;
        auto source = OpenFile(record, headerName, files, file, remark);
        MakeNumbers(FromFirstSample(std::move(source), record.header, file), record.header, file);
        if (!remark.english.empty() && record.remarks.empty()) record.remarks.push_back(std::move(remark));
        record.frames = record.frames == 0 ? file.frames : std::min(record.frames, file.frames);
    }
    for (std::size_t at = 0; at < record.header.signals.size(); ++at) {
        const std::int64_t skew = record.header.signals[at].skew;
        if (skew == 0) continue;
        record.remarks.push_back(Say(u"signal %1 is stored %2 samples late, and is shown so",
                                     u"сигнал %1 записан на %2 отсчётов позже и показан так же",
                                     {Number(at + 1), Decimal(skew)}));
        break;
    }
    MakeGroups(found, record);
    return record;
}

}  // namespace quillon
