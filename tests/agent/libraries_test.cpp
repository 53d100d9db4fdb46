// What the agent's libraries need of Qt.

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>

#include "support/qtversions.h"

namespace Tamrix {

namespace {

/// Private parts of Qt change between minor versions; a library that links one then can't be loaded
/// at all. windowsystem.cpp looks them up by name.
TEST(LibrariesTest, NoneLinksPrivatePartsOfQt) {
    QStringList libraries;
    for (const char* folder : {"/lib", "/lib/qtplugins/generic"}) {
        const QDir place(QStringLiteral(TAMRIX_TEST_PREFIX) + folder);
        for (const QString& name : place.entryList({"libtamrixagent*.so"}))
            libraries.append(place.filePath(name));
    }
    const auto versions = static_cast<int>(qtVersions().size());
    EXPECT_EQ(libraries.size(), 4 * versions) << libraries.join(' ').toStdString();
    for (const QString& library : libraries) {
        QProcess nm;
        nm.start("nm", {"--dynamic", "--undefined-only", "--with-symbol-versions", library});
        ASSERT_TRUE(nm.waitForFinished()) << "nm is of Debian's binutils, which the compiler needs";
        const QStringList symbols = QString::fromUtf8(nm.readAll()).split('\n');
        EXPECT_GT(symbols.filter("@Qt_").size(), 0) << library.toStdString();
        EXPECT_EQ(symbols.filter("_PRIVATE_API").join('\n').toStdString(), "")
            << library.toStdString();
    }
}

}  // namespace

}  // namespace Tamrix
