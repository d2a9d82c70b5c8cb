#pragma once

#include <cstddef>
#include <cstdint>

namespace tarnwick::fuzzing {

/// The body of a fuzz target: runs the entry of the target named (fuzzentries.h) on the input
/// and, when the input broke a rule, prints which and aborts, so the fuzzer keeps the input as
/// a finding. Declared apart from the entries so that a fuzz target's source needs no Qt.
int fuzzOne(const char *targetName, const std::uint8_t *data, std::size_t size);

} // namespace tarnwick::fuzzing
