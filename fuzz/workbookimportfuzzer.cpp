// The import of a tab-separated worksheet into a catalogue. See fuzzentries.h.
#include "fuzzentries.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return tarnwick::fuzzing::fuzzOne(QLatin1StringView("workbook_import"), data, size);
}
