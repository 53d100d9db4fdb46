#include "plugins/tcl/tcltest.h"
#include "support/inmemorymodel.h"

namespace Tamrix {
namespace {

using namespace Test;

class TclValues : public TclTest {
protected:
    TclValues() {
        define("describe", describe);
        define("same", same);
        define("give", give);
        s_given = nullptr;
    }

    /// Notes what the core is told of a value.
    static bool describe(ScriptContext* context) {
        const SharedPtr<ScriptArgument> value = context->argument(0);
        QStringList words{value->typeName()};
        const std::pair<const char*, bool> tests[] = {
            {"bool", value->isBool()},       {"number", value->isNumber()},
            {"integer", value->isInteger()}, {"string", value->isString()},
            {"object", value->isObject()},   {"callable", value->isCallable()},
            {"list", value->isList()},       {"map", value->isMap()},
            {"null", value->isNull()}};
        for (const auto& [name, holds] : tests) {
            if (holds)
                words.append(name);
        }
        s_seen.append(words.join(' ') + "|" + value->toString());
        return true;
    }

    /// Gives its argument back.
    static bool same(ScriptContext* context) {
        context->setResult(context->argument(0));
        return true;
    }

    /// Gives what the test has put down.
    static bool give(ScriptContext* context) {
        s_given(context);
        return true;
    }
    inline static std::function<void(ScriptContext*)> s_given;
};

TEST_F(TclValues, AreSeenForWhatTheyAreAndWhatTheyLookLike) {
    const std::pair<const char*, const char*> rows[] = {
        {"{}", "string string list map null|"},
        {"text", "string string|text"},
        {"{Save As}", "string string list map|Save As"},
        {"7", "string number integer string|7"},
        {"1.50", "string number string|1.50"},
        {"true", "string bool string|true"},
        {"[expr {2 ** 40}]", "int number integer|1099511627776"},
        {"[expr {3 / 2.0}]", "double number|1.5"},
        {"[expr {2 ** 64}]", "int number integer|18446744073709551616"},
        {"[list a b c]", "list list|a b c"},
        {"[dict create a 1]", "dict map|a 1"},
        {"[binary format H* 00ff]", "bytes|"},
        {"{\xF0\x9F\x98\x80 x}", "string string list map|\xF0\x9F\x98\x80 x"},
        {"puts", "string string callable|puts"},
        {"{list 1}", "string string callable list map|list 1"},
        {"\"a {b\"", "string string|a {b"},
    };
    for (const auto& [code, expected] : rows) {
        EXPECT_EQ(run(QString::fromUtf8("describe ") + QString::fromUtf8(code)), "") << code;
        const QString seen = s_seen.takeLast();
        EXPECT_EQ(QString(expected).startsWith("bytes") ? seen.section('|', 0, 0) + "|" : seen,
                  QString::fromUtf8(expected))
            << code;
    }
    // A number that has been calculated with is one, unless it looks otherwise.
    EXPECT_EQ(run("set n 007\nset m [expr {$n + 1}]\ndescribe $n\ndescribe $m"), "");
    EXPECT_EQ(s_seen, (QStringList{"string number integer string|007", "int number integer|8"}));
}

TEST_F(TclValues, PassThroughUnchanged) {
    EXPECT_EQ(run(R"tcl(
foreach value [list {} true 9223372036854775807 1.5 "a\0b" "\uD83D\uDE00" {a {b c}} [expr {2 ** 70}]] {
    if {[same $value] ne $value} { error "not $value" }
}
if {[string length [same "a\0b"]] != 3} { error NUL }
)tcl"),
              "");
}

TEST_F(TclValues, ConvertAsTheLanguageDoes) {
    define("convert", [](ScriptContext* context) {
        const SharedPtr<ScriptArgument> value = context->argument(0);
        s_seen.append(QStringLiteral("%1 %2").arg(value->toInt()).arg(value->toDouble()));
        return true;
    });
    EXPECT_EQ(run("foreach v {3 0x10 2.9 -2.9 x {} 4611686018427387904} { convert $v }"), "");
    EXPECT_EQ(s_seen, (QStringList{"3 3", "16 16", "2 2.9", "-2 -2.9", "0 0", "0 0",
                                   "4611686018427387904 4.61169e+18"}));
    EXPECT_EQ(run("convert [expr {2 ** 63}]"),
              "ArgumentError: 9223372036854775808 is too large: only integers of 64 bits can be "
              "passed on");
}

TEST_F(TclValues, ComeBackAsTclsOwn) {
    struct {
        std::function<void(ScriptContext*)> given;
        const char* expected;
    } const rows[] = {
        {[](auto* c) { c->setNullResult(); }, ""},
        {[](auto* c) { c->setBoolResult(true); }, "true"},
        {[](auto* c) { c->setInt64Result(1LL << 62); }, "4611686018427387904"},
        {[](auto* c) { c->setDoubleResult(0.5); }, "0.5"},
        {[](auto* c) { c->setStringResult("{ \"$x"); }, "{ \"$x"},
        {[](auto* c) {
             c->setDateTimeResult(QDateTime({2026, 1, 2}, {3, 4, 5, 678}));
         },
         "2026-01-02T03:04:05.678"},
        {[](auto* c) {
             c->setListResult({"a", "b c"});
         },
         "a {b c}"},
        {[](auto* c) {
             c->setMapResult({{"b", 1}, {"a", "x"}});
         },
         "a x b 1"},
        {[](auto* c) {
             c->setStackTraceResult({{"a.tcl", 3}, {QString(), -1}});
         },
         "{fileName a.tcl line 3}"},
        {[](auto*) {}, ""},
    };
    for (const auto& row : rows) {
        s_given = row.given;
        EXPECT_EQ(run("describe \"=[give]\""), "");
        EXPECT_EQ(s_seen.last().section('|', 1), QString("=") + row.expected);
    }
    s_given = [](auto* c) { c->setDateTimeResult(QDateTime({2026, 1, 2}, {3, 4, 5})); };
    EXPECT_EQ(run("describe [clock format [clock scan [give] -format %Y-%m-%dT%H:%M:%S] "
                  "-format %d.%m.%y]"),
              "");
    EXPECT_EQ(s_seen.last().section('|', 1), "02.01.26");
    s_given = [](auto* c) { c->setResult(c->createBytes(QByteArray("\x00\xff", 2))); };
    EXPECT_EQ(run("binary scan [give] H* hex\ndescribe $hex"), "");
    EXPECT_EQ(s_seen.last().section('|', 1), "00ff");
}

TEST_F(TclValues, Compare) {
    s_given = [](auto* c) { c->setIntegerResult(7); };
    const std::pair<const char*, bool> rows[] = {
        {"a a", true},
        {"7 7.0", false},
        {"1.10 1.1", false},
        {"[give] 7.0", true},
        {"[expr {1 + 1}] 2.0", true},
        {"[same true] yes", false},
        {"[dict create a 1 b 2] {b 2 a 1}", true},
        {"[dict create a 1 b 2] {b 2 a 2}", false},
        {"[list a b] {a  b}", true},
        {"[list a b] {a c}", false},
        {"{} 0", false},
    };
    for (const auto& [values, equal] : rows) {
        EXPECT_EQ(run(QString("test compare ") + values), "");
        EXPECT_EQ(results().last().startsWith("10 "), equal) << values;
    }
    s_given = [](auto* c) { c->setBoolResult(true); };
    EXPECT_EQ(run("test compare [give] 1\ntest compare [give] true\ntest compare [give] off"), "");
    EXPECT_EQ(results().mid(results().size() - 3).join('\n'),
              "10 Comparison: 'true' and '1' are equal\n"
              "10 Comparison: 'true' and 'true' are equal\n"
              "11 Comparison: 'true' and 'off' are not equal");
}

TEST_F(TclValues, VerifyTakesWhatConditionsTake) {
    EXPECT_EQ(run("test verify [expr {1 < 2}]\ntest verify no\ntest verify {}"), "");
    EXPECT_EQ(results().size(), 3);
    EXPECT_TRUE(results().at(1).startsWith("11 Not verified"));
    EXPECT_EQ(run("test verify {$a < 2}"),
              "ArgumentError: expected boolean value but got \"$a < 2\": write [expr {...}] around "
              "a condition");
}

TEST_F(TclValues, AFailedConditionTellsItsValues) {
    const std::pair<const char*, const char*> rows[] = {
        {"test verify [expr {$n > 3 && [llength $list] == 2}]",
         "$n > 3 && [llength $list] == 2|$n: 1|[llength $list]: 3"},
        {"test verify [expr {$n > 3}] {big enough}", "$n > 3|$n: 1"},
        {"test::verify [string equal [lindex $list 1] $array(key)]",
         "[string equal [lindex $list 1] $array(key)]|[string equal [lindex $list 1] "
         "$array(key)]: 0"},
        {"test xverify $yes", "$yes|$yes: true"},
        {"test verify [expr {[next] > $list &&\n    $n == $n}]",
         "[next] > $list && $n == $n|$list: a b {c d}|$n: 1"},
        {"test verify [next $n [expr {$n + 1}]]", "[next $n [expr {$n + 1}]]|$n: 1"},
        {"test verify [expr {\"$nothing\" eq {[next]} && 0 == [catch {next}]}]", ""},
        {"test verify 0", ""},
        {"test verify {}", ""},
        {"eval {test verify [expr {$n > 3}]}", "$n > 3|$n: 1"},
        {"apply {{x} {\n    test verify [expr {$x > [string length abc]}]\n}} 2",
         "$x > [string length abc]|$x: 2|[string length abc]: 3"},
    };
    for (const auto& [call, told] : rows) {
        report.entries.clear();
        run(QString("set n 1\nset list {a b {c d}}\nset array(key) c\nset yes true\n"
                    "proc next {args} {incr ::calls; return 0}\nset calls 0\n%1\n"
                    "if {$calls > 1} {error \"called $calls times\"}")
                .arg(call));
        const auto results = report.results();
        const QString text = results.empty() ? QString() : results.front().explanation;
        EXPECT_EQ(text.split('\n').join('|'), told) << call;
    }
}

TEST_F(TclValues, ApplicationContextsAndDataSets) {
    s_given = [](ScriptContext* context) {
        SharedPtr<ApplicationContext> application(new ApplicationContext);
        application->id = 4;
        application->name = "app";
        context->setContextResult(application);
    };
    define("idOf", [](ScriptContext* context) {
        context->setIntegerResult(context->argument(0)->toApplicationContext()->id);
        return true;
    });
    EXPECT_EQ(run("set application [give]\n"
                  "if {[idOf $application] != 4 || $application ne [give]} {error other}\n"
                  "describe $application"),
              "");
    EXPECT_TRUE(s_seen.last().startsWith("ApplicationContext "));

    s_given = [](ScriptContext* context) {
        auto* const set = new TestDataSet("prices.csv", ',', false);
        auto* const header = new TestDataRecord(set, -1);
        header->addValue("name");
        header->addValue("price");
        set->setHeader(header);
        for (int index = 0; index < 2; ++index) {
            auto* const record = new TestDataRecord(set, index);
            record->addValue(QString("item%1").arg(index));
            record->addValue(QString::number(10 * index));
            set->addRecord(record);
        }
        context->setTestDataSetResult(set);
    };
    define("setAndRow", [](ScriptContext* context) {
        const SharedPtr<TestDataSet> set = context->argument(0)->toTestDataSet();
        const TestDataRecord* record = context->argument(1)->toTestDataRecord();
        context->setBoolResult(set && record && record->dataSet() == set.get());
        return true;
    });
    EXPECT_EQ(run(R"tcl(
set table [give]
if {[llength $table] != 2} {error count}
set prices {}
foreach record $table {
    lappend prices [testData field $record price] [testData field $record 0]
}
if {$prices ne {0 item0 10 item1}} {error $prices}
if {![setAndRow $table [lindex $table 1]] || [setAndRow $table 5]} {error row}
)tcl"),
              "");
}

TEST_F(TclValues, CallablesAreCalled) {
    define("callTwice", [](ScriptContext* context) {
        const SharedPtr<ScriptArgument> function = context->argument(0);
        for (int count = 0; count < 2; ++count) {
            QString error;
            const auto value = function->call({context->createInteger(count)}, &error);
            s_seen.append(value ? value->toString() : "error " + error);
        }
        // The arguments of this call are still there.
        s_seen.append(context->argument(0) == function ? "kept" : "lost");
        return true;
    });
    define("identifier", [](ScriptContext* context) {
        context->setStringResult(Interpreter::self()->registerCallable(context->argument(0)));
        return true;
    });
    EXPECT_EQ(run("callTwice {apply {{n} {expr {[same $n] + 40}}}}\n"
                  "proc divide {a b} {expr {$a / $b}}\ncallTwice {divide 1}"),
              "");
    EXPECT_EQ(s_seen,
              (QStringList{"40", "41", "kept", "error Error: divide by zero", "1", "kept"}));
    EXPECT_EQ(run("if {[identifier divide] ne [identifier divide]} {error other}"), "");
}

TEST_F(TclValues, CodeThatIsHandedOverSeesTheCallersNames) {
    define("condition", [](ScriptContext* context) {
        QString error;
        const bool value = context->evaluateCondition(context->argument(0)->toString(), &error);
        s_seen.append(error.isEmpty() ? QString(value ? "true" : "false") : error);
        return true;
    });
    EXPECT_EQ(run(R"tcl(
proc main {} {
    set local 5
    condition {$local > 3}
    condition { !$local }
    condition {$nothing}
    test exception {expr {$local / 0}}
    test exception {expr $local}
    test exception "set x \{"
    set ready 0
    if {![waitFor {[incr ready] > 2}]} {error waited}
    proc isReady {} {return 1}
    if {![waitFor [list isReady]]} {error waited}
}
main
)tcl"),
              "");
    EXPECT_EQ(s_seen,
              (QStringList{"true", "false", "Error: can't read \"nothing\": no such variable"}));
    EXPECT_EQ(results().mid(0, 3),
              (QStringList{"10 Exception: Raised Error: divide by zero",
                           "11 Exception: No exception was raised",
                           "11 Exception: The code is not valid: it has no end"}));
}

TEST_F(TclValues, ArgumentsHaveNames) {
    define("wanted",
           [](ScriptContext* context) {
               QStringList words;
               for (int index = 0; index < context->argumentCount(); ++index)
                   words += context->argument(index) ? context->argument(index)->toString() : "-";
               s_seen.append(words.join(' ') + (context->hasNamedArguments() ? " named" : ""));
               return true;
           },
           {"a"}, {"first", "second"});
    const std::pair<const char*, const char*> rows[] = {
        {"wanted 1", "1"},
        {"wanted -first", "-first"},
        {"wanted 1 -second 3", "1 - 3 named"},
        {"wanted 1 2 -second -3", "1 2 -3 named"},
        {"wanted 1 -5", "1 -5"},
        {"wanted 1 -other", "1 -other"},
        {"wanted 1 -- -second", "1 -second"},
        {"wanted 1 {} 3", "1 - 3"},
    };
    for (const auto& [code, expected] : rows) {
        EXPECT_EQ(run(code), "") << code;
        EXPECT_EQ(s_seen.last(), expected) << code;
    }
    const std::pair<const char*, const char*> refused[] = {
        {"wanted 1 -first", "ArgumentError: value for \"-first\" missing"},
        {"wanted 1 -first 2 3", "ArgumentError: bad option \"3\": must be -first, or -second"},
        {"wanted 1 2 -first 2",
         "ArgumentError: wanted() got several values for the argument 'first'"},
    };
    for (const auto& [code, error] : refused)
        EXPECT_EQ(run(code), error) << code;
}

}  // namespace
}  // namespace Tamrix
