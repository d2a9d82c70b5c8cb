// The tab-separated text reader on the bytes of a text file. See fuzzentries.h.
#include "fuzzone.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return tarnwick::fuzzing::fuzzOne("text_reader", data, size);
}
