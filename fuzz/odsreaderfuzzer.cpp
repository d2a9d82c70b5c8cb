// The .ods reader on a workbook file, or on the list of its members. See fuzzentries.h.
#include "fuzzone.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return tarnwick::fuzzing::fuzzOne("ods_reader", data, size);
}
