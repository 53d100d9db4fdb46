// Scripts of every language are debugged alike by an editor, over the Debug Adapter Protocol.

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>
#include <ostream>

#include "support/dapclient.h"
#include "support/dapprocess.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

/// The same small programs in a language. Lines are found by marks in comments, "@sum".
struct DebuggedLanguage {
    const char* name;
    const char* suffix;
    const char* plugin;

    /// Adds two numbers in a function `add`: the sum at @sum, a variable `sum`, is given at @end.
    const char* helper;
    /// `values` is [1, [2, "two"]] behind @values; `total` becomes add(1, 1) at @one and
    /// add(total, 5) at @two, is printed at @print and an error raised at @raise.
    const char* script;
    /// Registers the steps "{int} pies", which keeps the number in the context at @pies, and "they
    /// are eaten", which has the table at @eaten.
    const char* steps;

    const char* condition;
    /// As code, and what its values look like.
    const char* sum;
    const char* two;
    const char* error;
    const char* assignment;
    const char* countOfContext;
    /// Goes on for ever.
    const char* endless;
    /// In front of the names of variables.
    const char* sign = "";
};

void PrintTo(const DebuggedLanguage& language, std::ostream* stream) {
    *stream << language.name;
}

const DebuggedLanguage languages[] = {
    {"python", "py", "tamrixpython-3",
     R"py(def add(left, right):
    sum = left + right  # @sum
    return sum  # @end
)py",
     R"py(import helper

def main():
    values = [1, [2, "two"]]  # @values
    total = helper.add(values[0], 1)  # @one
    total = helper.add(total, 5)  # @two
    print(total)  # @print
    raise ValueError("after all")  # @raise
)py",
     R"py(from bdd import given, when

@given("{int} pies")
def pies(context, count):
    context.count = count  # @pies

@when("they are eaten")
def eaten(context):
    rows = context.table  # @eaten
)py",
     "left == 2", "left + right", "'two'", "ValueError: after all", "total", "context.count",
     "while True: pass"},
    {"javascript", "js", "tamrixjavascript",
     R"js(export function add(left, right) {
    const sum = left + right;  // @sum
    return sum;  // @end
}
)js",
     R"js(import {add} from "helper";

export async function main() {
    const values = [1, [2, "two"]];  // @values
    let total = add(values[0], 1);  // @one
    total = add(total, 5);  // @two
    console.log(total);  // @print
    await null;
    throw new Error("after all");  // @raise
}
)js",
     R"js(Given("{int} pies", (context, count) => {
    context.count = count;  // @pies
});

When("they are eaten", context => {
    const rows = context.table;  // @eaten
});
)js",
     "left === 2", "left + right", "'two'", "Error: after all", "total", "context.count",
     "for (;;) try { for (;;) {} } finally { continue; }"},
    {"perl", "pl", "tamrixperl",
     R"pl(package helper;
sub add {
    my ($left, $right, $sum) = @_;  # @arguments
    $sum = $left + $right;  # @sum
    return $sum;  # @end
}
1;
)pl",
     R"pl(require 'helper.pl';

sub main {
    my $values = [1, [2, 'two']];  # @values
    my $total = helper::add($values->[0], 1);  # @one
    $total = helper::add($total, 5);  # @two
    print "$total\n";  # @print
    die "after all\n";  # @raise
}
)pl",
     R"pl(use bdd;

Given '{int} pies', sub {
    my ($context, $count) = @_;  # @arguments
    $context->{count} = $count;  # @pies
};

When 'they are eaten', sub {
    my ($context) = @_;
    my $rows = $context->{table};  # @eaten
};
)pl",
     "$left == 2", "$left + $right", "\"two\"", "after all", "$total", "$context->{count}",
     "1 while 1", "$"},
    {"ruby", "rb", "tamrixruby",
     R"rb(def add(left, right)
  sum = left + right # @sum
  sum # @end
end
)rb",
     R"rb(require 'helper'

def main
  values = [1, [2, 'two']] # @values
  total = add(values[0], 1) # @one
  total = add(total, 5) # @two
  puts total # @print
  raise ArgumentError, 'after all' # @raise
end
)rb",
     R"rb(Given('{int} pies') do |context, count|
  context.count = count # @pies
end

When('they are eaten') do |context|
  rows = context.table # @eaten
end
)rb",
     "left == 2", "left + right", "\"two\"", "ArgumentError: after all", "total", "context.count",
     "loop { begin; loop {}; rescue; end }"},
    {"tcl", "tcl", "tamrixtcl",
     R"tcl(proc add {left right} {
    set sum [expr {$left + $right}] ;# @sum
    return $sum ;# @end
}
)tcl",
     R"tcl(source [findFile scripts helper.tcl]

proc main {} {
    set values [list 1 [list 2 two]] ;# @values
    set total [add [lindex $values 0] 1] ;# @one
    set total [add $total 5] ;# @two
    puts [set total] ;# @print
    error "after all" ;# @raise
}
)tcl",
     R"tcl(bdd::given "{int} pies" {context count} {
    $context set count $count ;# @pies
}

