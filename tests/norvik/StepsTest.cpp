#include <gmock/gmock.h>

#include <map>
#include <random>

#include "base/Text.h"
#include "norvik/BlockChecks.h"
#include "norvik/EdfBuilder.h"
#include "norvik/private/EdfMarks.h"
#include "norvik/private/EdfReader.h"
#include "norvik/private/EdfTimeline.h"
#include "norvik/private/FrameBlock.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using namespace std::string_literals;

constexpr std::uint64_t kMebibyte = 1U << 20;

/// Zeros, except what is put somewhere; counts what is read, and may fail from a place on.
class SparseSource final : public ByteSource {
  public:
    explicit SparseSource(std::uint64_t size) : m_size(size), failsFrom(size) {}
    void Put(std::uint64_t offset, std::string bytes) { m_parts[offset] = std::move(bytes); }
    [[nodiscard]] std::uint64_t Size() const override { return m_size; }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        read += count;
        if (offset + count > failsFrom) return 0;
        std::memset(buffer, 0, count);
        auto part = m_parts.upper_bound(offset);
        if (part != m_parts.begin()) --part;
        for (; part != m_parts.end() && part->first < offset + count; ++part) {
            const std::uint64_t from = std::max(offset, part->first);
            const std::uint64_t to = std::min(offset + count, part->first + part->second.size());
            if (from >= to) continue;
            std::memcpy(static_cast<char*>(buffer) + (from - offset), part->second.data() + (from - part->first),
                        static_cast<std::size_t>(to - from));
        }
        return count;
    }
    /// What was read since the last call.
    std::uint64_t TakeRead() { return std::exchange(read, 0); }

  private:
    std::uint64_t m_size;
    std::map<std::uint64_t, std::string> m_parts;

  public:
    std::uint64_t failsFrom;
    std::uint64_t read = 0;
};

/// Random numbers of 32 bits.
using Dice = std::independent_bits_engine<std::mt19937, 32, std::uint32_t>;

std::vector<float> ScalesOf(const RecordingBlock& block) {
    std::vector<float> scales;
    for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
        scales.push_back(block.ChannelScale(channel));
        scales.push_back(block.ChannelOffset(channel));
    }
    return scales;
}

/// Blocks of wide samples over the same bytes: frames of `kind` or, without one, records of a 24-bit file.
struct WideFile {
    WideFile(std::optional<SampleKind> of, std::uint64_t frames, std::size_t channels)
        : kind(of), frameBytes(channels * (of ? SampleBytes(*of) : 3)), frameCount(frames) {
        header.bdf = true;
        header.recordCount = 0;
        header.records = std::to_string(frames / 500);
        header.signals.assign(channels, {.samplesPerRecord = 500});
        const std::vector<std::uint8_t> bytes = header.Bytes();
        start = kind ? 0 : bytes.size();
        source = std::make_shared<SparseSource>(start + frames * frameBytes);
        if (!kind) source->Put(0, {bytes.begin(), bytes.end()});
    }
    /// Only whole numbers of 24 bits.
    void Set(std::uint64_t frame, std::size_t channel, std::int32_t value) {
        std::string bytes;
        for (int at = 0; at < 3; ++at) bytes += static_cast<char>(value >> (8 * at));
        const std::uint64_t place = kind ? frame * frameBytes + channel * 3
                                         : frame / 500 * 500 * frameBytes + (channel * 500 + frame % 500) * 3;
        source->Put(start + place, bytes);
    }
    [[nodiscard]] std::shared_ptr<FileBlock> Block() const {
        if (!kind) return ReadEdf(source).blocks.at(0);
        FrameRecording recording;
        recording.layout = {*kind, 0, frameBytes, 0};
        recording.frameCount = frameCount;
        recording.sampleRate = 100.0;
        ChannelDescription channel;
        channel.scale = static_cast<float>(FullScaleUnit(*kind));
        recording.channels.assign(header.signals.size(), channel);
        return MakeFrameBlocks(source, recording).at(0);
    }

    std::optional<SampleKind> kind;
    std::size_t frameBytes;
    std::uint64_t frameCount;
    std::uint64_t start = 0;
    EdfBuilder header;
    std::shared_ptr<SparseSource> source;
};

