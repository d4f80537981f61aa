#include "export/EdfHeaderBytes.h"

#include "export/EdfText.h"

namespace quillon {

ByteWriter EdfHeaderBytes(const EdfHeaderFields& fields) {
    const std::int64_t signals = std::ssize(fields.signals);
    ByteWriter header;
    const auto field = [&](std::string_view text, std::size_t width) { header.Text(text, width, ' '); };
    field("0", 8);
    field(EdfText(fields.patient, 80), 80);
    field(EdfText(fields.recording, 80), 80);
    field(fields.start, 16);
    field(EdfCount((signals + 1) * 256, 8), 8);
    field(fields.reserved, 44);
    field(EdfCount(fields.records, 8), 8);
    field(fields.seconds, 8);
    field(EdfCount(signals, 4), 4);

    const auto column = [&](std::size_t width, auto text) {
        for (const EdfSignalFields& signal : fields.signals) field(text(signal), width);
    };
    column(16, [](const EdfSignalFields& signal) { return EdfText(signal.label, 16); });
    column(80, [](const EdfSignalFields& signal) { return EdfText(signal.transducer, 80); });
    column(8, [](const EdfSignalFields& signal) { return EdfText(signal.unit, 8); });
    column(8, [](const EdfSignalFields& signal) { return signal.limits.physicalMinimum; });
    column(8, [](const EdfSignalFields& signal) { return signal.limits.physicalMaximum; });
    column(8, [](const EdfSignalFields& signal) { return EdfCount(signal.limits.digitalMinimum, 8); });
    column(8, [](const EdfSignalFields& signal) { return EdfCount(signal.limits.digitalMaximum, 8); });
    column(80, [](const EdfSignalFields& signal) { return EdfText(signal.prefiltering, 80); });
    column(8, [](const EdfSignalFields& signal) { return EdfCount(signal.samples, 8); });
    column(32, [](const EdfSignalFields&) { return std::string(); });
    return header;
}

}  // namespace quillon
