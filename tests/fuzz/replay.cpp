// Runs a fuzz target over inputs that are kept, one after the other. The name of each is printed
// before it is run, so that the last one is the culprit when something goes wrong.

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/fuzztarget.h"

namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TAMRIX_FUZZ_SANITIZED 1
// The sanitizers take terabytes of address space for themselves, so they watch the memory.
extern "C" const char* __asan_default_options() {
    return "max_allocation_size_mb=1024:hard_rss_limit_mb=2048";
}
#endif

namespace {

constexpr unsigned maxSecondsOfInput = 20;

/// The files of the paths, those of a folder in the order of their names.
std::vector<fs::path> filesOf(const std::vector<fs::path>& paths) {
    std::vector<fs::path> files;
    for (const fs::path& path : paths) {
        if (!fs::is_directory(path)) {
            files.push_back(path);
            continue;
        }
        const auto before = static_cast<std::ptrdiff_t>(files.size());
        for (const fs::directory_entry& entry : fs::directory_iterator(path))
            files.push_back(entry.path());
        std::sort(files.begin() + before, files.end());
    }
    return files;
}

void run(const fs::path& path) {
    std::fprintf(stderr, "%s\n", path.c_str());
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "It can't be read\n");
        std::exit(2);
    }
    const std::vector<char> input(std::istreambuf_iterator<char>(file), {});
    // A signal that nobody handles ends an input that takes too long.
    ::alarm(maxSecondsOfInput);
    fuzzTarget(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    ::alarm(0);
}

void limitResources() {
    const rlimit noCore = {0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
#ifndef TAMRIX_FUZZ_SANITIZED
    constexpr rlim_t maxMemory = rlim_t(1) << 30;
    const rlimit memory = {maxMemory, maxMemory};
    ::setrlimit(RLIMIT_AS, &memory);
#endif
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "Usage: %s PATH...\n  PATH  an input, or a folder of inputs\n",
                     arguments[0]);
        return 2;
    }
    limitResources();
    const std::vector<fs::path> files = filesOf({arguments + 1, arguments + count});
    for (const fs::path& file : files)
        run(file);
    std::fprintf(stderr, "Ran %zu inputs\n", files.size());
    // A folder without inputs is a mistake.
    return files.empty() ? 2 : 0;
}
