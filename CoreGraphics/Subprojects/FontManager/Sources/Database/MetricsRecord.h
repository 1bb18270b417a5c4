// MetricsRecord.h: a font's metrics as the database stores them.
#pragma once

#include <FontManager/FMBase.h>

#include "RecordKey.h"

#include <array>
#include <cstddef>

namespace fm {

constexpr std::size_t kMetricsRecordSize = 90;

std::array<std::byte, kMetricsRecordSize> packMetrics(const FMFontMetrics& metrics);
// Fills in all but `reserved4`, which is not stored. False for a record of another size.
bool unpackMetrics(Bytes record, FMFontMetrics& metrics);

} // namespace fm
