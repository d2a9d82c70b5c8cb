#include "generatedcatalogue.h"

#include <array>
#include <cstdio>
#include <string>

namespace tarnwick::bench {

namespace {

constexpr std::array<const char *, 8> Makers = { "Harwell", "Brightline", "Ostara", "Kestrel",
    "Norrland", "Vantage", "Calder", "Mirefield" };
constexpr std::array<const char *, 8> Things = { "wall-mounted control panel",
    "stainless mixing valve", "twin-channel amplifier", "weatherproof junction box",
    "compact pressure gauge", "industrial cable reel", "digital thermostat unit",
    "heavy-duty door closer" };
constexpr std::array<const char *, 6> NoteParts = {
    "Supplied with fixing kit and installation guide. ",
    "Suitable for indoor and sheltered outdoor use. ",
    "Replacement parts available for ten years from purchase. ",
    "Operating range -20 to 60 \xB0"
    "C, tested to the current standard. ",
    "Order in multiples of the carton quantity for the best price. ",
    "Finish may vary slightly between production batches. ",
};
constexpr std::array<const char *, 4> Includes = {
    "Mounting bracket, four wall plugs, screws, user manual and a two-year warranty card",
    "Carry case, spare seals, adjustment key, quick-start sheet and calibration report",
    "Power supply, 2 m cable, remote sensor, wall template and printed safety notes",
    "Cover plate, gasket set, cable glands, terminal labels and the installer's guide",
};

std::string money(unsigned cents)
{
    return std::to_string(cents / 100) + "." + std::to_string(10 + cents % 90);
}

void appendProduct(std::string &out, int index, int products)
{
    static const std::string End = "\x7f\x7f\x7f";
    // A multiplier coprime with every size spreads the part numbers over the file.
    const unsigned part = unsigned((long long)(index)*7919 % products);
    char partText[16];
    std::snprintf(partText, sizeof partText, "TW-%06u", part);
    out += partText + End;
    out += std::string(Makers[part % Makers.size()]) + " " + Things[(part / 8) % Things.size()]
        + ", model " + std::to_string(1000 + part % 9000) + End;
    const unsigned cents = 1999 + (part * 37) % 250000;
    out += money(cents) + End;
    std::string notes;
    for (unsigned k = 0; notes.size() < 190; ++k) {
        notes += NoteParts[(part + k) % NoteParts.size()];
        if (k == 1 && part % 5 == 0)
            notes += "\r\n";
    }
    out += notes + End;
    out += std::string(Includes[part % Includes.size()]) + End;
    constexpr std::array<unsigned, 5> Thresholds = { 10, 25, 50, 100, 250 };
    for (std::size_t k = 0; k < Thresholds.size(); ++k) {
        out += std::to_string(Thresholds[k]) + End;
        out += money(cents - cents * unsigned(k + 1) / 25) + End;
    }
    out += "\r\n";
}

} // namespace

QByteArray generatedCatalogue(int products)
{
    std::string out;
    out.reserve(std::size_t(products) * 440);
    for (int i = 0; i < products; ++i)
        appendProduct(out, i, products);
    return QByteArray(out.data(), qsizetype(out.size()));
}

bool writeGeneratedCatalogue(const char *path, int products)
{
    // Written a few thousand products at a time, so a catalogue of a million products never
    // sits in this process's memory beside the program's own copy.
    std::FILE *file = std::fopen(path, "wb");
    if (!file)
        return false;
    bool written = true;
    std::string piece;
    for (int i = 0; i < products && written; ++i) {
        appendProduct(piece, i, products);
        if (piece.size() >= 1024 * 1024 || i + 1 == products) {
            written = std::fwrite(piece.data(), 1, piece.size(), file) == piece.size();
            piece.clear();
        }
    }
    return std::fclose(file) == 0 && written;
}

} // namespace tarnwick::bench
