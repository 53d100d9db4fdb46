// Runs many cases with workers, beside one worker in the same run, and merges many bundles.
//
//   farm_bench [PART]
//
// Parts: speed, cost, balance, memory, merge; all of them without.

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const std::string runner = std::string(TAMRIX_BENCH_PREFIX) + "/bin/tamrixrunner";

[[noreturn]] void fail(const std::string& message) {
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(1);
}

struct Measured {
    double seconds = 0;
    /// Of processors, in seconds.
    double work = 0;
    /// Of the largest process, in MiB.
    double memory = 0;
};

/// Runs the program to its end, which has to be a good one.
Measured measure(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), runner);
    std::vector<char*> words;
    for (std::string& argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);
    const auto start = std::chrono::steady_clock::now();
    pid_t process = -1;
    if (::posix_spawn(&process, runner.c_str(), nullptr, nullptr, words.data(), environ) != 0)
        fail("'" + runner + "' can't be started");
    int status = 0;
    rusage usage{};
    ::wait4(process, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        fail("the run failed: " + arguments[1] + " " + arguments[2]);
    const auto secondsOf = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
            secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            static_cast<double>(usage.ru_maxrss) / 1024};
}

class Folder {
public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "farm_bench-XXXXXX").string();
        if (!::mkdtemp(name.data()))
            fail("no folder can be made");
        m_path = name;
    }
    ~Folder() { fs::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /// A suite of cases with these bodies; returns its path.
    std::string suite(const std::vector<std::string>& bodies) const {
        for (size_t index = 0; index < bodies.size(); ++index) {
            const fs::path folder = m_path / "suite" / ("case" + std::to_string(index));
            fs::create_directories(folder);
            std::ofstream(folder / "test.py")
                << "import time\ndef main():\n    " << bodies[index] << "\n";
        }
        return path("suite");
    }

private:
    fs::path m_path;
};

void speed() {
    const Folder folder;
    const std::string suite = folder.suite(std::vector<std::string>(200, "time.sleep(0.5)"));
    const double eight = measure({"run", suite, "--jobs", "8", "--quiet"}).seconds;
    const double one = measure({"run", suite, "--jobs", "1", "--quiet"}).seconds;
    std::printf(
        "200 cases of 0.5 s: one worker %.1f s, 8 workers %.1f s, %.2f times as fast "
        "(aim: 7)\n",
        one, eight, one / eight);
}

void cost() {
    const Folder folder;
    const std::string suite = folder.suite(std::vector<std::string>(200, "pass"));
    const double few = measure({"run", suite, "case0", "--jobs", "1", "--quiet"}).seconds;
    const double many = measure({"run", suite, "--jobs", "1", "--quiet"}).seconds;
    std::printf("a further case beside its script: %.1f ms (aim: below 150 ms)\n",
                (many - few) / 199 * 1000);
}

void balance() {
    const Folder folder;
    std::mt19937 random(1);
    std::lognormal_distribution<double> distribution(-1.0, 1.0);
    std::vector<double> times(100);
    std::vector<std::string> bodies;
    for (double& time : times) {
        time = distribution(random);
        bodies.push_back("time.sleep(" + std::to_string(time) + ")");
    }
    const std::string suite = folder.suite(bodies);
    const std::string history = folder.path("history");
    const auto run = [&] {
        return measure({"run", suite, "--jobs", "8", "--quiet", "--history", history}).seconds;
    };
    const double unknown = run();
    const double known = run();
    const double bound = std::max(std::accumulate(times.begin(), times.end(), 0.0) / 8,
                                  *std::max_element(times.begin(), times.end()));
    std::printf(
        "100 uneven cases on 8 workers: lower bound %.2f s, without history %.2f s, with "
        "history %.2f s, %.0f %% above the bound (aim: 10 %%)\n",
        bound, unknown, known, (known / bound - 1) * 100);
}

void memory() {
    const Folder folder;
    const std::vector<std::string> console = {"--quiet", "--aut-display", "inherit", "--report",
                                              "json:" + folder.path("run.jsonl")};
    const auto run = [&](size_t cases, int verdicts) {
        const Folder own;
        const std::string suite = own.suite(std::vector<std::string>(
            cases, "for n in range(" + std::to_string(verdicts) + "): test.pass_('right')"));
        std::vector<std::string> arguments = {"run", suite, "--jobs", "2"};
        arguments.insert(arguments.end(), console.begin(), console.end());
        return measure(arguments).memory;
    };
    std::printf(
        "largest process: 10 cases %.0f MiB, one of 100,000 verdicts %.0f MiB, 10,000 "
        "cases %.0f MiB\n",
        run(10, 1), run(1, 100000), run(10000, 1));
}

/// What a shard leaves, with a thousand results in a hundred cases.
void writeBundle(const fs::path& path, int number) {
    fs::create_directories(path);
    std::ofstream journal(path / "journal.jsonl");
    const std::string time = R"("time":"2024-05-01T12:00:00.000+02:00")";
    journal
        << R"({"format":"tamrix-journal","version":1,"producer":"bench","created":"2024-05-01T12:00:00.000+02:00"})"
        << "\n{\"kind\":\"suiteStart\"," << time << R"(,"message":"suite"})"
        << "\n";
    journal << "{\"kind\":\"environment\"," << time << R"(,"message":"Shard","detail":")" << number
            << "/100 of 10000 cases, division ab\"}\n";
    for (int each = 0; each < 100; ++each) {
        journal << "{\"kind\":\"caseStart\"," << time << R"(,"message":"case)" << number << "_"
                << each << R"(","path":"/s/test.py"})"
                << "\n";
        for (int result = 0; result < 10; ++result) {
            journal
                << "{\"kind\":\"result\"," << time
                << R"(,"type":10,"message":"Comparison","detail":"'1' and '1' are equal","callStack":[{"file":"/s/test.py","line":4}]})"
                << "\n";
        }
        journal << "{\"kind\":\"caseEnd\"," << time << R"(,"extra":"finished"})"
                << "\n";
    }
    journal << "{\"kind\":\"suiteEnd\"," << time << R"(,"extra":"finished"})"
            << "\n";
}

void merge() {
    const Folder folder;
    std::vector<std::string> arguments = {"merge"};
    for (int number = 1; number <= 100; ++number) {
        arguments.push_back(folder.path("shard" + std::to_string(number)));
        writeBundle(arguments.back(), number);
    }
    arguments.insert(arguments.end(), {"--to", "json:" + folder.path("whole.jsonl")});
    const Measured all = measure(arguments);
    std::printf(
        "merging 100 bundles of 1,000 results: %.2f s, of which at work %.2f s, %.0f MiB "
        "(aim: below 5 s)\n",
        all.seconds, all.work, all.memory);
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("TAMRIX_PREFIX", TAMRIX_BENCH_PREFIX, 1);
    const std::string wanted = argc > 1 ? argv[1] : "";
    const std::pair<const char*, void (*)()> parts[] = {{"cost", cost},
                                                        {"speed", speed},
                                                        {"balance", balance},
                                                        {"memory", memory},
                                                        {"merge", merge}};
    for (const auto& [name, part] : parts) {
        if (wanted.empty() || wanted == name)
            part();
        std::fflush(stdout);
    }
    return 0;
}
