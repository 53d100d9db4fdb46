#include "interpreter/bridge/debugger.h"

#include "plugins/perl/perltest.h"
#include "runner/coreapplication.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

/// Perl's debugger is driven through Debugger alone, and seen through a front end.
class PerlDebugging : public PerlTest {
protected:
    PerlDebugging() : debugger(interpreter->debugger()) {
        // Listings of variables serve events.
        coreApplication();
        interpreter->setScriptArguments(script(), {});
        load(text);
    }

    void load(const QByteArray& code) {
        EXPECT_TRUE(writeFile(script(), code));
        EXPECT_EQ(run(QString::fromUtf8(code)), "");
    }

    /// Calls main() and gives the lines at which it stopped.
    QString stops() {
        EXPECT_TRUE(interpreter->callFunction("main", ObjectList()));
        return frontEnd.take(" ");
    }

    /// What is seen at a line that stops in main().
    void atLine(int line, const std::function<void()>& look) {
        s_look = look;
        define("look", [](ScriptContext*) {
            s_look();
            return true;
        });
        static_cast<void>(line);
    }
    inline static std::function<void()> s_look;

    QStringList variables(const QString& path) {
        QStringList lines;
        for (const Debugger::VariableBinding& each : debugger->variables(path))
            lines.append(each.name + " " + each.type + " " + each.value);
        return lines;
    }

    const char* const text =
        "sub helper {\n"             // 1
        "    my $m = $_[0] + 1;\n"   // 2
        "    return $m;\n"           // 3
        "}\n"                        // 4
        "sub main {\n"               // 5
        "    my $a = helper(1);\n"   // 6
        "    eval {\n"               // 7
        "        fail();\n"          // 8
        "    };\n"                   // 9
        "    if ($@) {\n"            // 10
        "        $a = helper(2);\n"  // 11
        "    }\n"                    // 12
        "    return $a;\n"           // 13
        "}\n"                        // 14
        "sub fail {\n"               // 15
        "    die 'caught';\n"        // 16
        "}\n";                       // 17
    Debugger* debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(*debugger);
};

TEST_F(PerlDebugging, StopsByMode) {
    debugger->setDebuggerMode(Debugger::Step);
    EXPECT_EQ(stops(), "") << "not interactive";
    debugger->setInteractive(true);
    EXPECT_EQ(stops(), "6 2 3 7 8 16 10 11 2 3 13");
    debugger->next(1);
    EXPECT_EQ(stops(), "6 7 8 10 11 13");
    debugger->setDebuggerMode(Debugger::Run);
    EXPECT_EQ(stops(), "");
    debugger->setDebuggerMode(Debugger::None);
    EXPECT_EQ(stops(), "");
    EXPECT_EQ(debugger->frameDepth(), 0);
    debugger->setInteractive(false);
    debugger->step();
    EXPECT_EQ(stops(), "");
}

TEST_F(PerlDebugging, StopsAtBreakPoints) {
    debugger->bufferBreakPoint(script(), 3);
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    EXPECT_EQ(stops(), "3 3");
    const int id = debugger->findSourceId("test.pl");
    ASSERT_GT(id, 0);
    debugger->setBreakPoint(3, id, false);
    debugger->setBreakPoint(11, id, true);
    EXPECT_EQ(stops(), "11");
    debugger->next(1);
    debugger->setBreakPoint(2, id, true);
    EXPECT_EQ(stops(), "6 2 7 8 10 11 2 13");
}

TEST_F(PerlDebugging, GoesOnAsItsFrontEndCommands) {
    debugger->setInteractive(true);
    debugger->step();
    frontEnd.commands = {Resume{Resume::Step}, Resume{Resume::Return},     Resume{Resume::Next},
                         Resume{Resume::Next}, SetBreakPoint{script(), 3}, Resume{Resume::Run},
                         Resume{Resume::Next}, Resume{Resume::Run}};
    EXPECT_EQ(stops(), QString("6 2 7 8 10 %1:3 3 13").arg(script()));
}

