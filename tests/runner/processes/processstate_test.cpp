#include "runner/processes/processstate.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <clocale>
#include <cstdlib>
#include <string>

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

}  // namespace
}  // namespace Tamrix
