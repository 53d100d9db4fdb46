#include <functional>

#include "plugins/javascript/javascripttest.h"
#include "support/inmemorymodel.h"

namespace Tamrix {
namespace {

using namespace Test;

class JavaScriptValues : public JavaScriptTest {
protected:
    JavaScriptValues() {
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
            {"bool", value->isBool()},         {"number", value->isNumber()},
            {"integer", value->isInteger()},   {"string", value->isString()},
            {"null", value->isNull()},         {"object", value->isObject()},
            {"callable", value->isCallable()}, {"list", value->isList()},
            {"map", value->isMap()},           {"true", context->isTrue(value)}};
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

TEST_F(JavaScriptValues, AreSeenForWhatTheyAre) {
    const struct {
        const char* code;
        const char* seen;
    } rows[] = {
        {"undefined", "undefined null|undefined"},
        {"null", "null null|null"},
        {"true", "boolean bool true|true"},
        {"7", "number number integer true|7"},
        {"-(2n ** 63n)", "bigint number integer true|-9223372036854775808"},
        {"1.5", "number number true|1.5"},
        {"NaN", "number number|NaN"},
        {"'text'", "string string true|text"},
        {"'\\u{1F600}'", "string string true|\xF0\x9F\x98\x80"},
        {"[1, 'a', [null]]", "Array list true|[1, 'a', [null]]"},
        {"({a: 1, 'b c': {}})", "Object map true|{a: 1, 'b c': {}}"},
        {"new Map([['k', 1]])", "Map map true|Map {'k' => 1}"},
        {"new Set(['it\\'s'])", "Set true|Set {'it\\'s'}"},
        {"new Date(2026, 0, 2, 3, 4, 5)", "Date true|2026-01-02T03:04:05.000"},
        {"Symbol('s')", "symbol true|Symbol(s)"},
        {"function f() {}", "function callable true|[Function: f]"},
        {"Math.max", "function callable true|[Function: max]"},
        {"/a+/i", "RegExp true|/a+/i"},
        {"new TypeError('no')", "TypeError true|TypeError: no"},
        {"new (class Own extends Error {})('m')", "Own true|Own: m"},
        {"new (class Point { constructor() { this.x = 1; } })()", "Point true|Point {x: 1}"},
        {"new (class { toString() { return 'mine'; } })()", "object true|mine"},
        {"new (class Bad { toString() { throw 1; } })()", "Bad true|<unprintable Bad object>"},
        {"({get x() { throw 1; }})", "Object map true|{x: [Getter]}"},
        {"(a => { a.push(a); return a; })([1])", "Array list true|[1, [Circular]]"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(QStringLiteral("describe(%1)").arg(row.code)), "") << row.code;
        EXPECT_EQ(s_seen.takeLast(), QString::fromUtf8(row.seen)) << row.code;
    }
}

TEST_F(JavaScriptValues, PassThroughUnchanged) {
    EXPECT_EQ(run(R"js(
const marker = {};
for (const value of [undefined, null, true, 2 ** 53, 2n ** 80n, 1.5, "a\udc80\0z", marker, [marker]]) {
    if (same(value) !== value)
        throw new Error(String(value));
}
)js"),
              "");
}

TEST_F(JavaScriptValues, ConvertAsTheLanguageDoes) {
    define("convert", [](ScriptContext* context) {
        const SharedPtr<ScriptArgument> value = context->argument(0);
        s_seen.append(QStringLiteral("%1 %2").arg(value->toInt()).arg(value->toDouble()));
        return true;
    });
    EXPECT_EQ(run("for (const v of [3, 2.9, -2.9, true, 'x', null, 2n ** 62n]) convert(v)"), "");
    EXPECT_EQ(s_seen, (QStringList{"3 3", "2 2.9", "-2 -2.9", "1 1", "0 0", "0 0",
                                   "4611686018427387904 4.61169e+18"}));
    for (const char* const large : {"2n ** 63n", "NaN", "1e300"})
        EXPECT_TRUE(run(QStringLiteral("convert(%1)").arg(large)).startsWith("RangeError: "))
            << large;
    EXPECT_EQ(run("convert(1e300)"),
              "RangeError: 1e+300 is no integer of 64 bits: only such can be passed on");
}

TEST_F(JavaScriptValues, ComeBackAsTheLanguagesOwn) {
    struct {
        std::function<void(ScriptContext*)> given;
        const char* expected;
    } const rows[] = {
        {[](auto* c) { c->setNullResult(); }, "null"},
        {[](auto* c) { c->setBoolResult(true); }, "true"},
        {[](auto* c) { c->setIntegerResult(-5); }, "-5"},
        {[](auto* c) { c->setInt64Result(1LL << 53); }, "9007199254740992n"},
        {[](auto* c) { c->setInt64Result(-(1LL << 52)); }, "-4503599627370496"},
        {[](auto* c) { c->setDoubleResult(0.5); }, "0.5"},
        {[](auto* c) { c->setStringResult(QString("a") + QChar(0) + QChar(0xdc80)); },
         "'a\\0\\udc80'"},
        {[](auto* c) {
             c->setDateTimeResult(QDateTime({2026, 1, 2}, {3, 4, 5, 678}));
         },
         "new Date(2026, 0, 2, 3, 4, 5, 678)"},
        {[](auto* c) {
             c->setListResult({"a", "b"});
         },
         "['a', 'b']"},
        {[](auto* c) {
             c->setMapResult({{"b", 1}, {"a", "x"}});
         },
         "{a: 'x', b: '1'}"},
        {[](auto* c) { c->setResult(c->createBytes(QByteArray("a\0b", 3))); },
         "new Uint8Array([97, 0, 98])"},
        {[](auto* c) { c->setObjectListResult({nullptr}); }, "[null]"},
        {[](auto* c) {
             c->setStackTraceResult({{"a.js", 3}, {QString(), -1}});
         },
         "[{fileName: 'a.js', line: 3}]"},
        {[](auto*) {}, "undefined"},
    };
    for (const auto& row : rows) {
        s_given = row.given;
        EXPECT_EQ(run(QStringLiteral("test.compare(give(), %1)").arg(row.expected)), "");
        EXPECT_TRUE(results().last().startsWith("10 ")) << row.expected;
    }
}

TEST_F(JavaScriptValues, EqualIsWhatHasEqualMembers) {
    const struct {
        const char* left;
        const char* right;
        bool areEqual;
    } rows[] = {
        {"1", "1n", true},
        {"1", "'1'", false},
        {"NaN", "NaN", false},
        {"null", "undefined", true},
        {"0", "null", false},
        {"[1, [2]]", "[1, [2]]", true},
        {"[1]", "[1, 2]", false},
        {"({a: 1, b: 2})", "({b: 2, a: 1})", true},
        {"({a: undefined})", "({b: undefined})", false},
        {"[]", "({})", false},
        {"new Map([[1, {x: 1}]])", "new Map([[1, {x: 1}]])", true},
        {"new Set([1])", "new Set([2])", false},
        {"new Date(5)", "new Date(5)", true},
        {"new (class A {})()", "new (class A {})()", false},
        {"(a => { a.push(a); return a; })([])", "(a => { a.push(a); return a; })([])", true},
        {"Math.max", "Math.max", true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(run(QStringLiteral("test.compare(%1, %2)").arg(row.left, row.right)), "");
        EXPECT_EQ(results().last().startsWith("10 "), row.areEqual) << row.left << ' ' << row.right;
    }
    EXPECT_EQ(
        run("function deep() { let v = []; for (let i = 0; i < 1e6; i++) v = [v]; return v; }\n"
            "test.compare(deep(), deep())"),
        "InternalError: too much recursion");
}

TEST_F(JavaScriptValues, ApplicationContextsAndDataSets) {
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
    EXPECT_EQ(run("const application = give();\n"
                  "test.verify(idOf(application) === 4 && application === give());\n"
                  "describe(application)"),
              "");
    EXPECT_TRUE(s_seen.takeLast().contains("<AUT 'app'"));

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
        auto* const shortRow = new TestDataRecord(set, 2);
        shortRow->addValue("short");
        set->addRecord(shortRow);
        context->setTestDataSetResult(set);
    };
    define("setAndRow", [](ScriptContext* context) {
        const SharedPtr<TestDataSet> set = context->argument(0)->toTestDataSet();
        const TestDataRecord* record = context->argument(1)->toTestDataRecord();
        context->setBoolResult(set && record && record->dataSet() == set.get());
        return true;
    });
    EXPECT_EQ(run(R"js(
let table = give();
test.compare(table.map(row => row.price), ["0", "10", ""]);
test.compare(table[2][1], "");
test.verify(table.length === 3 && table[1][0] === "item1");
test.compare(Object.keys(table[0]), ["name", "price"]);
test.verify(setAndRow(table, table[1]) && !setAndRow([], table[1]) && !setAndRow(table, {}));
const row = table[1];
table = null;
test.compare(row.name, "item1");
)js"),
              "");
    for (const QString& each : results())
        EXPECT_TRUE(each.startsWith("10 ")) << qPrintable(each);
}

TEST_F(JavaScriptValues, CallablesAreCalled) {
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
    EXPECT_EQ(run("callTwice(n => same(n) + 40);\n"
                  "callTwice(async n => { await null; return n; });\n"
                  "callTwice(n => { if (n === 0) throw new RangeError('none'); return n; })"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"40", "41", "kept", "0", "1", "kept", "error RangeError: none",
                                   "1", "kept"}));

