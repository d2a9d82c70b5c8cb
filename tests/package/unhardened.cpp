// A program built without any of the hardening flags, for checking that the package's hardening
// check notices each one missing. It formats its arguments into a buffer on the stack with the C
// library, the calls that a fortified and stack-protected build guards.
#include <cstdio>

int main(int argc, char *argv[])
{
    char buffer[64] = {};
    for (int i = 1; i < argc; ++i) {
        std::snprintf(buffer, sizeof buffer, "%d: %s", i, argv[i]);
        std::printf("%s (%d)\n", buffer, argc);
    }
    return 0;
}
