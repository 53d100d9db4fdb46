#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "base/environment.h"
#include "base/standardpath.h"
#include "base/stringconversion.h"
#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::EnvironmentGuard;
using Test::writeFile;

TEST(Environment, TellsUnsetFromEmpty) {
    const EnvironmentGuard guard("TAMRIX_TEST_VARIABLE", QString());
    EXPECT_TRUE(Environment::getVariable("TAMRIX_TEST_VARIABLE").isNull());
    Environment::setVariable("TAMRIX_TEST_VARIABLE", "");
    EXPECT_FALSE(Environment::getVariable("TAMRIX_TEST_VARIABLE").isNull());
    Environment::setVariable("TAMRIX_TEST_VARIABLE", QString::fromUtf8("gr\u00fc\u00df"));
    EXPECT_EQ(Environment::getVariable("TAMRIX_TEST_VARIABLE"),
              QString::fromUtf8("gr\u00fc\u00df"));
}

TEST(Environment, ExpandsPrefixEverywhere) {
    const EnvironmentGuard guard("TAMRIX_PREFIX", "/opt/x");
    EXPECT_EQ(expandPrefix("@(TAMRIX_PREFIX)/a:@(TAMRIX_PREFIX)/b:@(OTHER)"),
              "/opt/x/a:/opt/x/b:@(OTHER)");
}

TEST(RealPath, ResolvesLinksAndKeepsWhatIsMissing) {
    QTemporaryDir folder;
    const QString base = QDir(folder.path()).canonicalPath();
    ASSERT_TRUE(writeFile(base + "/sub/file"));
    ASSERT_TRUE(QFile::link(base + "/sub", base + "/link"));
    EXPECT_EQ(realPath(base + "/link/../sub/./file"), base + "/sub/file");
    EXPECT_EQ(realPath(base + "/link/missing"), base + "/link/missing");
    EXPECT_EQ(realPath(QString()), QString());
}

struct Conversion {
    const char* from;
    const char* to;
    std::string in;
    std::string out;
};

const Conversion conversions[] = {
    {"UTF-8", "ISO-8859-1", "a\xc3\xbc", "a\xfc"},
    {"ISO-8859-1", "UTF-8", "a\xfc", "a\xc3\xbc"},
    // Longer than the buffer of one step.
    {"ISO-8859-1", "UTF-8", std::string(1000, 'x') + "\xfc", std::string(1000, 'x') + "\xc3\xbc"},
    // One "?" for each byte that can't be converted; what follows is kept.
    {"UTF-8", "ISO-8859-1", "a\xffz", "a?z"},
    {"UTF-8", "ISO-8859-1", "\xe2\x82\xacz", "???z"},
    {"UTF-8", "ISO-8859-1", "cut\xc3", "cut?"},
    // An encoding with states returns to its first one at the end.
    {"UTF-8", "ISO-2022-JP", "\xe3\x81\x82", "\x1b$B$\"\x1b(B"},
    {"UTF-8", "no-such-encoding", "a\xc3\xbc", "a\xc3\xbc"},
    {"UTF-8", "ISO-8859-1", "", ""},
};

TEST(StringConversion, Converts) {
    for (const Conversion& text : conversions)
        EXPECT_EQ(mbs2mbs(text.in, text.from, text.to), text.out) << text.in;
}

}  // namespace
}  // namespace Tamrix
