#pragma once

#include <QCoreApplication>

namespace Tamrix::Test {

/// The one application object of a test program, made on first use.
inline QCoreApplication& coreApplication() {
    static int s_argc = 1;
    static char s_name[] = "runner_test";
    static char* s_argv[] = {s_name, nullptr};
    static QCoreApplication s_application(s_argc, s_argv);
    return s_application;
}

}  // namespace Tamrix::Test
