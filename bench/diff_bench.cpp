// Comparing two text files as test.compareTextFiles does, from reading them to the text of the
// result, beside GNU diff and git diff on the same files, as whole processes.
//
// Times are milliseconds, the medians of turns that alternate, all in one run.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "comparison/filecomparison.h"

namespace {

using Lines = std::vector<QByteArray>;

double milliseconds(const std::function<void()>& work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

/// Runs a program without its output; anything but equal or different ends the benchmark.
void run(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = -1;
    const int error =
        posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0 || waitpid(process, &status, 0) != process || !WIFEXITED(status) ||
        WEXITSTATUS(status) > 1) {
        std::fprintf(stderr, "diff_bench: %s does not run\n", arguments[0]);
        std::exit(1);
    }
}

QByteArray line(const char* kind, int number) {
    return QByteArray("a line of text, ") + kind + ' ' + QByteArray::number(number) + '\n';
}

struct Work {
    const char* name;
    Lines first;
    Lines second;
    int turns;
    /// The peer of the aim, by its place in the table of peers, and the share of its time.
    std::size_t peer;
    double aim;
};

Work oneInHundredChanged() {
    Work work{"100,000 lines, 1 in 100 changed", {}, {}, 21, 0, 0.8};
    for (int i = 0; i < 100000; ++i) {
        work.first.push_back(line("common", i));
        work.second.push_back(i % 100 == 50 ? line("changed", i) : line("common", i));
    }
    return work;
}

Work nothingInCommon() {
    Work work{"20,000 lines each, nothing in common", {}, {}, 7, 1, 0.3};
    for (int i = 0; i < 20000; ++i) {
        work.first.push_back(line("first", i));
        work.second.push_back(line("second", i));
    }
    return work;
}

Work twoInHundredCommon() {
    Work work{"20,000 lines each, 2 in 100 common", {}, {}, 5, 0, 0.8};
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        const bool isCommon = random() % 50 == 0;
        work.first.push_back(line(isCommon ? "common" : "first", i));
        work.second.push_back(line(isCommon ? "common" : "second", i));
    }
    // Not all on one diagonal: a few hundred lines of the second file are moved.
    for (int i = 0; i < 200; ++i)
        std::rotate(work.second.begin() + i * 90, work.second.begin() + i * 90 + i % 7,
                    work.second.begin() + i * 90 + 45);
    return work;
}

QString write(const QTemporaryDir& folder, const char* name, const Lines& lines) {
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "diff_bench: %s can't be written\n", qPrintable(file.fileName()));
        std::exit(1);
    }
    for (const QByteArray& each : lines)
        file.write(each);
    return file.fileName();
}

void measure(const Work& work) {
    const QTemporaryDir folder;
    const QString first = write(folder, "first", work.first);
    const QString second = write(folder, "second", work.second);
    const std::vector<std::vector<std::string>> peers = {
        {"diff", "--minimal"}, {"diff"}, {"git", "diff", "--no-index"}};
    std::vector<std::vector<double>> times(peers.size() + 1);
    for (int turn = 0; turn < work.turns; ++turn) {
        times[0].push_back(milliseconds([&] {
            if (Tamrix::compareTextFiles(first, second, false).equal)
                std::exit(1);
        }));
        for (std::size_t peer = 0; peer < peers.size(); ++peer) {
            std::vector<std::string> words = peers[peer];
            words.push_back(first.toStdString());
            words.push_back(second.toStdString());
            times[peer + 1].push_back(milliseconds([&words] { run(words); }));
        }
    }
    std::printf("%s\n", work.name);
    const double own = median(times[0]);
    std::printf("  Tamrix                %9.1f\n", own);
    for (std::size_t peer = 0; peer < peers.size(); ++peer) {
        std::string name;
        for (const std::string& word : peers[peer])
            name += word + ' ';
        const double time = median(times[peer + 1]);
        std::printf("  %-21s %9.1f   %.2f", name.c_str(), time, own / time);
        if (peer == work.peer)
            std::printf("   at most %.1f", work.aim);
        std::printf("\n");
    }
}

}  // namespace

int main() {
    for (const auto& work : {oneInHundredChanged, nothingInCommon, twoInHundredCommon})
        measure(work());
    return 0;
}
