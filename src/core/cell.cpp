#include "core/cell.h"

namespace tarnwick {

Cell Cell::null()
{
    Cell cell;
    cell.m_value = NullTag {};
    return cell;
}

bool Cell::isNumber() const
{
    const Kind k = kind();
    return k == Kind::Single || k == Kind::Double || k == Kind::Int32;
}

bool Cell::isBlank() const
{
    return isEmpty() || (isText() && std::get<QString>(m_value).isEmpty());
}

QString Cell::asText() const
{
    if (const auto *text = std::get_if<QString>(&m_value))
        return *text;
    return {};
}

double Cell::asNumber() const
{
    switch (kind()) {
    case Kind::Single:
        return std::get<float>(m_value);
    case Kind::Double:
        return std::get<double>(m_value);
    case Kind::Int32:
        return std::get<qint32>(m_value);
    default:
        return 0.0;
    }
}

} // namespace tarnwick
