#include "runner/processes/processstate.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>

#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(ProcessState, WhatACaseChangesIsSetBack) {
    ::setenv("TAMRIX_TEST_KEPT", "before", 1);
    ::setenv("TAMRIX_TEST_REMOVED", "a=b", 1);
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const mode_t mask = ::umask(022);
    const QString directory = QDir::currentPath();
    QTemporaryDir elsewhere;
    {
        const ProcessState state;
        ::setenv("TAMRIX_TEST_KEPT", "after", 1);
        ::unsetenv("TAMRIX_TEST_REMOVED");
        ::setenv("TAMRIX_TEST_NEW", "x", 1);
        std::setlocale(LC_ALL, locale == "C" ? "C.UTF-8" : "C");
        ::umask(077);
        ASSERT_TRUE(QDir::setCurrent(elsewhere.path()));
        elsewhere.remove();
    }
    EXPECT_STREQ(std::getenv("TAMRIX_TEST_KEPT"), "before");
    EXPECT_STREQ(std::getenv("TAMRIX_TEST_REMOVED"), "a=b");
    EXPECT_EQ(std::getenv("TAMRIX_TEST_NEW"), nullptr);
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
    EXPECT_EQ(::umask(mask), static_cast<mode_t>(022));
    EXPECT_EQ(QDir::currentPath(), directory);
    ::unsetenv("TAMRIX_TEST_KEPT");
    ::unsetenv("TAMRIX_TEST_REMOVED");
}

TEST(ProcessState, SignalsTimersAndLimitsAreSetBack) {
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    rlimit files{};
    ::getrlimit(RLIMIT_NOFILE, &files);
    {
        const ProcessState state;
        ::sigaction(SIGCHLD, &ignored, nullptr);
        pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
        ::alarm(100);
        const rlimit few{files.rlim_cur - 1, files.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    struct sigaction action {};
    ::sigaction(SIGCHLD, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_FALSE(sigismember(&mask, SIGUSR1));
    EXPECT_EQ(::alarm(0), 0U);
    rlimit now{};
    ::getrlimit(RLIMIT_NOFILE, &now);
    EXPECT_EQ(now.rlim_cur, files.rlim_cur);
}

/// What a descriptor is, as stat() tells it.
std::pair<dev_t, ino_t> identityOf(int descriptor) {
    struct stat facts {};
    return ::fstat(descriptor, &facts) == 0 ? std::pair(facts.st_dev, facts.st_ino)
                                            : std::pair<dev_t, ino_t>();
}

TEST(StandardStreams, LeadWhereTheyLedBefore) {
    const StandardStreams streams;
    const auto before = identityOf(STDIN_FILENO);
    ::close(STDIN_FILENO);
    streams.restore();
    EXPECT_EQ(identityOf(STDIN_FILENO), before) << "one that was closed";

    ::close(STDIN_FILENO);
    ASSERT_EQ(::open("/", O_RDONLY), STDIN_FILENO);
    streams.restore();
    EXPECT_EQ(identityOf(STDIN_FILENO), before) << "a folder that got its number";

    ::close(STDIN_FILENO);
    ASSERT_EQ(::socket(AF_UNIX, SOCK_STREAM, 0), STDIN_FILENO);
    const auto socket = identityOf(STDIN_FILENO);
    streams.restore();
    EXPECT_EQ(identityOf(STDIN_FILENO), socket) << "a socket may be a connection of the run";
    ::close(STDIN_FILENO);
    streams.restore();
    EXPECT_EQ(identityOf(STDIN_FILENO), before);
}

}  // namespace
}  // namespace Tamrix
