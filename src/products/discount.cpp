#include "products/discount.h"

#include <array>

namespace tarnwick::Discount {

namespace {

struct Rate
{
    const char *text;
    float rate; ///< held as a single: "1%" is the single nearest 0.01
};

constexpr std::array<Rate, 14> Rates { {
    { "List Price", 0.0f },
    { "1%", 0.01f },
    { "2%", 0.02f },
    { "3%", 0.03f },
    { "4%", 0.04f },
    { "5%", 0.05f },
    { "6%", 0.06f },
    { "7%", 0.07f },
    { "8%", 0.08f },
    { "9%", 0.09f },
    { "10%", 0.10f },
    { "15%", 0.15f },
    { "20%", 0.20f },
    { "25%", 0.25f },
} };

} // namespace

const QStringList &choices()
{
    static const QStringList list { QStringLiteral("1%"), QStringLiteral("2%'"),
        QStringLiteral("3%"), QStringLiteral("4%"), QStringLiteral("5%"), QStringLiteral("6%"),
        QStringLiteral("7%"), QStringLiteral("8%"), QStringLiteral("9%"), QStringLiteral("10%"),
        QStringLiteral("15%"), QStringLiteral("20%"), QStringLiteral("25%") };
    return list;
}

float rateOf(const QString &text)
{
    for (const Rate &entry : Rates) {
        if (text == QLatin1String(entry.text))
            return entry.rate;
    }
    return 0.0f;
}

/// Multiplier rule: 1 − rate is computed in double precision and then stored as a single, so
/// "1%" multiplies by the single nearest 0.99 (0.99000001). Discounted prices are list price ×
/// this single, computed in double precision and not rounded afterwards.
float multiplierOf(float rate)
{
    return static_cast<float>(1.0 - double(rate));
}

float multiplierFor(const QString &text)
{
    return multiplierOf(rateOf(text));
}

} // namespace tarnwick::Discount
