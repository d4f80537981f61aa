#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "export/ByteWriter.h"
#include "export/EdfLimits.h"

namespace quillon {

/// A signal's columns of the header. Texts are cut to their fields, and "?" stands for what is no printable ASCII.
struct EdfSignalFields {
    std::u16string label;
    std::u16string transducer = {};
    std::u16string unit = {};
    EdfLimits limits = {};
    std::u16string prefiltering = {};
    std::int32_t samples = 0;  ///< per record
};

/// The header of European Data Format.
struct EdfHeaderFields {
    std::u16string patient;
    std::u16string recording;
    std::string start;  ///< of EdfDateTime
    std::string_view reserved = {};
    std::int64_t records = 0;
    std::string seconds;  ///< of a record
    std::vector<EdfSignalFields> signals;
};

/// Throws FormatError for counts that their fields do not hold.
[[nodiscard]] ByteWriter EdfHeaderBytes(const EdfHeaderFields& fields);

}  // namespace quillon