TEST_F(PerlDebugging, ShowsAndChangesVariables) {
    atLine(0, [this] {
        debugger->setInteractive(true);
        const char* const loop =
            "+$loop HASH {\"in\" => {\"in\" => {\"in\" => {\"in\" => {...}}}}}";
        EXPECT_EQ(
            variables(""),
            (QStringList{"+%h HASH {\"b\" => [1, 2], \"k.e y\" => 1}", "+@list ARRAY [1, 2]",
                         "$text string \"a\\n\\\"b\\\"\"", "$n integer 5", "$none undef undef",
                         "$code CODE \\&main::main", loop, "$package integer 3"}));
        EXPECT_EQ(variables("+%h"),
                  (QStringList{"+%h.['b'] ARRAY [1, 2]", "%h.['k%2Ee y'] integer 1"}));
        EXPECT_EQ(variables("+%h.['b']"),
                  (QStringList{"%h.['b'].0 integer 1", "%h.['b'].1 integer 2"}));
        EXPECT_EQ(variables("^1").value(0), "^1.$outer string \"of main\"");
        const std::pair<const char*, const char*> rows[] = {
            {"$n + 1", "6"},
            {"@list", "[1, 2]"},
            {"$h{b}[1] = 9; $n = 7", "7"},
            {"^1 $outer .= '!'; $outer", "\"of main!\""},
            {"$main::package", "3"},
            {"die \"no\\n\"", "no"},
            {"exit 1", "exit() is not called from here"},
            {"my $x = ;", "syntax error, at EOF"},
            {"^9 1", "There is no frame 9 levels outwards"},
        };
        for (const auto& [code, expected] : rows)
            EXPECT_EQ(debugger->evaluate(code), expected) << code;
        debugger->setInteractive(false);
    });
    load(
        "our $package = 3;\n"
        "sub inner {\n"
        "    my %h = (b => [1, 2], 'k.e y' => 1);\n"
        "    my @list = (1, 2); my $text = \"a\\n\\\"b\\\"\";\n"
        "    my ($n, $none, $code, $loop) = (5, undef, \\&main, {});\n"
        "    $loop->{in} = $loop;\n"
        "    { my $hidden = 1; }\n"
        "    look();\n"
        "    my $later = 1;\n"
        "    return \"$n $h{b}[1]\";\n"
        "}\n"
        "sub main {\n"
        "    my $outer = 'of main';\n"
        "    my $result = inner();\n"
        "    test::compare(\"$result $outer\", '7 9 of main!');\n"
        "}\n");
    EXPECT_EQ(stops(), "");
    EXPECT_EQ(results(), QStringList("10 Comparison: '7 9 of main!' and '7 9 of main!' are equal"));
}

TEST_F(PerlDebugging, CodeOfValuesHasLimitedTime) {
    atLine(0, [this] {
        EXPECT_EQ(variables(""),
                  (QStringList{"$slow Slow <no representation: not in time>",
                               "$bad Bad <no representation: no text>", "$good Good good"}));
    });
    load(
        "package Slow { use overload '\"\"' => sub { 1 while 1 } }\n"
        "package Bad { use overload '\"\"' => sub { die \"no text\\n\" } }\n"
        "package Good { use overload '\"\"' => sub { 'good' } }\n"
        "sub main {\n"
        "    my ($slow, $bad, $good) = map { bless [], $_ } qw(Slow Bad Good);\n"
        "    look();\n"
        "}\n");
    EXPECT_EQ(stops(), "");
}

TEST_F(PerlDebugging, StopsForErrorsThatNothingCatches) {
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    EXPECT_EQ(stops(), "") << "the error is caught";
    load(
        "sub f {\n    die 'nobody';\n}\nsub main {\n    eval { die 'caught' };\n"
        "    f();\n}\n");
    EXPECT_FALSE(interpreter->callFunction("main", ObjectList()));
    EXPECT_EQ(frontEnd.take(" "), "ScriptError=nobody 2");
    for (const char* const caught :
         {"test::exception(sub { f() })", "test::exception('f()')", "test::exception('die 1; 2')",
          "waitFor(sub { eval { f() }; !!1 })", "my @sorted = sort { eval { f() }; 0 } 2, 1",
          "test::exception(sub { my @sorted = sort { f() } 2, 1 })",
          "test::exception(sub { test::compare(1) })"}) {
        load(QByteArray("sub f {\n    die 'wanted';\n}\nsub main {\n    ") + caught + ";\n}\n");
        EXPECT_EQ(stops(), "") << caught;
    }
    load("sub main {\n    test::skip('no error');\n}\n");
    EXPECT_FALSE(interpreter->callFunction("main", ObjectList()));
    EXPECT_EQ(frontEnd.take(" "), "");
}

TEST_F(PerlDebugging, StopsWhereItIsInterrupted) {
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    load("sub main {\n    my $n = 0;\n    interruptMe() while $n++ < 2;\n    return;\n}\n");
    static Debugger* s_debugger = nullptr;
    s_debugger = debugger;
    define("interruptMe", [](ScriptContext*) {
        s_debugger->interrupt();
        return true;
    });
    frontEnd.commands = {Resume{Resume::Run}, Resume{Resume::Step}};
    EXPECT_EQ(stops(), "3 3 4");
}

}  // namespace
}  // namespace Tamrix