bdd::when "they are eaten" {context} {
    set rows [$context get table] ;# @eaten
}
)tcl",
     "$left == 2", "$left + $right", "two", "Error: after all", "total", "[bdd::context get count]",
     "while 1 {catch {while 1 {}}}"},
};

class DapLanguages : public testing::TestWithParam<DebuggedLanguage> {
protected:
    void SetUp() override {
        // Languages are left out of a build where their runtime is not there.
        if (!QFile::exists(QStringLiteral(TAMRIX_TEST_PREFIX "/lib/%1.so").arg(GetParam().plugin)))
            GTEST_SKIP() << "this build has no plug-in for it";
    }

    /// Writes a file of the suite, "{}" in its name being the suffix.
    QString write(const QString& name, const QByteArray& content) {
        const QString path = pathOf(name);
        EXPECT_TRUE(writeFile(path, content));
        return path;
    }
    QString pathOf(QString name) const {
        return QFileInfo(folder.path()).canonicalFilePath() + "/süite debugged/" +
               name.replace("{}", GetParam().suffix);
    }
    /// The line with a mark.
    static int line(const QByteArray& text, const char* mark) {
        const int place = text.indexOf(mark);
        EXPECT_GE(place, 0) << mark;
        return text.left(place).count('\n') + 1;
    }
    /// "step helper.rb:2" for the mark in the file's text.
    QString at(const QString& reason, const QString& file, const QByteArray& text,
               const char* mark) const {
        return QStringLiteral("%1 %2:%3")
            .arg(reason, QString(file).replace("{}", GetParam().suffix),
                 QString::number(line(text, mark)));
    }

    QString after(const QString& request) {
        client.body(request, {{"threadId", 1}});
        return client.stop();
    }
    /// Steps into a function of the file, and over the line @arguments that takes its arguments in
    /// some languages.
    QString intoFunction(const QString& file, const QByteArray& text) {
        const QString place = after("stepIn");
        const bool isAtArguments =
            text.contains("@arguments") && place == at("step", file, text, "@arguments");
        return isAtArguments ? after("next") : place;
    }
    int exitCodeOfRun() {
        const int exitCode = client.event("exited")["exitCode"].toInt(-1);
        client.event("terminated");
        client.body("disconnect");
        EXPECT_EQ(process.exitCode(), 0) << process.errors().constData();
        return exitCode;
    }
    QString stack() {
        QStringList frames;
        for (const auto& each :
             client.body("stackTrace", {{"threadId", 1}})["stackFrames"].toArray())
            frames.append(each.toObject()["name"].toString());
        return frames.join(' ');
    }
    static QString nameOf(const char* variable) {
        return QString(QLatin1String(GetParam().sign)) + variable;
    }
    QString evaluated(const QString& expression) {
        return client.body("evaluate", {{"expression", expression}, {"context", "watch"}})["result"]
            .toString();
    }
    int scopeOf(int frame) {
        return client.body("scopes", {{"frameId", frame}})["scopes"]
            .toArray()
            .at(0)
            .toObject()["variablesReference"]
            .toInt();
    }
    QJsonObject opened(const QJsonValue& variable) {
        return client.variables(variable.toObject()["variablesReference"].toInt());
    }
    static QString value(const QJsonValue& variable) {
        return variable.toObject()["value"].toString();
    }

    QTemporaryDir folder;
    DapProcess process{
        TAMRIX_TEST_PREFIX "/bin/tamrixrunner", {"dap"}, {{"QT_QPA_PLATFORM", "offscreen"}}};
    DapClient client{process.stream()};
};

TEST_P(DapLanguages, StepsThroughModulesToAnErrorThatNothingCatches) {
    const DebuggedLanguage& language = GetParam();
    const QString helper = write("shared/scripts/helper.{}", language.helper);
    const QString script = write("sums/test.{}", language.script);
    client.launch({{"suite", pathOf("")}});
    client.setBreakPoints(helper, {QJsonObject{{"line", line(language.helper, "@sum")},
                                               {"condition", language.condition}}});
    client.setBreakPoints(script, {line(language.script, "@one")});
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray{"scriptError"}}});
    client.body("configurationDone");

    // In, over and out of a function.
    EXPECT_EQ(client.stop(), at("breakpoint", "test.{}", language.script, "@one"));
    EXPECT_EQ(intoFunction("helper.{}", language.helper),
              at("step", "helper.{}", language.helper, "@sum"));
    EXPECT_EQ(after("next"), at("step", "helper.{}", language.helper, "@end"));
    // By a condition.
    EXPECT_EQ(after("continue"), at("breakpoint", "helper.{}", language.helper, "@sum"));
    EXPECT_EQ(stack(), "add main");
    const QJsonObject variables = client.variables();
    EXPECT_EQ(value(variables[nameOf("left")]), "2");
    EXPECT_EQ(value(variables[nameOf("right")]), "5");
    EXPECT_EQ(evaluated(language.sum), "7");
    EXPECT_NE(client.error("evaluate", {{"expression", "1 +"}}), "");
    // What the caller has.
    const QJsonObject callers = client.variables(scopeOf(2));
    EXPECT_EQ(value(callers[nameOf("total")]), "2");
    EXPECT_EQ(value(opened(opened(callers[nameOf("values")])["1"])["1"]), language.two);
    // Behind the call, which may be where the value is assigned.
    QString place = after("stepOut");
    if (place == at("step", "test.{}", language.script, "@two"))
        place = after("next");
    EXPECT_EQ(place, at("step", "test.{}", language.script, "@print"));
    EXPECT_EQ(client.body("setExpression",
                          {{"expression", language.assignment}, {"value", "40"}})["value"],
              "40");

    EXPECT_EQ(after("continue"), at("exception", "test.{}", language.script, "@raise"));
    EXPECT_TRUE(client.body("exceptionInfo", {{"threadId", 1}})["description"].toString().contains(
        language.error));
    EXPECT_EQ(value(client.variables()[nameOf("total")]), "40");
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 1);
    EXPECT_EQ(client.output("stdout"), "40\n");
    EXPECT_TRUE(client.fitsProtocol());
}

