// The catalogue reader on the bytes of a catalogue file. See fuzzentries.h.
#include "fuzzone.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return tarnwick::fuzzing::fuzzOne("catalogue_reader", data, size);
}
