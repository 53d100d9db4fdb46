#pragma once

#include <gtest/gtest.h>

#include <QString>
#include <string>
#include <vector>

namespace Tamrix {

/// The major versions of Qt for which the agent and the targets are built.
inline std::vector<int> qtVersions() {
#ifdef TAMRIX_TEST_QT6
    return {5, 6};
#else
    return {5};
#endif
}

/// The name of something of ours that is built for both: "widgets_target-qt6".
inline QString forQt(const QString& name, int version) {
    return version == 6 ? name + "-qt6" : name;
}

/// Qt's own program that shows a scene of Qt Quick.
inline QString sceneViewer(int version) {
    return version == 6 ? "/usr/lib/qt6/bin/qml" : "/usr/lib/qt5/bin/qmlscene";
}

/// For the names of tests.
inline std::string qtName(int version) {
    return "Qt" + std::to_string(version);
}

/// A test that is run for each version.
class QtTest : public testing::TestWithParam<int> {};

// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): it uses one itself.
#define TAMRIX_FOR_EACH_QT(Test)                                              \
    INSTANTIATE_TEST_SUITE_P(, Test, testing::ValuesIn(Tamrix::qtVersions()), \
                             [](const auto& row) { return Tamrix::qtName(row.param); })

}  // namespace Tamrix
