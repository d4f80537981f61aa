#include "base/FilePath.h"

namespace quillon {

std::size_t NameStart(std::u16string_view path) {
    const std::size_t separator = path.find_last_of(u"\\/");
    return separator == std::u16string_view::npos ? 0 : separator + 1;
}

std::u16string FolderOf(std::u16string_view path) {
    return std::u16string(path.substr(0, NameStart(path)));
}

std::u16string FileNameOf(std::u16string_view path) {
    return std::u16string(path.substr(NameStart(path)));
}

std::u16string BareNameOf(std::u16string_view path) {
    const std::u16string name = FileNameOf(path);
    return name.substr(0, name.rfind(u'.'));
}

std::u16string PathOf(std::u16string_view folder, std::u16string_view name) {
    std::u16string path(folder);
    if (NameStart(path) != path.size() || path.empty()) path.push_back(u'\\');
    return path.append(name);
}

}  // namespace quillon
