#include "norvik/private/WfdbAnnotations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string_view>

#include "base/LittleEndian.h"
#include "base/Text.h"
#include "norvik/private/WfdbFields.h"

namespace quillon {

namespace {

constexpr unsigned kNote = 22;
/// Kinds from here on are not annotations but tell about the one before or the one behind.
constexpr unsigned kFirstModifier = 59;
constexpr unsigned kSkip = 59;
constexpr unsigned kText = 63;
/// Kinds that the standard leaves to the writer.
constexpr unsigned kFirstOwn = 42;
constexpr unsigned kLastOwn = 49;

/// Kinds that the standard does not define have none.
constexpr std::array<std::u16string_view, 42> kSymbols{
    u"",  u"N", u"L", u"R", u"a", u"V", u"F", u"J", u"A",  u"S", u"E", u"j", u"/", u"Q",
    u"~", u"",  u"|", u"",  u"s", u"T", u"*", u"D", u"\"", u"=", u"p", u"B", u"^", u"t",
    u"+", u"u", u"?", u"!", u"[", u"]", u"e", u"n", u"@",  u"x", u"f", u"(", u")", u"r"};

struct Stored {
    std::int64_t time = 0;
    unsigned kind = 0;
    std::string_view text;
};

/// Walks the words of a file.
class Words {
  public:
    explicit Words(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    /// The next annotation; nothing at the end, and where the file is damaged.
    std::optional<Stored> Next() {
        while (const std::optional<unsigned> word = Take()) {
            const unsigned kind = *word >> 10;
            const unsigned value = *word & 0x3FFU;
            if (*word == 0) {
                m_ended = true;
                return std::nullopt;
            }
            if (kind == kSkip) {
                const std::optional<unsigned> high = Take();
                const std::optional<unsigned> low = Take();
                if (!low) return std::nullopt;
                m_time += static_cast<std::int32_t>(*high << 16 | *low);
            } else if (kind == kText) {
                TakeText(value);
            } else if (kind < kFirstModifier) {
                m_time += value;
                if (kind == 0) continue;
                Stored stored{m_time, kind, {}};
                if (!TakeModifiers(stored)) return std::nullopt;
                return stored;
            }
        }
        return std::nullopt;
    }
    /// Whether the end was met, and nothing but zeros lies behind it.
    [[nodiscard]] bool EndedWell() const {
        return m_ended && std::all_of(m_bytes.begin(), m_bytes.end(), [](std::uint8_t byte) { return byte == 0; });
    }

  private:
    [[nodiscard]] std::optional<unsigned> Peek() const {
        return m_bytes.size() < 2 ? std::nullopt : std::optional<unsigned>(Le16(m_bytes.data()));
    }
    std::optional<unsigned> Take() {
        const std::optional<unsigned> word = Peek();
        if (word) m_bytes = m_bytes.subspan(2);
        return word;
    }
    std::optional<std::string_view> TakeText(std::size_t size) {
        const std::size_t stored = size + size % 2;
        if (stored > m_bytes.size()) {
            m_bytes = {};
            return std::nullopt;
        }
        const std::string_view text(reinterpret_cast<const char*>(m_bytes.data()), size);
        m_bytes = m_bytes.subspan(stored);
        return text.substr(0, text.find('\0'));
    }
    /// What tells about the annotation before; false where the file is damaged.
    bool TakeModifiers(Stored& stored) {
        for (std::optional<unsigned> word = Peek(); word && *word >> 10 > kSkip; word = Peek()) {
            static_cast<void>(Take());
            if (*word >> 10 != kText) continue;
            const std::optional<std::string_view> text = TakeText(*word & 0x3FFU);
            if (!text) return false;
            stored.text = *text;
        }
        return true;
    }

    std::span<const std::uint8_t> m_bytes;
    std::int64_t m_time = 0;
    bool m_ended = false;
};

/// What notes at the start tell about the file.
class Preamble {
  public:
    /// Whether the annotation is such a note.
    bool Take(const Stored& stored) {
        if (stored.kind != kNote || stored.time != 0) return false;
        constexpr std::string_view resolution = "## time resolution:";
        if (stored.text.starts_with("##")) {
            if (stored.text.starts_with(resolution)) {
                const std::optional<double> ticks = RealNumber(Trim(stored.text.substr(resolution.size())));
                if (ticks && *ticks > 0.0) m_ticksPerSecond = *ticks;
            }
            m_definitions = stored.text.starts_with("## annotation type definitions");
            return true;
        }
        FieldText fields(stored.text);
        const std::optional<std::uint64_t> kind = WholeNumber(fields.Next());
        const std::u16string symbol = FromUtf8OrLatin1(fields.Next());
        const bool own = kind && *kind >= kFirstOwn && *kind <= kLastOwn;
        if (!kind || *kind >= kFirstModifier || symbol.empty() || !(own || m_definitions)) return false;
        m_symbols[static_cast<unsigned>(*kind)] = symbol;
        return true;
    }
    [[nodiscard]] double TicksPerSecond() const { return m_ticksPerSecond; }
    [[nodiscard]] std::u16string Symbol(unsigned kind) const {
        if (const auto defined = m_symbols.find(kind); defined != m_symbols.end()) return defined->second;
        if (kind < kSymbols.size() && !kSymbols[kind].empty()) return std::u16string(kSymbols[kind]);
        return u"[" + Decimal(kind) + u"]";
    }

