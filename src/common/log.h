// Trace and error lines of the game, printed on the standard streams.
#pragma once

// Formatted trace line on standard output; the text carries its own line breaks.
void Log(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Formatted error line on standard error.
void LogError(const char* format, ...) __attribute__((format(printf, 1, 2)));

// A file the game cannot run without is unreadable: print the message on standard error,
// wait for a key ("pause" does nothing where the shell has no such command) and end with status 1.
[[noreturn]] void FatalExit(const char* message);
