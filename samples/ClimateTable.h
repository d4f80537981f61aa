#pragma once

#include <cstdio>
#include <string>

#include "Signals.h"

/// Three days of a weather station as a logger writes them: a row a minute, an hour missing on the second day.
namespace quillon::samples {

inline std::string ClimateTable() {
    constexpr int kMinutes = 3 * 24 * 60;
    constexpr int kGapStart = 24 * 60 + 610;
    constexpr int kGapEnd = kGapStart + 60;
    PinkNoise draught(5, 1.0 / 60.0);
    PinkNoise weather(6, 1.0 / 600.0);
    std::string table = "Date and time;Outdoors (\xC2\xB0\x43);Indoors (\xC2\xB0\x43);Humidity (%);Pressure (hPa)\r\n";
    double indoors = 20.5;
    for (int minute = 0; minute < kMinutes; ++minute) {
        const double day = minute / 1440.0;
        const double front = 1.0 / (1.0 + std::exp((1.7 - day) * 14.0));
        const double outdoors =
            9.0 - 4.5 * front - 5.5 * std::cos(kTurn * (day - 0.13)) + 0.25 * draught.Next() * (1.0 + front);
        // The heating holds 20.5 degrees by day and 17.5 by night, a third of an hour on and off.
        const double wanted = minute % 1440 > 360 && minute % 1440 < 1350 ? 20.5 : 17.5;
        const bool heats = minute % 40 < 20 && indoors < wanted + 0.4;
        indoors += (heats ? 0.035 : 0.0) - 0.0011 * (indoors - outdoors);
        const double humidity = 72.0 + 14.0 * front - 2.1 * (outdoors - 9.0) + 0.4 * draught.Next();
        const double pressure = 1016.0 - 11.0 * Bell(day, 1.72, 0.35) + 0.3 * weather.Next();
        if (minute >= kGapStart && minute < kGapEnd) continue;
        char row[100];
        std::snprintf(row, sizeof row, "2024-03-%02d %02d:%02d:00;%.1f;%.2f;%.0f;%.1f\r\n", 4 + minute / 1440,
                      minute / 60 % 24, minute % 60, outdoors, indoors, std::min(humidity, 100.0), pressure);
        table += row;
    }
    return table;
}

}  // namespace quillon::samples