  private:
    double m_ticksPerSecond = 0.0;
    bool m_definitions = false;
    std::map<unsigned, std::u16string> m_symbols;
};

std::u16string TextOf(const Stored& stored, const Preamble& preamble) {
    const std::u16string text = FromUtf8OrLatin1(Trim(stored.text));
    if (stored.kind == kNote && !text.empty()) return text;
    return preamble.Symbol(stored.kind) + (text.empty() ? u"" : u" " + text);
}

}  // namespace

std::optional<WfdbAnnotations> ParseWfdbAnnotations(std::span<const std::uint8_t> bytes, std::size_t memory) {
    WfdbAnnotations annotations;
    Preamble preamble;
    Words words(bytes);
    std::size_t used = 0;
    while (const std::optional<Stored> stored = words.Next()) {
        if (preamble.Take(*stored) || annotations.limitReached) continue;
        WfdbAnnotation annotation{stored->time, TextOf(*stored, preamble)};
        used += sizeof annotation + sizeof(FrameMark) + sizeof(MarkDescription) + 4 * annotation.text.size();
        annotations.limitReached = used > memory;
        if (!annotations.limitReached) annotations.all.push_back(std::move(annotation));
    }
    if (!words.EndedWell()) return std::nullopt;
    annotations.ticksPerSecond = preamble.TicksPerSecond();
    std::stable_sort(annotations.all.begin(), annotations.all.end(),
                     [](const WfdbAnnotation& left, const WfdbAnnotation& right) { return left.time < right.time; });
    return annotations;
}

std::vector<FrameMark> WfdbMarks(const WfdbAnnotations& annotations, double samplesPerTick, std::uint64_t first,
                                 std::uint64_t count) {
    std::vector<FrameMark> marks;
    const auto position = [&](const WfdbAnnotation& annotation) {
        return std::nearbyint(static_cast<double>(annotation.time) * samplesPerTick) - static_cast<double>(first);
    };
    auto at = std::partition_point(annotations.all.begin(), annotations.all.end(),
                                   [&](const WfdbAnnotation& annotation) { return position(annotation) < 0.0; });
    for (; at != annotations.all.end() && position(*at) < static_cast<double>(count); ++at)
        marks.push_back({static_cast<std::uint64_t>(position(*at)), at->text});
    return marks;
}

}  // namespace quillon
