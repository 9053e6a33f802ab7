// What every fuzz target of the game's file readers shares: a scratch folder of its own, files
// written from the fuzzer's bytes, and a loud stop when a reader breaks a promise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

// Moves the process, once, into a fresh folder (in memory where the system has one) holding the
// game's writable folders, so the readers and writers work on their real relative paths.
void EnterScratchFolder();

void WriteBytes(const std::string& path, const uint8_t* data, size_t size);
void WriteText(const std::string& path, const std::string& text);
std::string ReadText(const std::string& path);

// Bytes opened as a read-only file in memory: the readers' own scanning code, without the disk.
class MemoryFile {
public:
    MemoryFile(const uint8_t* data, size_t size);
    explicit MemoryFile(const std::string& text);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    std::FILE* get() const { return file; }

private:
    std::FILE* file;
};

// Whether an input also goes through the real files when the reader refused it: one in sixteen,
// chosen by a hash of its bytes (so a replay chooses the same), keeps the damaged-file paths
// fuzzed without every run paying for the disk.
bool SampledForFiles(const uint8_t* data, size_t size);

// A room input: the map's text, then after a zero byte the tileset's (empty without one).
struct RoomTexts {
    std::string map, tileset;
};
RoomTexts SplitRoomInput(const uint8_t* data, size_t size);

// A reader broke one of its promises: says which, then aborts so the fuzzer keeps the input.
[[noreturn]] void Broken(const char* promise);
inline void Require(bool kept, const char* promise) {
    if (!kept) Broken(promise);
}
