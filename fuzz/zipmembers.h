#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace tarnwick::fuzzing {

/// A zip archive made from a list of members, so a fuzzer can change what a zipped workbook
/// holds without breaking the archive's checksums (which would stop every changed input at the
/// first member read). The list is the members one after another, separated by a zero byte; a
/// member is its name, a line break, then its bytes ("content.xml\n<?xml …"). A member without
/// a name, or one the archive refuses, is left out. Members are stored without compression.
QByteArray zipOfMembers(QByteArrayView list);

/// The archive itself when the input is one (it starts with "PK"), else zipOfMembers(input).
QByteArray zipFromInput(QByteArrayView input);

} // namespace tarnwick::fuzzing
