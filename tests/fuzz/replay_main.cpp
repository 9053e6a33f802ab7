// Replays every file of the given folders through a fuzz target once: the committed corpora
// become a quick regression test without the fuzzing engine.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    // The targets change folder: the corpora are found from where the replay started.
    std::vector<std::filesystem::path> folders;
    for (int i = 1; i < argc; i++) folders.push_back(std::filesystem::absolute(argv[i]));
    int replayed = 0;
    for (const std::filesystem::path& folder : folders) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (!entry.is_regular_file()) continue;
            std::ifstream file(entry.path(), std::ios::binary);
            std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(file)),
                                       std::istreambuf_iterator<char>());
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            replayed++;
        }
    }
    std::printf("replayed %d inputs\n", replayed);
    return replayed > 0 ? 0 : 1;
}
