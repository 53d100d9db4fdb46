#include "dap/session/language.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix::Dap {
namespace {

TEST(Language, FailuresAreToldFromValues) {
    for (const char* failure : {"NameError: name 'x' is not defined", "KeyboardInterrupt",
                                "json.decoder.JSONDecodeError: Extra data", "StopIteration",
                                "Tamrix::LookupError: Object not found"})
        EXPECT_TRUE(isFailureText(failure)) << failure;
    for (const char* value : {"'NameError: x'", "3", "", "ValueError('x')", "<class 'NameError'>",
                              "Pair: 1, 2", "Errors"})
        EXPECT_FALSE(isFailureText(value)) << value;
}

TEST(Language, MembersAreReadAsTheirNamesTell) {
    EXPECT_EQ(memberExpression("a", "b"), "a.b");
    EXPECT_EQ(memberExpression("a", "0"), "a[0]");
    EXPECT_EQ(memberExpression("a", "[0]"), "a[0]");
    EXPECT_EQ(memberExpression("a", "'a key'"), "a['a key']");
    EXPECT_TRUE(memberExpression("a", "99 more").isNull());
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
