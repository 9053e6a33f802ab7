#include "common/file_write.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

namespace {

bool WriteAll(int descriptor, const std::string& text) {
    const char* data = text.data();
    size_t left = text.size();
    while (left > 0) {
        ssize_t written = ::write(descriptor, data, left);
        if (written < 0) return false;
        data += written;
        left -= size_t(written);
    }
    return true;
}

// The rename itself is kept by flushing the folder that holds the file.
void SyncFolder(const std::string& path) {
    std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (folder.empty()) folder = ".";
    int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

}  // namespace

bool WriteFileSafely(const std::string& path, const std::string& text) {
    std::string temporary = path + ".tmp";
    int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (descriptor < 0) return false;
    bool written = WriteAll(descriptor, text) && ::fsync(descriptor) == 0;
    written = ::close(descriptor) == 0 && written;
    if (!written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        return false;
    }
    SyncFolder(path);
    return true;
}
