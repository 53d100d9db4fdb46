#include "runner/applications/launcher.h"

#include <gtest/gtest.h>

#include <QMap>

#include "base/environment.h"
#include "support/environmentguard.h"
#include "support/printqt.h"
#include "wire/protocol.h"

namespace Tamrix {
namespace {

using Tamrix::Test::EnvironmentGuard;

/// What a program gets beside what it had.
QMap<QString, QString> environmentFrom(const Launcher& launcher) {
    ProgramStart start;
    start.environment = {{"OWN", "kept"}};
    launcher.prepare(&start, {"/run/socket", "the token"});
    QMap<QString, QString> variables;
    for (const auto& [name, value] : start.environment)
        variables.insert(name, value);
    return variables;
}

TEST(Launcher, BringsTheAgentInBesideWhatOthersBringIn) {
    const struct {
        const char* way;
        const char* variable;
        const char* others;
        const char* expected;
    } rows[] = {
        {"plugin", "QT_PLUGIN_PATH", nullptr, "/prefix/lib/qtplugins"},
        // The first plug-in of a name wins.
        {"plugin", "QT_PLUGIN_PATH", "/a:/b", "/prefix/lib/qtplugins:/a:/b"},
        {"plugin", "QT_QPA_GENERIC_PLUGINS", nullptr, "tamrixagent"},
        {"plugin", "QT_QPA_GENERIC_PLUGINS", "evdev,x", "evdev,x,tamrixagent"},
        {"plugin", "LD_PRELOAD", "/lib/a.so", nullptr},
        {"preload", "LD_PRELOAD", nullptr, "/prefix/lib/libtamrixhook.so"},
        {"preload", "LD_PRELOAD", "/lib/a.so", "/prefix/lib/libtamrixhook.so:/lib/a.so"},
        {"preload", "QT_PLUGIN_PATH", nullptr, "/prefix/lib/qtplugins"},
        {"preload", "OWN", nullptr, "kept"},
    };
    const EnvironmentGuard prefix(prefixVariable, "/prefix");
    for (const auto& row : rows) {
        const EnvironmentGuard others(row.variable, row.others);
        const Launcher* const launcher = Launcher::find(row.way);
        ASSERT_TRUE(launcher);
        const QMap<QString, QString> variables = environmentFrom(*launcher);
        EXPECT_EQ(variables.value(row.variable), QString(row.expected)) << row.variable;
        EXPECT_EQ(variables.value(Wire::connectVariable), "/run/socket");
        EXPECT_EQ(variables.value(Wire::tokenVariable), "the token");
    }
    EXPECT_FALSE(Launcher::find("fish"));
}

TEST(Launcher, WithoutAgentAProgramIsSentToTheXDisplay) {
    const EnvironmentGuard wayland("WAYLAND_DISPLAY", "wayland-0");
    const Launcher* const none = Launcher::find("none");
    ASSERT_TRUE(none);
    EXPECT_FALSE(none->bringsAgent());
    const QMap<QString, QString> variables = environmentFrom(*none);
    EXPECT_EQ(variables.value("GDK_BACKEND"), "x11");
    EXPECT_TRUE(variables.contains("WAYLAND_DISPLAY"));
    EXPECT_TRUE(variables.value("WAYLAND_DISPLAY").isNull());
    EXPECT_EQ(variables.value("OWN"), "kept");
    EXPECT_FALSE(variables.contains(Wire::tokenVariable));
}

}  // namespace
}  // namespace Tamrix
