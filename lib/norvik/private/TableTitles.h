#pragma once

#include "norvik/private/TableHead.h"

namespace quillon {

/// Reads the lines above the first row into the titles, units, rate, numbers and start of `head`, whose layout is set.
void ReadTableTitles(const TableLines& lines, TableHead& head);

}  // namespace quillon