TEST(ScalesInSteps, AnyOrderOfStepsEndsWithTheScalesOfOnePass) {
    Dice random(20240607);
    for (const auto kind : {std::optional(SampleKind::Int24), std::optional(SampleKind::Float32),
                            std::optional(SampleKind::Float64), std::optional<SampleKind>()}) {
        for (const bool fails : {false, true}) {
            SCOPED_TRACE(fails);
            WideFile file(kind, 300000, 5);
            for (int at = 0; at < 300; ++at) {
                file.Set(random() % file.frameCount, random() % 5,
                         static_cast<std::int32_t>(random() % 16000000) - 8000000);
            }
            if (fails) file.source->failsFrom = file.source->Size() / 2;
            const auto plain = file.Block();
            plain->Prepare();
            const auto block = file.Block();
            if (random() % 2 == 0) block->PrepareMore();
            file.source->TakeRead();
            block->PrepareQuickly();
            EXPECT_LE(file.source->TakeRead(), 2 * kMebibyte + 4096);
            ASSERT_TRUE(block->IsProvisional());
            const std::vector<float> provisional = ScalesOf(*block);
            double share = block->PreparedShare();
            while (block->PrepareMore()) {
                EXPECT_LE(file.source->TakeRead(), kMebibyte);
                EXPECT_EQ(ScalesOf(*block), provisional);
                EXPECT_GT(block->PreparedShare(), share);
                share = block->PreparedShare();
                std::int16_t code = 0;
                block->ReadCodes(1, static_cast<std::int32_t>(random() % 100000), 1, &code);
                block->PrepareQuickly();
                if (random() % 8 == 0) block->Prepare();
                file.source->TakeRead();
            }
            EXPECT_FALSE(block->IsProvisional());
            EXPECT_EQ(block->PreparedShare(), 1.0);
            EXPECT_EQ(ScalesOf(*block), ScalesOf(*plain));
            std::vector<std::int16_t> codes(1000);
            std::vector<std::int16_t> expected(codes);
            block->ReadCodes(5, 700, 1000, codes.data());
            plain->ReadCodes(5, 700, 1000, expected.data());
            EXPECT_EQ(codes, expected);
            EXPECT_FALSE(block->PrepareMore());
        }
    }
}

TEST(ScalesInSteps, ProvisionalOnesKeepSixteenBitsExactlyAndLeaveRoomForTwiceWhatWasSeen) {
    for (const auto kind : {std::optional(SampleKind::Int24), std::optional<SampleKind>()}) {
        WideFile file(kind, 1000000, 3);
        file.Set(999999, 0, 30000);    // seen: the end is looked at
        file.Set(999998, 1, 1000000);  // seen
        file.Set(0, 1, -1000000);      // seen
        file.Set(14000, 0, 60000);     // in between: not seen
        file.Set(14000, 1, 1500000);   // not seen
        file.Set(14001, 1, 8000000);   // not seen
        const auto block = file.Block();
        block->PrepareQuickly();
        const auto code = [&](std::int16_t channel, std::int32_t at) {
            std::int16_t read = 0;
            block->ReadCodes(channel, at, 1, &read);
            return read;
        };
        const auto value = [&](std::int16_t channel, std::int32_t at) {
            float read = 0;
            block->ReadValues(channel, at, 1, &read);
            return static_cast<double>(read) * (kind ? 8388608.0 : 1.0);
        };
        EXPECT_EQ(code(1, 999999), 30000) << "kept exactly";
        EXPECT_EQ(code(1, 14000), 32767) << "clamped";
        EXPECT_EQ(code(2, 999998), 16000);
        EXPECT_EQ(code(2, 0), -16000);
        EXPECT_NEAR(value(2, 14000), 1500000, 70) << "in the room beyond what was seen";
        EXPECT_EQ(code(2, 14001), 32767);
        while (block->PrepareMore()) {
        }
        EXPECT_NEAR(value(1, 14000), 60000, 1) << "the pass has seen it";
        EXPECT_NEAR(value(2, 14001), 8000000, 150);
    }
}

/// An EDF+ of many records, all zeros but for their annotations, and what it must give.
struct AnnotatedFile {
    /// `gaps`: discontinuous, a gap before about one record in `gaps`.
    AnnotatedFile(std::size_t records, std::size_t samples, unsigned gaps, unsigned seed) : random(seed) {
        EdfBuilder header{.reserved = gaps > 0 ? "EDF+D" : "EDF+C", .records = std::to_string(records)};
        header.recordCount = 0;
        header.signals = {{.samplesPerRecord = samples}, {.samplesPerRecord = 2 * samples}};
        for (int signal = 0; signal < 2; ++signal) header.Annotate({""});
        const std::vector<std::uint8_t> bytes = header.Bytes();
        const std::size_t recordBytes = (3 * samples + 60) * 2;
        source = std::make_shared<SparseSource>(bytes.size() + records * recordBytes);
        source->Put(0, {bytes.begin(), bytes.end()});
        samplesPerRecord = samples;
        double onset = 0.0;
        for (std::size_t record = 0; record < records; ++record, onset += 1.0) {
            const bool gap = gaps > 0 && (record == 0 || random() % gaps == 0);
            if (gap) onset += random() % 7 + 2;
            if (gap || record == 0) stretches.push_back({record, 0, onset});
            ++stretches.back().records;
            const std::uint64_t at = bytes.size() + record * recordBytes + 6 * samples;
            if (gaps > 0 || record == 0) {
                source->Put(at, Utf8(u"+" + ShortestDecimal(onset)) + "\x14\x14\0"s + Note(onset, record, records));
            }
            if (random() % 4 == 0) source->Put(at + 60, Note(onset, record, records));
        }
    }

