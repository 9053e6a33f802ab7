#include "common/log.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

void Log(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
    // Lines are read live by whoever watches the game (and by the end-to-end tests).
    std::fflush(stdout);
}

void LogError(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
}

void FatalExit(const char* message) {
    std::fputs(message, stderr);
    std::fflush(stdout);
    std::fflush(stderr);
    [[maybe_unused]] int ignored = std::system("pause");
    // Skip static destructors: graphics objects may still be alive when a load fails midway.
    std::_Exit(1);
}
