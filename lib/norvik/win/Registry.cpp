#include "norvik/win/Registry.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "base/Text.h"
#include "base/win/Win32.h"

namespace quillon {

namespace {

/// A decimal number with blanks around it at most, in the range of singles.
std::optional<float> ParseSingle(const std::u16string& text) {
    const std::string bytes = Utf8(text);
    const std::string_view digits = Trim(bytes);
    float value = 0.0F;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

/// The fewest digits that read back as the single, without an exponent.
std::u16string SingleText(float value) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed).ptr;
    return {digits.data(), end};
}

class Registry final : public RegistryObject {
  public:
    Registry() = default;
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;
    ~Registry() override { Close(); }

    void SetRoot(RegistryRoot root) override { m_root = root; }
    void SetKeyPath(const std::u16string& path) override { m_path.assign(path.begin(), path.end()); }

    bool OpenOrCreate() override {
        Close();
        const HKEY root = m_root == RegistryRoot::CurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        const LSTATUS created = ::RegCreateKeyExW(root, m_path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                                  KEY_READ | KEY_WRITE, nullptr, &m_key, nullptr);
        if (created == ERROR_SUCCESS) return true;
        m_key = nullptr;
        if (::RegOpenKeyExW(root, m_path.c_str(), 0, KEY_READ, &m_key) == ERROR_SUCCESS) return true;
        m_key = nullptr;
        return false;
    }

    bool ReadText(const std::u16string& name, std::u16string& value) override {
        // Most writers store the terminator with the text, some do not.
        std::vector<wchar_t> buffer(kLongestText + 1);
        DWORD size = static_cast<DWORD>(buffer.size() * sizeof(wchar_t));
        if (!Query(name, REG_SZ, buffer.data(), size)) return false;
        const auto end = buffer.begin() + static_cast<std::ptrdiff_t>(size / sizeof(wchar_t));
        const auto terminator = std::find(buffer.begin(), end, L'\0');
        if (terminator - buffer.begin() > static_cast<std::ptrdiff_t>(kLongestText)) return false;
        value.assign(buffer.begin(), terminator);
        return true;
    }

    bool ReadInt16(const std::u16string& name, std::int16_t& value) override {
        std::int32_t wide = 0;
        if (!ReadInt32(name, wide) || wide < std::numeric_limits<std::int16_t>::min() ||
            wide > std::numeric_limits<std::int16_t>::max()) {
            return false;
        }
        value = static_cast<std::int16_t>(wide);
        return true;
    }

    bool ReadInt32(const std::u16string& name, std::int32_t& value) override {
        DWORD number = 0;
        DWORD size = sizeof number;
        if (!Query(name, REG_DWORD, &number, size) || size != sizeof number) return false;
        value = static_cast<std::int32_t>(number);
        return true;
    }

    bool ReadSingle(const std::u16string& name, float& value) override {
        std::u16string text;
        if (!ReadText(name, text)) return false;
        const std::optional<float> number = ParseSingle(text);
        value = number.value_or(value);
        return number.has_value();
    }

    bool WriteText(const std::u16string& name, const std::u16string& value) override {
        if (value.size() > kLongestText || value.find(u'\0') != std::u16string::npos) return false;
        return Set(name, REG_SZ, value.c_str(), (value.size() + 1) * sizeof(char16_t));
    }

    bool WriteInt16(const std::u16string& name, std::int16_t value) override { return WriteInt32(name, value); }

    bool WriteInt32(const std::u16string& name, std::int32_t value) override {
        return Set(name, REG_DWORD, &value, sizeof value);
    }

    bool WriteSingle(const std::u16string& name, float value) override {
        return std::isfinite(value) && WriteText(name, SingleText(value));
    }

  private:
    void Close() {
        if (m_key) ::RegCloseKey(m_key);
        m_key = nullptr;
    }

    /// `size` is the room in bytes before, the stored size after; a value that is larger fails.
    [[nodiscard]] bool Query(const std::u16string& name, DWORD type, void* data, DWORD& size) const {
        if (!m_key) return false;
        const std::wstring wide(name.begin(), name.end());
        DWORD found = REG_NONE;
        const LSTATUS status =
            ::RegQueryValueExW(m_key, wide.c_str(), nullptr, &found, static_cast<BYTE*>(data), &size);
        return status == ERROR_SUCCESS && found == type;
    }

    [[nodiscard]] bool Set(const std::u16string& name, DWORD type, const void* data, std::size_t size) const {
        if (!m_key) return false;
        const std::wstring wide(name.begin(), name.end());
        return ::RegSetValueExW(m_key, wide.c_str(), 0, type, static_cast<const BYTE*>(data),
                                static_cast<DWORD>(size)) == ERROR_SUCCESS;
    }

    RegistryRoot m_root = RegistryRoot::CurrentUser;
    std::wstring m_path;
    HKEY m_key = nullptr;
};

}  // namespace

std::unique_ptr<RegistryObject> MakeRegistryObject() {
    return std::make_unique<Registry>();
}

}  // namespace quillon
