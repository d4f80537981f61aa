#include "norvik/private/TableText.h"

#include <algorithm>
#include <array>

#include "base/Text.h"

namespace quillon {

namespace {

constexpr std::size_t kLongestLine = std::size_t{4} << 20;
constexpr std::size_t kStartBytes = 4096;
/// How many bytes tell UTF-16 without a mark.
constexpr std::size_t kToldBytes = 100;

bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

}  // namespace

TableText::TableText(std::shared_ptr<ByteSource> source, std::size_t pieceBytes)
    : m_source(std::move(source)), m_pieceBytes(std::max<std::size_t>(pieceBytes, 2)) {
    FindEncoding();
}

void TableText::FindEncoding() {
    std::string start(kStartBytes, '\0');
    start.resize(m_source->ReadAt(0, start.data(), start.size()));
    const auto zeros = [&](std::size_t from) {
        const std::size_t size = std::min(start.size(), kToldBytes);
        for (std::size_t at = from; at < size; at += 2) {
            if (start[at] != '\0' || start[at ^ 1U] == '\0') return false;
        }
        return size >= 4;
    };
    if (start.starts_with("\xEF\xBB\xBF")) {
        m_offset = 3;
    } else if (start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF")) {
        m_encoding = start.front() == '\xFF' ? Encoding::Utf16Little : Encoding::Utf16Big;
        m_offset = 2;
    } else if (start.size() % 2 == 0 && (zeros(0) || zeros(1))) {
        m_encoding = zeros(1) ? Encoding::Utf16Little : Encoding::Utf16Big;
    }
    m_carriageReturns = start.find('\r') != std::string::npos && start.find('\n') == std::string::npos;
}

double TableText::Share() const {
    return m_source->Size() == 0 ? 1.0 : static_cast<double>(m_offset) / static_cast<double>(m_source->Size());
}

std::string_view TableText::NextLines() {
    m_text.erase(0, m_used);
    m_used = 0;
    std::size_t searched = 0;
    while (m_offset < m_source->Size()) {
        ReadPiece();
        const std::size_t last = std::string_view(m_text).substr(searched).rfind('\n');
        if (last != std::string::npos) {
            m_used = searched + last + 1;
            return std::string_view(m_text).substr(0, m_used);
        }
        searched = m_text.size();
        if (searched > kLongestLine) throw FormatError(Say(u"a line of more than 4 MiB", u"строка длиннее 4 МиБ"));
    }
    m_unended = !m_text.empty();
    if (m_unended) m_text += '\n';
    m_used = m_text.size();
    return m_text;
}

void TableText::ReadPiece() {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(m_pieceBytes, m_source->Size() - m_offset));
    const std::size_t before = m_text.size();
    if (m_encoding == Encoding::Bytes) {
        m_text.resize(before + size);
        try {
            m_source->ReadExactly(m_offset, m_text.data() + before, size);
        } catch (...) {
            m_text.resize(before);
            throw;
        }
    } else {
        std::string piece(size, '\0');
        m_source->ReadExactly(m_offset, piece.data(), size);
        Decode(piece);
    }
    m_offset += size;
    if (m_carriageReturns) std::replace(m_text.begin() + static_cast<std::ptrdiff_t>(before), m_text.end(), '\r', '\n');
}

void TableText::Decode(std::string_view bytes) {
    m_bytes.append(bytes);
    std::u16string units;
    units.reserve(m_bytes.size() / 2);
    const std::size_t low = m_encoding == Encoding::Utf16Little ? 0 : 1;
    for (std::size_t at = 0; at + 1 < m_bytes.size(); at += 2) {
        units += static_cast<char16_t>(static_cast<unsigned char>(m_bytes[at + low]) |
                                       static_cast<unsigned char>(m_bytes[at + 1 - low]) << 8);
    }
    const bool atEnd = m_offset + bytes.size() == m_source->Size();
    if (!units.empty() && IsHighSurrogate(units.back()) && !atEnd) units.pop_back();
    m_bytes.erase(0, 2 * units.size());
    m_text += Utf8(units);
}

}  // namespace quillon