    define("register", [](ScriptContext* context) {
        context->setStringResult(Interpreter::self()->registerCallable(context->argument(0)));
        return true;
    });
    define("invoke", [](ScriptContext* context) {
        context->setBoolResult(
            Interpreter::self()->invokeCallable(context->argument(0)->toString()));
        return true;
    });
    EXPECT_EQ(run("let count = 0;\nconst on = () => { count++; }, other = () => {};\n"
                  "const id = register(on);\n"
                  "test.verify(id === register(on) && id !== register(other));\n"
                  "test.verify(invoke(id) && count === 1)"),
              "");
    for (const QString& each : results())
        EXPECT_TRUE(each.startsWith("10 ")) << qPrintable(each);
}

TEST_F(JavaScriptValues, CodeThatIsHandedOverSeesTheCallersNames) {
    define("condition", [](ScriptContext* context) {
        QString error;
        const bool value = context->evaluateCondition(context->argument(0)->toString(), &error);
        s_seen.append(error.isEmpty() ? QString(value ? "true" : "false") : error);
        return true;
    });
    EXPECT_EQ(run(R"js(
const limit = 3;
function main(given) {
    let local = 5;
    condition("local > limit && given");
    condition("  !local ");
    condition("nothing");
    test.exception("local / (limit.x.y)");
    test.exception("function f(");
    test.exception("local = 6");
    test.exception(() => null.x);
    test.exception(async () => { await null; throw "late"; });
    condition("local == 6");
}
main(true);
)js"),
              "");
    EXPECT_EQ(s_seen,
              (QStringList{"true", "false", "ReferenceError: nothing is not defined", "true"}));
    const char* const invalid =
        "11 Exception: The code is not valid: SyntaxError: missing formal parameter";
    EXPECT_EQ(results(), (QStringList{"10 Exception: Raised TypeError: limit.x is undefined",
                                      invalid, "11 Exception: No exception was raised",
                                      "10 Exception: Raised TypeError: null has no properties",
                                      "10 Exception: Raised late"}));
}

}  // namespace
}  // namespace Tamrix
