// What the mappings and the file of a program tell of an agent's chances.

#include "runner/applications/foreigntoolkit.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(ForeignToolkit, MappingsTellWhatIsInTheWay) {
    QTemporaryDir prefix;
    const Tamrix::Test::EnvironmentGuard guard("TAMRIX_PREFIX", prefix.path());
    ASSERT_TRUE(QDir(prefix.path()).mkdir("lib"));
    Tamrix::Test::writeFile(prefix.filePath("lib/libtamrixagent.so"), "");
    const QString hint =
        "that takes no plug-in from QT_PLUGIN_PATH and QT_QPA_GENERIC_PLUGINS; hook=\"preload\" in "
        "config.xml may get the agent into it";
    const struct {
        QStringList libraries;
        bool isPossible;
        QString obstacle;
    } cases[] = {
        {{}, false, ""},
        {{"libc.so.6"}, false, ""},
        {{"libgtk-3.so.0.2404.16"},
         false,
         "it is a program with GTK 3, and only programs with Qt 5 or Qt 6 take an agent"},
        // Before its platform is there nothing can be said.
        {{"libQt5Core.so.5.15.8"}, true, ""},
        {{"libQt5Core.so.5"}, true, ""},
        {{"libgtk-3.so.0", "libQt5Core.so.5.15.8"}, true, ""},
        {{"libQt5Core.so.5.15.8", "platforms/libqxcb.so"},
         false,
         "it is a program with Qt 5.15.8 " + hint},
        {{"libQt5Core.so.5", "platforms/libqxcb.so", "libtamrixhook.so"},
         false,
         "it is a program with Qt 5 that takes neither the plug-in that QT_QPA_GENERIC_PLUGINS "
         "names nor the preloaded hook"},
        {{"libQt5Core.so.5.15.8", "platforms/libqxcb.so", "libtamrixagentplugin.so"}, true, ""},
        {{"libQt5Core.so.5.15.8", "platforms/libqxcb.so", "libtamrixagent.so"}, true, ""},
        {{"libQt5Core.so.5.12.10"},
         false,
         "it is a program with Qt 5.12.10, and agents for Qt 5 need 5.15 or later"},
        {{"libQt6Core.so.6.2.4"},
         false,
         "it is a program with Qt 6.2.4, and agents for Qt 6 need 6.4 or later"},
        {{"libQt6Core.so.6.8.2"},
         false,
         "it is a program with Qt 6.8.2, and this installation has no agent for Qt 6"},
    };
    for (const auto& row : cases) {
        QByteArray maps;
        for (const QString& library : row.libraries)
            maps += "7f1000-7f2000 r-xp 00000000 08:01 12 /opt/shop/lib/" + library.toUtf8() + "\n";
        const AgentProspect prospect = agentProspect(maps);
        EXPECT_EQ(prospect.isPossible, row.isPossible) << qPrintable(row.libraries.join(' '));
        EXPECT_EQ(prospect.obstacle, row.obstacle);
    }
}

TEST(ForeignToolkit, AStaticQtIsFoundInTheProgramItself) {
    QTemporaryDir folder;
    const struct {
        QByteArray content;
        QString version;
    } cases[] = {
        {"", ""},
        {"Qt 6.4.2 (x86_64-little_endian-lp64 shared (dynamic) release build; by GCC 12.2.0)", ""},
        {QByteArray(1000, '\0') + "Qt 6.10.2 (x86_64-little_endian-lp64 static release build; by",
         "6.10.2"},
        {"(x86_64-little_endian-lp64 static release build", ""},
        {"Qt is used (x86_64-little_endian-lp64 static release build", ""},
    };
    for (const auto& row : cases) {
        Tamrix::Test::writeFile(folder.filePath("program"), row.content);
        EXPECT_EQ(staticQtVersion(folder.filePath("program")), row.version);
    }
    EXPECT_EQ(staticQtVersion(folder.filePath("none")), "");
}

}  // namespace
}  // namespace Tamrix
