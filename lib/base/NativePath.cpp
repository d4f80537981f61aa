#include "base/NativePath.h"

#include <type_traits>

#include "base/Text.h"

namespace quillon {

namespace {

constexpr char16_t kFirstByte = 0xDC80;  // stands for byte 0x80
constexpr char16_t kLastByte = 0xDCFF;
constexpr bool kNamesAreBytes = std::is_same_v<std::filesystem::path::value_type, char>;

}  // namespace

std::u16string FromNativeBytes(std::string_view bytes) {
    std::u16string path;
    while (!bytes.empty()) {
        const std::size_t valid = ValidUtf8Size(bytes);
        path += Utf16(bytes.substr(0, valid));
        bytes.remove_prefix(valid);
        if (bytes.empty()) break;
        path += static_cast<char16_t>(kFirstByte + static_cast<unsigned char>(bytes.front()) - 0x80);
        bytes.remove_prefix(1);
    }
    return path;
}

std::string NativeBytes(std::u16string_view path) {
    std::string bytes;
    std::size_t start = 0;
    for (std::size_t at = 0; at < path.size(); ++at) {
        // The second half of a surrogate pair does not stand for a byte.
        if (path[at] >= 0xD800 && path[at] < 0xDC00 && at + 1 < path.size()) {
            ++at;
            continue;
        }
        if (path[at] < kFirstByte || path[at] > kLastByte) continue;
        bytes += Utf8(path.substr(start, at - start));
        bytes += static_cast<char>(path[at] - kFirstByte + 0x80);
        start = at + 1;
    }
    return bytes + Utf8(path.substr(start));
}

std::filesystem::path NativePath(std::u16string_view path) {
    if constexpr (kNamesAreBytes) {
        return NativeBytes(path);
    } else {
        return std::u16string(path);
    }
}

std::u16string FromNativePath(const std::filesystem::path& path) {
    if constexpr (kNamesAreBytes) {
        return FromNativeBytes(path.string());
    } else {
        return path.u16string();
    }
}

}  // namespace quillon
