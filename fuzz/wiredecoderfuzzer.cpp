// The decoder of the workbook reader process's output. See fuzzentries.h.
#include "fuzzone.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return tarnwick::fuzzing::fuzzOne("wire_decoder", data, size);
}
