// Which of the names that a runtime has for its code are scripts, and where these are.

#include "interpreter/language/sourcefiles.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

TEST(SourceFiles, TellScriptsFromLibrariesAndCodeWithoutAFile) {
    const QTemporaryDir folder;
    const QString suite = QDir(folder.path()).canonicalPath() + "/suite";
    const QString library = QDir(folder.path()).canonicalPath() + "/library";
    ASSERT_TRUE(writeFile(suite + "/test", ""));
    ASSERT_TRUE(writeFile(library + "/module", ""));
    ASSERT_TRUE(writeFile(suite + "/with \"quotes\"", ""));
    ASSERT_TRUE(QFile::link(suite, folder.filePath("link")));
    ASSERT_TRUE(QFile::link(library, folder.filePath("installed")));
    SourceFiles files;
    files.addLibrary(folder.filePath("installed/"));
    files.addAlias("alias-1", folder.filePath("link/with \"quotes\""));
    const struct {
        QString name;
        QString path;
        bool isScript;
    } rows[] = {
        {suite + "/test", suite + "/test", true},
        {folder.filePath("link/test"), suite + "/test", true},
        {suite + "/../suite/test", suite + "/test", true},
        {library + "/module", library + "/module", false},
        {folder.filePath("installed/module"), library + "/module", false},
        // Beside the library, not in it.
        {library + "2/module", library + "2/module", true},
        {"alias-1", suite + "/with \"quotes\"", true},
        {"<init script>", QString(), false},
        {"(eval 3)", QString(), false},
        {"", QString(), false},
    };
    for (const auto& row : rows) {
        const QByteArray name = row.name.toUtf8();
        EXPECT_EQ(files.path(name.constData()), row.path) << name.constData();
        EXPECT_EQ(files.isScript(name.constData()), row.isScript) << name.constData();
        EXPECT_EQ(files.path(name.constData()), row.path) << name.constData() << " once more";
    }
    EXPECT_FALSE(files.isScript(nullptr));
    // As Tcl writes characters beyond U+FFFF.
    EXPECT_EQ(files.path("/\xED\xA0\xBD\xED\xB8\x80"), QString::fromUtf8("/\xF0\x9F\x98\x80"));
    SourceFiles absolute([](const QByteArray& name) { return name.startsWith('/'); });
    EXPECT_FALSE(absolute.isScript("test"));
}

TEST(ReadSource, TellsWhereItCantBeRead) {
    const QTemporaryDir folder;
    const QString good = folder.filePath("good.js");
    const QString bad = folder.filePath("bad.js");
    ASSERT_TRUE(writeFile(good, "const name = '\xC3\xA9';\n"));
    ASSERT_TRUE(writeFile(bad, "// one\nconst name = '\xE9';\n"));
    const Outcome<QString> text = readSource(good);
    ASSERT_TRUE(text) << qPrintable(text.error().text);
    EXPECT_EQ(*text, QString::fromUtf8("const name = '\xC3\xA9';\n"));
    EXPECT_EQ(readSource(bad).error().text, bad + ":2: the file is not encoded in UTF-8");
    const QString missing = folder.filePath("missing.js");
    EXPECT_EQ(readSource(missing).error().text, missing + ": No such file or directory");
}

}  // namespace
}  // namespace Tamrix
