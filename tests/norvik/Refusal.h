#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "base/Text.h"
#include "norvik/RecordingLibrary.h"

namespace quillon::testing {

/// Why the file is refused, in English; there is a Russian text too, and no place is left open in either.
inline std::string Refusal(std::shared_ptr<ByteSource> source, std::u16string_view fileName) {
    try {
        static_cast<void>(ReadRecording(std::move(source), fileName));
        return "read";
    } catch (const FormatError& error) {
        const Bilingual& reason = error.Reason();
        EXPECT_FALSE(reason.russian.empty());
        EXPECT_NE(reason.english, reason.russian);
        EXPECT_EQ((reason.english + reason.russian).find(u'%'), std::u16string::npos) << Utf8(reason.english);
        return Utf8(reason.english);
    }
}

inline void ExpectRefusal(std::shared_ptr<ByteSource> source, std::u16string_view fileName, const std::string& part) {
    EXPECT_THAT(Refusal(std::move(source), fileName), ::testing::HasSubstr(part));
}

}  // namespace quillon::testing
