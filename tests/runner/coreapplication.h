#pragma once

#include <QCoreApplication>

namespace Tamrix::Test {

/// The one application object of a test program, made on first use.
inline QCoreApplication& coreApplication() {
    static int argc = 1;
    static char name[] = "runner_test";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
    return application;
}

}  // namespace Tamrix::Test
