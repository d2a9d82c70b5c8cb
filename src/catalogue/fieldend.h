#pragma once

#include <QStringView>

#include <string_view>

/// The field end of the catalogue file: three DEL characters after every field.
namespace tarnwick::fieldend {

constexpr char Byte = 0x7F;
constexpr char16_t Character = 0x7F;
constexpr int Length = 3;
constexpr std::string_view Bytes = "\x7f\x7f\x7f";
constexpr QStringView Text = u"\x7f\x7f\x7f";

} // namespace tarnwick::fieldend