    /// A list of an annotation, mostly of its own record; empty once in two times.
    std::string Note(double onset, std::size_t record, std::size_t records) {
        if (random() % 2 == 0) return {};
        const double time = random() % 8 == 0 ? static_cast<double>(random() % records) : onset + random() % 4 * 0.25;
        notes.emplace_back(time, std::to_string(record));
        return Utf8(u"+" + ShortestDecimal(time)) + "\x14" + std::to_string(record) + "\x14\0"s;
    }

    /// Marks of the block of a stretch and a group (0, 1), as the file tells them.
    [[nodiscard]] std::vector<std::string> MarksOf(const EdfStretch& stretch, std::size_t group) const {
        const double rate = static_cast<double>(samplesPerRecord * (group + 1));
        std::vector<std::pair<double, std::string>> found;
        for (const auto& [time, text] : notes) {
            const double position = std::nearbyint((time - stretch.onset) * rate);
            if (position >= 0 && position < static_cast<double>(stretch.records) * rate)
                found.emplace_back(position, text);
        }
        std::stable_sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<std::string> marks;
        for (const auto& [position, text] : found)
            marks.push_back(std::to_string(static_cast<std::int64_t>(position)) + " " + text);
        return marks;
    }

    Dice random;
    std::size_t samplesPerRecord = 0;
    std::shared_ptr<SparseSource> source;
    std::vector<EdfStretch> stretches;
    std::vector<std::pair<double, std::string>> notes;  ///< in the order of the file
};

void ExpectComplete(AnnotatedFile& file, const RecordingContent& content) {
    ASSERT_EQ(content.blocks.size(), 2 * file.stretches.size());
    EXPECT_EQ(content.share, 1.0);
    const std::size_t step = std::max<std::size_t>(content.blocks.size() / 60, 1);
    for (std::size_t at = 0; at < content.blocks.size(); at += step) {
        const EdfStretch& stretch = file.stretches[at / 2];
        ASSERT_EQ(static_cast<std::uint64_t>(content.blocks[at]->SampleCount()),
                  stretch.records * file.samplesPerRecord * (at % 2 + 1));
        ASSERT_EQ(Marks(*content.blocks[at]), file.MarksOf(stretch, at % 2)) << at;
    }
}

TEST(AnnotationsInSteps, AnyOrderOfStepsGivesWhatTheFileTells) {
    // Small records are read in pieces, of large ones the annotations alone.
    for (const auto& [records, samples, gaps] :
         {std::tuple(60000U, 4U, 0U), std::tuple(60000U, 4U, 9U), std::tuple(60000U, 4U, 30000U),
          std::tuple(6000U, 5000U, 0U), std::tuple(6000U, 5000U, 5U)}) {
        SCOPED_TRACE(::testing::Message() << records << ' ' << samples << ' ' << gaps);
        AnnotatedFile file(records, samples, gaps, records + gaps);
        RecordingContent content = ReadEdf(file.source);
        ASSERT_TRUE(content.readMore);
        EXPECT_LE(file.source->TakeRead(), 5 * kMebibyte + kMebibyte / 2);
        EXPECT_LT(content.share, 1.0);
        const auto kept = content.blocks.back();
        const std::int32_t keptSamples = kept->SampleCount();
        std::size_t blocks = content.blocks.size();
        const auto near = [&] { return static_cast<std::int32_t>(file.random() >> 1); };
        std::int32_t version = content.version;
        while (content.readMore(content, static_cast<std::int16_t>(file.random() % 40000), near())) {
            EXPECT_LE(file.source->TakeRead(), kMebibyte + kMebibyte / 4);
            ASSERT_GE(content.blocks.size(), blocks);
            blocks = content.blocks.size();
            EXPECT_GE(content.version, version);
            EXPECT_TRUE(content.version > version || samples == 5000U) << "every piece of this size holds annotations";
            version = content.version;
            // Marks are in order while they are being found.
            RecordingBlock& block = *content.blocks[file.random() % blocks];
            if (block.MarkCount() > 1) {
                EXPECT_LE(block.MarkPosition(1), block.MarkPosition(block.MarkCount()));
            }
        }
        ExpectComplete(file, content);
        EXPECT_EQ(kept->SampleCount(), keptSamples) << "the old object stays as it was";
        kept->Prepare();
        std::int16_t code = 1;
        kept->ReadCodes(1, keptSamples - 1, 1, &code);
        EXPECT_EQ(code, 0);
        EXPECT_FALSE(content.readMore(content, 1, 0));
        if (file.stretches.size() > 1) {
            EXPECT_THAT(Utf8(content.info.english),
                        ::testing::HasSubstr(std::to_string(file.stretches.size()) + " stretches"));
        }
    }
}