TEST_P(DapLanguages, ABreakPointWhereTheRunBeginsIsTheSameStop) {
    const DebuggedLanguage& language = GetParam();
    write("shared/scripts/helper.{}", language.helper);
    const QString script = write("sums/test.{}", language.script);
    client.launch({{"suite", pathOf("")}, {"stopOnEntry", true}});
    client.body("configurationDone");
    const QString entry = client.stop();
    EXPECT_TRUE(entry.startsWith(QStringLiteral("entry test.%1:").arg(language.suffix)));
    const int begin = entry.section(':', -1).toInt();
    client.setBreakPoints(script, {begin, line(language.script, "@one")});
    EXPECT_EQ(after("continue"), at("breakpoint", "test.{}", language.script, "@one"));
    client.body("disconnect");
    EXPECT_EQ(process.exitCode(), 0) << process.errors().constData();
}

TEST_P(DapLanguages, CodeThatNeverEndsIsEndedAndTheScriptStaysWhereItStands) {
    const DebuggedLanguage& language = GetParam();
    const QString helper = write("shared/scripts/helper.{}", language.helper);
    write("sums/test.{}", language.script);
    client.launch({{"suite", pathOf("")}});
    client.setBreakPoints(helper, {line(language.helper, "@end")});
    client.body("configurationDone");
    EXPECT_EQ(client.stop(), at("breakpoint", "helper.{}", language.helper, "@end"));
    for (int time = 0; time < 2; ++time) {
        const int evaluation =
            client.send("evaluate", {{"expression", language.endless}, {"context", "repl"}});
        const int pause = client.send("pause", {{"threadId", 1}});
        const QJsonObject answer = client.answer(evaluation);
        EXPECT_FALSE(answer["success"].toBool());
        EXPECT_EQ(answer["message"], "evaluate: The evaluation was ended before it was done");
        EXPECT_TRUE(client.answer(pause)["success"].toBool());
        EXPECT_EQ(evaluated(language.sum), "2");
    }
    // An editor asks for watches by itself, with nobody to end them.
    EXPECT_EQ(client.error("evaluate", {{"expression", language.endless}, {"context", "watch"}}),
              "evaluate: The evaluation was ended before it was done");
    EXPECT_EQ(stack(), "add main");
    EXPECT_EQ(after("continue"), at("breakpoint", "helper.{}", language.helper, "@end"));
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 1);
    EXPECT_EQ(client.output("stdout"), "7\n");
    EXPECT_TRUE(client.fitsProtocol());
}

TEST_P(DapLanguages, StepsOfAFeatureFileAndTheirFunctions) {
    const DebuggedLanguage& language = GetParam();
    const QString feature = write("order/test.feature",
                                  "Feature: orders\n"
                                  "  Scenario: pies\n"
                                  "    Given 2 pies\n"
                                  "    When they are eaten\n"
                                  "      | by |\n");
    write("order/steps/order.{}", language.steps);
    client.launch({{"suite", pathOf("")}});
    client.setBreakPoints(feature, {3});
    client.setBreakPoints(pathOf("order/steps/order.{}"), {line(language.steps, "@eaten")});
    client.body("configurationDone");

    EXPECT_EQ(client.stop(), "breakpoint test.feature:3");
    EXPECT_EQ(evaluated("1 + 1"), "2");
    EXPECT_EQ(intoFunction("order.{}", language.steps),
              at("step", "order.{}", language.steps, "@pies"));
    EXPECT_EQ(evaluated(nameOf("count")), "2");
    EXPECT_EQ(after("stepOut"), "step test.feature:4");
    EXPECT_EQ(after("continue"), at("breakpoint", "order.{}", language.steps, "@eaten"));
    EXPECT_TRUE(stack().endsWith(" When they are eaten")) << qPrintable(stack());
    EXPECT_EQ(evaluated(language.countOfContext), "2");
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 0);
    EXPECT_TRUE(client.fitsProtocol());
}

INSTANTIATE_TEST_SUITE_P(Languages, DapLanguages, testing::ValuesIn(languages),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Tamrix
