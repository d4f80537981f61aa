#pragma once

#include <cstdint>
#include <string>

/// The contract between the viewer and the core library's registry object.
namespace quillon {

enum class RegistryRoot { CurrentUser, LocalMachine };

/// One key of the registry at a time: set the root and the path, open, then read and write values by name.
///
/// Texts are kept as strings, 16- and 32-bit integers as 32-bit numbers with the sign extended, singles as strings: a
/// decimal number with a point. Operations report failure by their result, but may also throw an exception derived from
/// std::exception.
class RegistryObject {
  public:
    /// Longest text that is read or written, in characters: that of the longest path.
    static constexpr std::size_t kLongestText = 32767;

    virtual ~RegistryObject() = default;

    /// Takes effect at the next OpenOrCreate, as does SetKeyPath.
    virtual void SetRoot(RegistryRoot root) = 0;
    /// Path below the root, parts separated by backslashes.
    virtual void SetKeyPath(const std::u16string& path) = 0;
    /// Closes the previous key. A key that may only be read is opened for reading. After false nothing is read or
    /// written.
    virtual bool OpenOrCreate() = 0;

    // These return false and leave the variable unchanged when the value is missing, is of another type or does not
    // fit. A text ends at its first null character and need not have one; a single must be finite.

    virtual bool ReadText(const std::u16string& name, std::u16string& value) = 0;
    virtual bool ReadInt16(const std::u16string& name, std::int16_t& value) = 0;
    virtual bool ReadInt32(const std::u16string& name, std::int32_t& value) = 0;
    virtual bool ReadSingle(const std::u16string& name, float& value) = 0;

    // These replace a value, whatever its type. They return false, with nothing written, for what could not be read
    // back.

    virtual bool WriteText(const std::u16string& name, const std::u16string& value) = 0;
    virtual bool WriteInt16(const std::u16string& name, std::int16_t value) = 0;
    virtual bool WriteInt32(const std::u16string& name, std::int32_t value) = 0;
    virtual bool WriteSingle(const std::u16string& name, float value) = 0;
};

}  // namespace quillon
