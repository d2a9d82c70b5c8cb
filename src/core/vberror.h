#pragma once

#include <QString>

#include <stdexcept>

namespace tarnwick {

/// Run-time error numbers the program's messages show ("Error " + number).
namespace ErrorNumber {
constexpr int Overflow = 6;
constexpr int OutOfMemory = 7;
constexpr int SubscriptOutOfRange = 9;
constexpr int DivisionByZero = 11;
constexpr int TypeMismatch = 13;
constexpr int BadFileName = 52;
constexpr int FileNotFound = 53;
constexpr int FileAlreadyOpen = 55;
constexpr int DeviceIOError = 57;
constexpr int DiskFull = 61;
constexpr int InputPastEndOfFile = 62;
constexpr int PermissionDenied = 70;
constexpr int PathNotFound = 76;
constexpr int InvalidUseOfNull = 94;
} // namespace ErrorNumber

/// A run-time error with its number, raised by conversions, tables and file routines.
class VbError : public std::runtime_error
{
public:
    explicit VbError(int number, const QString &description = QString())
        : std::runtime_error(description.toStdString()), m_number(number),
          m_description(description)
    {
    }

    int number() const { return m_number; }
    QString description() const { return m_description; }

private:
    int m_number;
    QString m_description;
};

} // namespace tarnwick
