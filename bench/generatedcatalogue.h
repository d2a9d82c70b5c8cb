#pragma once

#include <QByteArray>

namespace tarnwick::bench {

/// The bytes of a catalogue file with products as users keep them: part numbers out of
/// order, names of about 45 characters, notes of about 200 with a line break in every fifth
/// product and a degree sign (Windows-1252) in some, includes of about 80, a price and five
/// price points (ten fields).
QByteArray generatedCatalogue(int products);

/// Writes generatedCatalogue(products) to path; false when the file could not be written.
bool writeGeneratedCatalogue(const char *path, int products);

} // namespace tarnwick::bench
