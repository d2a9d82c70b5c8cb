// A small program for checking the hardening check. Built with the project's flags it must show
// every hardening feature, built without them none: it formats its arguments into a buffer on
// the stack with the C library, the calls that a fortified and stack-protected build guards.
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
