// tamrixwatch MARK FOLDER: reads standard input to its end, which comes when the runner ends,
// however that happens. Then ends the processes whose mark starts with MARK and removes FOLDER.

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "runner/processes/markedprocesses.h"

int main(int argc, char* argv[]) {
    if (argc != 3 || !*argv[1])
        return 2;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
    char byte = 0;
    ssize_t size = 1;
    while (size > 0 || (size < 0 && errno == EINTR))
        size = ::read(STDIN_FILENO, &byte, 1);

    // A display removes its files when it is asked to end.
    constexpr int patience = 1000;
    const int left = Tamrix::endProcesses({argv[1]}, patience);
    std::error_code ignored;
    if (*argv[2])
        std::filesystem::remove_all(argv[2], ignored);
    return left == 0 ? 0 : 1;
}
