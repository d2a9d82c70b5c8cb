// The catalogue reader on the bytes of a catalogue file. See fuzzentries.h.
#include "fuzzentries.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return tarnwick::fuzzing::fuzzOne(QLatin1StringView("catalogue_reader"), data, size);
}
