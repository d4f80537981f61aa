#include "norvik/private/SectionedText.h"

#include <algorithm>

#include "base/Text.h"

namespace quillon {

namespace {

std::u16string Name(std::string_view bytes) {
    return LowerCase(FromUtf8OrLatin1(Trim(bytes)));
}

}  // namespace

std::string_view WithoutByteOrderMark(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return text.substr(text.starts_with(mark) ? mark.size() : 0);
}

void ForEachEntry(std::string_view text, const std::function<void(const TextEntry&)>& visit) {
    text = WithoutByteOrderMark(text);
    std::u16string section;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = Trim(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty() || line.front() == ';') continue;
        if (line.front() == '[') {
            section = Name(line.substr(1, line.find(']') - 1));
            if (section == u"comment") return;
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) continue;
        visit({section, Name(line.substr(0, equals)), Trim(line.substr(equals + 1)), number});
    }
}

std::string ReadTextStart(ByteSource& source, std::uint64_t most) {
    std::string text(static_cast<std::size_t>(std::min(source.Size(), most)), '\0');
    text.resize(source.ReadAt(0, text.data(), text.size()));
    return text;
}

std::u16string CommaFields::Next() {
    const std::size_t end = std::min(m_rest.find(','), m_rest.size());
    std::string field(Trim(m_rest.substr(0, end)));
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    for (std::size_t at = field.find("\\1"); at != std::string::npos; at = field.find("\\1", at + 1))
        field.replace(at, 2, ",");
    return FromUtf8OrLatin1(field);
}

}  // namespace quillon
