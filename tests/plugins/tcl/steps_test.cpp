#include <QDir>

#include "plugins/tcl/tcltest.h"

namespace Tamrix {
namespace {

using namespace Test;

class TclSteps : public TclTest {
protected:
    TclSteps() {
        QDir(folder.path()).mkpath("steps");
        interpreter->setScriptArguments(script(), {});
    }

    /// Runs a feature with these steps; the text of the error, empty on success.
    QString feature(const QString& steps) {
        EXPECT_TRUE(writeFile(folder.filePath("test.feature"),
                              ("Feature: Shop\n  @sale\n  Scenario: Apples\n" + steps).toUtf8()));
        return run("runFeatureFile " + folder.filePath("test.feature"));
    }
    void writeSteps(const QByteArray& text) {
        ASSERT_TRUE(writeFile(folder.filePath("steps/shop.tcl"), text));
    }
};

TEST_F(TclSteps, RunWithTheirValues) {
    writeSteps(R"tcl(namespace import bdd::*
proc toNumber {word} {
    return [lsearch {zero one two three} $word]
}
parameter_type number one|two|three toNumber
given {the shop has {int} apple(s) for {float} euros} {context count price} {
    $context set left $count
    test compare [expr {$count + 1}] 6
    test compare $price 1.5
}
when {/^somebody buys (\d+) of "([^"]*)"$/} {context count what} {
    $context set left [expr {[$context get left] - $count}]
    test compare $what red
}
then "there are {number} left" {context number} {
    test compare [$context get left] $number
    foreach row [$context get table] {
        test log [dict get $row name] [dict get $row price]
    }
    test compare [$context get headers] {name price}
}
then {the text is} {context} {
    test compare [$context get text] "one\ntwo"
    test verify [$context exists left]
    test compare [$context get scenario] Apples
}
before_scenario {} {context} { test log "before [$context get tags]" }
before_scenario @other {context} { test fail {not this one} }
after_scenario @sale {context} { test log after }
)tcl");
    EXPECT_EQ(feature("    Given the shop has 5 apples for 1.50 euros\n"
                      "    When somebody buys 2 of \"red\"\n"
                      "    Then there are three left\n"
                      "      | name | price |\n"
                      "      | bun  | 3     |\n"
                      "    And the text is\n"
                      "      \"\"\"\n"
                      "      one\n"
                      "      two\n"
                      "      \"\"\"\n"),
              "");
    EXPECT_EQ(results().join('\n'),
              "7 before sale: \n"
              "10 Comparison: '6' and '6' are equal\n"
              "10 Comparison: '1.5' and '1.5' are equal\n"
              "10 Comparison: 'red' and 'red' are equal\n"
              "10 Comparison: '3' and '3' are equal\n"
              "7 bun: 3\n"
              "10 Comparison: 'name price' and 'name price' are equal\n"
              "10 Comparison: 'one\ntwo' and 'one\ntwo' are equal\n"
              "10 Verified: True expression\n"
              "10 Comparison: 'Apples' and 'Apples' are equal\n"
              "7 after: ");
    // A step's own lines are those of its file.
    EXPECT_EQ(report.results().at(1).callStack.front().lineNumber(), 8);
}

TEST_F(TclSteps, TheContextIsACommand) {
    writeSteps(R"tcl(bdd::given {a} {context} {
    $context set x {a b}
    test log [$context names] [$context get x]
    foreach misuse {{get y} {unset y} {set y} {put y 1}} {
        catch {$context {*}$misuse} text options
        test log $text [dict get $options -errorcode]
    }
    $context unset x
    test log [$context exists x]
}
)tcl");
    EXPECT_EQ(feature("    Given a\n"), "");
    EXPECT_EQ(results().join('\n'),
              "7 feature scenario step table tags text x: a b\n"
              "7 The context has no value \"y\": TAMRIX MEMBER\n"
              "7 The context has no value \"y\": TAMRIX MEMBER\n"
              "7 wrong # args: should be \"::bdd::context set name value\": TCL WRONGARGS\n"
              "7 unknown subcommand \"put\": must be exists, get, names, set, or unset: "
              "TCL LOOKUP SUBCOMMAND put\n"
              "7 0: ");
}

TEST_F(TclSteps, FailuresAreTold) {
    writeSteps(
        "bdd::given {a failing step} {context} {\n"
        "    set x 1\n"
        "    error broken\n"
        "}\n"
        "bdd::when {a pending step} {context} {\n"
        "    bdd::pending {no time}\n"
        "}\n");
    EXPECT_EQ(feature("    Given a failing step\n"), "");
    EXPECT_TRUE(results().last().contains("broken"));
    EXPECT_EQ(feature("    When a pending step\n"), "");
    EXPECT_TRUE(results().last().contains("no time")) << results().last().toStdString();
    EXPECT_EQ(feature("    When there are 3 {odd} things\n"), "");
    EXPECT_TRUE(report.results().back().explanation.contains("bdd::when"))
        << results().last().toStdString();

    const std::pair<const char*, const char*> broken[] = {
        {"\nbdd::given {a {nothing}} {context} {}\n", "Undefined parameter type 'nothing'"},
        {"\n\nbdd::given {a} {context}\n",
         "ArgumentError: wrong # args: should be \"bdd::given expression parameters body\""},
        {"set x [\n", "Error: missing close-bracket"},
    };
    for (const auto& [text, error] : broken) {
        interpreter->setScriptArguments(script(), {});
        writeSteps(text);
        const QString found = feature("    Given a\n");
        EXPECT_TRUE(found.contains(error)) << found.toStdString();
    }
}

TEST_F(TclSteps, ASkipEndsTheCase) {
    writeSteps("bdd::given {a skip} {context} { test skip offline }\n");
    EXPECT_EQ(feature("    Given a skip\n"), "FatalError: offline: ");
    EXPECT_TRUE(interpreter->errorIsSkip());
}

}  // namespace
}  // namespace Tamrix
