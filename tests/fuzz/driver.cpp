// Runs a fuzz target: first over inputs that are kept, then over mutations of them.

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzztarget.h"
#include "fuzz/mutator.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TAMRIX_FUZZ_SANITIZED 1
#endif

namespace fs = std::filesystem;
using Tamrix::Fuzz::Input;
using Tamrix::Fuzz::Mutator;

#ifdef TAMRIX_FUZZ_SANITIZED
// The sanitizers take terabytes of address space for themselves, so they watch the memory.
extern "C" const char* __asan_default_options() {
    return "max_allocation_size_mb=1024:hard_rss_limit_mb=2048";
}
#endif

namespace {

constexpr rlim_t maxMemory = rlim_t(1) << 30;
constexpr unsigned maxSecondsOfInput = 20;

constexpr const char* usage = R"(Usage: %s [--seconds N] [--seed N] [--input FILE] PATH...
  PATH     an input, or a folder of inputs; without --seconds these alone are run
  seconds  how long mutations of the inputs are run as well
  seed     what the mutations follow from, 1 unless given
  input    where an input is written before it is run and stays when it fails
)";

struct Options {
    std::uint64_t seconds = 0;
    std::uint64_t seed = 1;
    fs::path input;
    std::vector<fs::path> paths;
};

std::optional<std::uint64_t> parseNumber(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), number);
    if (error != std::errc() || end != text.end())
        return std::nullopt;
    return number;
}

std::optional<Options> parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    for (auto it = arguments.begin(); it != arguments.end(); ++it) {
        if (!it->starts_with("--")) {
            options.paths.emplace_back(*it);
            continue;
        }
        const std::string& name = *it;
        if (++it == arguments.end())
            return std::nullopt;
        const std::optional<std::uint64_t> number = parseNumber(*it);
        if (name == "--input")
            options.input = *it;
        else if (name == "--seconds" && number)
            options.seconds = *number;
        else if (name == "--seed" && number)
            options.seed = *number;
        else
            return std::nullopt;
    }
    return options.paths.empty() ? std::nullopt : std::optional(options);
}

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

Input readInput(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "%s can't be read\n", path.c_str());
        std::exit(2);
    }
    return Input(std::istreambuf_iterator<char>(file), {});
}

/// A file that holds the input that is being run, so that a crash leaves it behind.
class LatestInput {
public:
    explicit LatestInput(fs::path path)
        : m_path(std::move(path)),
          m_file(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644)) {
        if (m_file < 0) {
            std::fprintf(stderr, "%s can't be written\n", m_path.c_str());
            std::exit(2);
        }
    }
    ~LatestInput() {
        ::close(m_file);
        fs::remove(m_path);
    }
    LatestInput(const LatestInput&) = delete;
    LatestInput& operator=(const LatestInput&) = delete;

    void store(const Input& input) const {
        const auto size = static_cast<off_t>(input.size());
        if (::pwrite(m_file, input.data(), input.size(), 0) != size ||
            ::ftruncate(m_file, size) != 0) {
            std::fprintf(stderr, "%s can't be written\n", m_path.c_str());
            std::exit(2);
        }
    }

private:
    fs::path m_path;
    int m_file;
};

void run(const Input& input, const LatestInput& latest) {
    latest.store(input);
    // A signal that nobody handles ends an input that takes too long.
    ::alarm(maxSecondsOfInput);
    fuzzTarget(input.data(), input.size());
    ::alarm(0);
}

void limitResources() {
    const rlimit noCore = {0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
#ifndef TAMRIX_FUZZ_SANITIZED
    const rlimit memory = {maxMemory, maxMemory};
    ::setrlimit(RLIMIT_AS, &memory);
#endif
}

}  // namespace

void fuzzRequire(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "Not true: %s\n", what);
    std::abort();
}

int main(int count, char** arguments) {
    const std::optional<Options> options =
        parseOptions(std::vector<std::string>(arguments + 1, arguments + count));
    if (!options) {
        std::fprintf(stderr, usage, arguments[0]);
        return 2;
    }
    limitResources();

    const fs::path inputFile =
        options->input.empty() ? fs::path(std::string(arguments[0]) + ".input") : options->input;
    std::fprintf(stderr, "Seed %llu; an input that fails stays in %s\n",
                 static_cast<unsigned long long>(options->seed), inputFile.c_str());
    const LatestInput latest(inputFile);

    std::vector<Input> corpus;
    for (const fs::path& file : filesOf(options->paths)) {
        corpus.push_back(readInput(file));
        run(corpus.back(), latest);
    }
    const std::size_t kept = corpus.size();

    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::seconds(options->seconds);
    Mutator mutator(std::move(corpus), options->seed);
    std::uint64_t mutated = 0;
    for (; Clock::now() < end; ++mutated)
        run(mutator.next(), latest);
    std::fprintf(stderr, "Ran %zu kept inputs and %llu mutations\n", kept,
                 static_cast<unsigned long long>(mutated));
    return 0;
}
