#include "fuzz/fuzz_support.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
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

void Broken(const char* promise) {
    std::fprintf(stderr, "reader broke its promise: %s\n", promise);
    std::abort();
}
