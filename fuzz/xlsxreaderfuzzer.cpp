// The .xlsx reader on a workbook file, or on the list of its members. See fuzzentries.h.
#include "fuzzentries.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return tarnwick::fuzzing::fuzzOne(QLatin1StringView("xlsx_reader"), data, size);
}
