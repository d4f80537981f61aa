#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "base/Text.h"
#include "norvik/private/ReadRecording.h"

namespace quillon::testing {

/// The files of a folder, in memory.
struct Folder {
    std::map<std::u16string, std::string> files;
    mutable std::vector<std::u16string> asked{};
    std::u16string header = u"a.vhdr";  ///< what is opened unless told otherwise

    [[nodiscard]] static std::shared_ptr<ByteSource> Source(const std::string& bytes) {
        return std::make_shared<MemorySource>(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
    }
    [[nodiscard]] RecordingContent Read() const { return Read(header); }
    [[nodiscard]] RecordingContent Read(const std::u16string& name) const {
        const Companions beside([this](const std::u16string& other, Bilingual& error) {
            asked.push_back(other);
            const auto found = files.find(other);
            if (found == files.end()) error = Say(u"missing", u"нет");
            return found == files.end() ? nullptr : Source(found->second);
        });
        return ReadRecording({Source(files.at(name)), u"C:\\folder\\" + name, beside});
    }
    /// Why it is refused, in English.
    [[nodiscard]] std::string Refused() const { return Refused(header); }
    [[nodiscard]] std::string Refused(const std::u16string& name) const {
        try {
            return "read: " + Utf8(Read(name).info.english);
        } catch (const FormatError& error) {
            EXPECT_NE(error.Reason().english, error.Reason().russian);
            EXPECT_EQ((error.Reason().english + error.Reason().russian).find(u'%'), std::u16string::npos);
            return Utf8(error.Reason().english);
        }
    }
};

/// Replaces the first `from`, which must be there.
inline std::string With(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

}  // namespace quillon::testing
