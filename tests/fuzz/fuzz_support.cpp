#include "fuzz/fuzz_support.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

fs::path scratch;

void RemoveScratch() {
    std::error_code ignored;
    if (!scratch.empty()) fs::remove_all(scratch, ignored);
}

}  // namespace

void EnterScratchFolder() {
    if (!scratch.empty()) return;
    fs::path base = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
    scratch = base / ("ombrith-fuzz-" + std::to_string(::getpid()));
    for (const char* folder : {"Assets/Saves/Elevator", "Assets/Settings", "Assets/Maps"}) {
        fs::create_directories(scratch / folder);
    }
    fs::current_path(scratch);
    std::atexit(RemoveScratch);
}

void WriteBytes(const std::string& path, const uint8_t* data, size_t size) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(data), std::streamsize(size));
}

void WriteText(const std::string& path, const std::string& text) {
    WriteBytes(path, reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

std::string ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

MemoryFile::MemoryFile(const uint8_t* data, size_t size) {
    // An empty buffer cannot be opened: an empty file is a stream at its end from the start.
    static char nothing[1];
    file =
        size > 0 ? ::fmemopen(const_cast<uint8_t*>(data), size, "r") : ::fmemopen(nothing, 1, "r");
    if (!file) Broken("the bytes open as a file in memory");
    if (size == 0) std::fgetc(file);
}

MemoryFile::MemoryFile(const std::string& text)
    : MemoryFile(reinterpret_cast<const uint8_t*>(text.data()), text.size()) {}

MemoryFile::~MemoryFile() {
    std::fclose(file);
}

bool SampledForFiles(const uint8_t* data, size_t size) {
    uint32_t hash = 2166136261u;  // FNV-1a
    for (size_t i = 0; i < size; i++) hash = (hash ^ data[i]) * 16777619u;
    return (hash & 15u) == 0;
}

RoomTexts SplitRoomInput(const uint8_t* data, size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    const void* zero = size > 0 ? std::memchr(text, 0, size) : nullptr;
    size_t mapSize = zero ? size_t(static_cast<const char*>(zero) - text) : size;
    return {std::string(text, mapSize),
            zero ? std::string(text + mapSize + 1, size - mapSize - 1) : std::string()};
}

void Broken(const char* promise) {
    std::fprintf(stderr, "reader broke its promise: %s\n", promise);
    std::abort();
}
