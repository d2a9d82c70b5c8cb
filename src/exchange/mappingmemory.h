#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace tarnwick {

class ISettingsStore;

/// The mapping last used for a sheet, kept in the settings across runs so that "Last Mapping"
/// can restore it for the next sheet with the same header row. Each header row has a key of its
/// own in the section "ImportMappings" of "Tarnwick": "Mapping" followed by 16 hexadecimal
/// digits of the SHA-256 of the header texts joined by tabs; the value is the column letter
/// table of the fifteen lists (ColumnMapping::columnLetters, e.g. "AB?C@@@@@@@@@@@").
namespace MappingMemory {

inline const QString Application = QStringLiteral("Tarnwick");
inline const QString Section = QStringLiteral("ImportMappings");

/// The settings key of a header row.
QString settingsKey(const QStringList &headers);
/// Keeps letters as the mapping of sheets with these headers. False when the store could not
/// be written (the mapping is then not kept) or there are no headers.
bool remember(ISettingsStore &settings, const QStringList &headers, const QString &letters);
/// The letter table kept for these headers; nothing when none was kept or what is stored is
/// no letter table for them (a column past the last header).
std::optional<QString> recall(const ISettingsStore &settings, const QStringList &headers);

} // namespace MappingMemory

} // namespace tarnwick
