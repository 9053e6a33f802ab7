// What every fuzz target of the game's file readers shares: a scratch folder of its own, files
// written from the fuzzer's bytes, and a loud stop when a reader breaks a promise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Moves the process, once, into a fresh folder (in memory where the system has one) holding the
// game's writable folders, so the readers and writers work on their real relative paths.
void EnterScratchFolder();

void WriteBytes(const std::string& path, const uint8_t* data, size_t size);
void WriteText(const std::string& path, const std::string& text);
std::string ReadText(const std::string& path);

// A reader broke one of its promises: says which, then aborts so the fuzzer keeps the input.
[[noreturn]] void Broken(const char* promise);
inline void Require(bool kept, const char* promise) {
    if (!kept) Broken(promise);
}
