#include "dap/session/language.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix::Dap {
namespace {

TEST(Language, MembersAreReadAsTheirNamesTell) {
    EXPECT_EQ(memberExpression("a.py", "a", "b"), "a.b");
    EXPECT_EQ(memberExpression("a.py", "a", "0"), "a[0]");
    EXPECT_EQ(memberExpression("a.py", "a", "[0]"), "a[0]");
    EXPECT_EQ(memberExpression("a.py", "a", "'a key'"), "a['a key']");
    EXPECT_TRUE(memberExpression("a.py", "a", "99 more").isNull());
    EXPECT_EQ(memberExpression("a.tcl", "a", "0"), "[lindex $a 0]");
    EXPECT_EQ(memberExpression("a.tcl", "[lindex $a 0]", "[k]"), "[dict get [lindex $a 0] k]");
    EXPECT_TRUE(memberExpression("a.tcl", "a", "[a%20key]").isNull());
    EXPECT_EQ(assignmentCode("a.py", "a", "1"), "a = 1");
    EXPECT_EQ(assignmentCode("a.tcl", "a", "1"), "set a 1");
    EXPECT_TRUE(assignmentCode("a.tcl", "[lindex $a 0]", "1").isNull());
}

TEST(Language, AFeatureFileHasTheLanguageOfItsScripts) {
    const QTemporaryDir folder;
    const QString feature = folder.filePath("order/test.feature");
    EXPECT_EQ(switchCode(feature, "s", true), "testSettings.s = true");
    for (const char* const name : {"shared/steps/a.py", "shared/steps/z.js"})
        ASSERT_TRUE(Tamrix::Test::writeFile(folder.filePath(name), ""));
    EXPECT_EQ(switchCode(feature, "s", true), "testSettings.s = True");
    ASSERT_TRUE(Tamrix::Test::writeFile(folder.filePath("order/steps/notes.txt"), ""));
    ASSERT_TRUE(Tamrix::Test::writeFile(folder.filePath("order/steps/pies.js"), ""));
    EXPECT_EQ(switchCode(feature, "s", true), "testSettings.s = true");
    ASSERT_TRUE(Tamrix::Test::writeFile(folder.filePath("order/test.tcl"), ""));
    EXPECT_EQ(switchCode(feature, "s", true), "testSettings configure -s 1");
}

TEST(Language, TheFunctionOfALineIsTheOneAroundIt) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("a.py");
    ASSERT_TRUE(Tamrix::Test::writeFile(file, R"py(x = 1

class Helper:
    limit = 3

    def count(self,
              until):
        for each in range(until):

            # remark
            yield each

async def main():
    if x:
        pass
)py"));
    const auto functions = [&](const QList<int>& lines) {
        QStringList names;
        for (const int line : lines)
            names.append(functionAt({file, line}));
        return names;
    };
    EXPECT_EQ(functions({1, 4, 8, 11, 15, 99, 0}),
              (QStringList{"a.py", "a.py", "count", "count", "main", "a.py", "a.py"}));
    const QString script = folder.filePath("a.js");
    ASSERT_TRUE(Tamrix::Test::writeFile(script,
                                        "const x = 1;\n"
                                        "export async function main() {\n"
                                        "    x.map(each =>\n"
                                        "        each + 1);\n"
                                        "}\n"
                                        "function* numbers() {\n"
                                        "    yield 1;\n"
                                        "}\n"));
    EXPECT_EQ(functionAt({script, 1}), "a.js");
    EXPECT_EQ(functionAt({script, 4}), "main");
    EXPECT_EQ(functionAt({script, 7}), "numbers");
    const QString ruby = folder.filePath("a.rb");
    ASSERT_TRUE(Tamrix::Test::writeFile(ruby,
                                        "x = 1\n"
                                        "class Basket\n"
                                        "  def empty?\n"
                                        "    @pies.all? do |pie|\n"
                                        "      pie.eaten?\n"
                                        "    end\n"
                                        "  end\n"
                                        "  def self.of(pies) =\n"
                                        "    new(pies)\n"
                                        "end\n"));
    EXPECT_EQ(functionAt({ruby, 1}), "a.rb");
    EXPECT_EQ(functionAt({ruby, 5}), "empty?");
    EXPECT_EQ(functionAt({ruby, 9}), "of");
    EXPECT_EQ(functionAt({"/no/such/b.py", 3}), "b.py");
    EXPECT_EQ(functionAt({folder.filePath("a.tcl"), 3}), "a.tcl");
}

}  // namespace
}  // namespace Tamrix::Dap
