// Writes a generated catalogue file, for measuring the real program on a large catalogue:
//     tarnwick_make_catalogue <path> <products>
#include "generatedcatalogue.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <path> <products>\n", argv[0]);
        return 2;
    }
    const int products = std::atoi(argv[2]);
    if (products < 0 || !tarnwick::bench::writeGeneratedCatalogue(argv[1], products)) {
        std::fprintf(stderr, "the catalogue could not be written\n");
        return 1;
    }
    return 0;
}