TEST(AnnotationsInSteps, WhatLiesNearComesFirst) {
    AnnotatedFile file(500000, 4, 0, 1);
    RecordingContent content = ReadEdf(file.source);
    const auto around = [&](std::int32_t position) {
        std::size_t found = 0;
        RecordingBlock& block = *content.blocks[0];
        for (std::int32_t mark = 1; mark <= block.MarkCount(); ++mark)
            found += std::abs(block.MarkPosition(mark) - position) < 4000;
        return found;
    };
    const std::size_t before = around(1600000);
    content.readMore(content, 1, 1600000);
    content.readMore(content, 1, 1600000);
    EXPECT_GT(around(1600000), before + 150);
    EXPECT_LT(content.share, 0.2);
}

TEST(AnnotationsInSteps, AFailedReadKeepsWhatWasFound) {
    for (const unsigned gaps : {0U, 50U}) {
        AnnotatedFile file(100000, 4, gaps, 7);
        file.source->failsFrom = file.source->Size() * 3 / 4;
        RecordingContent content = ReadEdf(file.source);
        const auto near = [&] { return static_cast<std::int32_t>(file.random() % 400000); };
        while (content.readMore(content, 1, near())) {
        }
        const std::string info = Utf8(content.info.english);
        EXPECT_THAT(info, ::testing::HasSubstr("read up to record 7"));
        EXPECT_FALSE(content.readMore(content, 1, 0));
        std::int64_t samples = 0;
        for (std::size_t at = 0; at < content.blocks.size(); at += 2) samples += content.blocks[at]->SampleCount();
        if (gaps > 0) {
            EXPECT_NEAR(static_cast<double>(samples), 300000, 20000);
        } else {
            EXPECT_EQ(samples, 400000) << "samples do not depend on annotations";
        }
        // All of the first part of the file, whatever was read first.
        const std::size_t stretch = gaps > 0 ? 1 : 0;
        const std::vector<std::string> all = file.MarksOf(file.stretches[stretch], 0);
        const std::vector<std::string> found = Marks(*content.blocks[2 * stretch]);
        const auto before = [](const std::vector<std::string>& marks) {
            return std::count_if(marks.begin(), marks.end(), [](const std::string& mark) {
                return std::stoi(mark.substr(mark.find(' '))) < 70000;
            });
        };
        EXPECT_EQ(before(found), before(all));
        EXPECT_LT(found.size(), all.size());
        file.source->failsFrom = 256 * 5 + 4;
        if (gaps > 0) {
            EXPECT_THROW(ReadEdf(file.source), ReadError) << "not even the first";
        }
    }
}

TEST(EdfMarks, WhatIsLeftOutForWantOfMemoryDoesNotDependOnTheOrder) {
    Dice random(3);
    for (int round = 0; round < 30; ++round) {
        std::vector<std::vector<EdfAnnotation>> parts(12);
        for (auto& part : parts) {
            for (unsigned at = random() % 9; at > 0; --at)
                part.push_back({static_cast<double>(random() % 50), std::u16string(random() % 20, u'x')});
        }
        const std::size_t memory = 200 + random() % 5000;
        std::size_t kept = 0;
        std::size_t bytes = 0;
        for (const auto& part : parts) {
            for (const EdfAnnotation& annotation : part) {
                bytes += sizeof annotation + annotation.text.size() * 2;
                if (bytes <= memory) ++kept;
            }
        }
        EdfMarks plain(memory);
        for (std::uint32_t at = 0; at < parts.size(); ++at) plain.Add(at, parts[at], false);
        std::vector<std::uint32_t> order{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
        std::shuffle(order.begin(), order.end(), random);
        EdfMarks shuffled(memory);
        for (const std::uint32_t at : order) {
            shuffled.Add(at, parts[at], false);
            static_cast<void>(shuffled.Of(0.0, 2.0, 30));
        }
        EXPECT_EQ(plain.Count(), kept);
        EXPECT_EQ(shuffled.Count(), kept);
        EXPECT_EQ(shuffled.LimitReached(), bytes > memory);
        const auto key = [](const EdfMarks::Mark& mark) { return std::tuple(mark.position, mark.part, mark.index); };
        EXPECT_TRUE(std::ranges::equal(plain.Of(1.0, 0.25, 9), shuffled.Of(1.0, 0.25, 9), {}, key, key));
        EXPECT_EQ(plain.Of(0.0, 1.0, 50).size(), kept);
    }
}

}  // namespace
}  // namespace quillon
