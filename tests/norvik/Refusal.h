#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "base/Text.h"
#include "norvik/RecordingLibrary.h"

namespace quillon::testing {

/// The file is refused with a text in each language; the English one holds `part`.
inline void ExpectRefusal(std::shared_ptr<ByteSource> source, std::u16string_view fileName, std::string_view part) {
    try {
        static_cast<void>(ReadRecording(std::move(source), fileName));
        FAIL() << "not refused: " << part;
    } catch (const FormatError& error) {
        const Bilingual& reason = error.Reason();
        EXPECT_NE(Utf8(reason.english).find(part), std::string::npos) << Utf8(reason.english);
        EXPECT_FALSE(reason.russian.empty());
        EXPECT_NE(reason.english, reason.russian);
        EXPECT_EQ(reason.english.find(u'%'), std::u16string::npos) << Utf8(reason.english);
        EXPECT_EQ(reason.russian.find(u'%'), std::u16string::npos) << Utf8(reason.russian);
    }
}

}  // namespace quillon::testing
