#include "norvik/private/Companions.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "base/FilePath.h"
#include "base/NativePath.h"
#include "base/Text.h"

namespace quillon {

namespace {

/// "NUL", "nul.txt" and "NUL .dat" all are the device on Windows.
bool IsDevice(std::u16string_view name) {
    std::u16string stem = LowerCase(name.substr(0, name.find(u'.')));
    stem.resize(stem.find_last_not_of(u' ') + 1);
    constexpr std::array<std::u16string_view, 6> devices{u"con", u"prn", u"aux", u"nul", u"conin$", u"conout$"};
    if (std::find(devices.begin(), devices.end(), stem) != devices.end()) return true;
    constexpr std::u16string_view ports = u"0123456789\u00B9\u00B2\u00B3";  // COM1 with a raised 1 is COM1
    return stem.size() == 4 && (stem.starts_with(u"com") || stem.starts_with(u"lpt")) &&
           ports.find(stem.back()) != std::u16string_view::npos;
}

/// Where the file has another name, it becomes `name`.
std::shared_ptr<ByteSource> OpenInFolder(const std::u16string& folder, std::u16string& name, Bilingual& error) {
    std::shared_ptr<ByteSource> source = OpenFileSource(folder + name, error);
    if (source) return source;
    // Recordings come from systems that do not tell letter cases apart.
    const std::u16string lower = LowerCase(name);
    std::error_code failure;
    std::filesystem::directory_iterator entry(NativePath(folder.empty() ? u"." : folder), failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        const std::u16string other = FromNativePath(entry->path().filename());
        if (other.size() != name.size() || other == name || LowerCase(other) != lower) continue;
        Bilingual ignored;
        source = OpenFileSource(folder + other, ignored);
        if (!source) continue;
        name = other;
        break;
    }
    return source;
}

}  // namespace

bool IsPlainFileName(std::u16string_view name) {
    constexpr std::size_t longest = 255;
    // Windows drops blanks and dots at the end, so that ".. " would lead out of the folder too.
    if (name.empty() || name.size() > longest || name.back() == u'.' || name.back() == u' ') return false;
    const auto strange = [](char16_t letter) {
        return letter < u' ' || letter == 0x7F || letter == u'/' || letter == u'\\' || letter == u':';
    };
    return std::none_of(name.begin(), name.end(), strange) && !IsDevice(name);
}

std::shared_ptr<ByteSource> Companions::Open(std::u16string_view name, Bilingual& error) const {
    if (!IsPlainFileName(name)) {
        error = Say(u"not the name of a file in the same folder", u"не имя файла в той же папке");
        return nullptr;
    }
    if (!m_open) {
        error = Say(u"there are no files beside this one", u"рядом с этим файлом других нет");
        return nullptr;
    }
    return m_open(std::u16string(name), error);
}

Bilingual ReadInstead(const std::u16string& name, const std::u16string& stated) {
    return Say(u"%1 read instead of '%2'", u"вместо «%2» прочитан %1", {name, stated});
}

Companions FilesBeside(const std::u16string& path, Language language,
                       const std::weak_ptr<std::vector<OtherFile>>& opened) {
    return Companions([folder = FolderOf(path), language, opened](std::u16string name, Bilingual& error) {
        std::shared_ptr<ByteSource> source = OpenInFolder(folder, name, error);
        if (source) source->SetErrorLanguage(language);
        if (const auto files = opened.lock(); files && source) files->push_back({folder + name, source->Size()});
        return source;
    });
}

}  // namespace quillon
