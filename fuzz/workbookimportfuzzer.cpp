// The import of a tab-separated worksheet into a catalogue. See fuzzentries.h.
#include "fuzzone.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    return tarnwick::fuzzing::fuzzOne("workbook_import", data, size);
}
