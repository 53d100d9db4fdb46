#include "plugins/python/pythontest.h"
#include "support/inmemorymodel.h"

namespace Tamrix {
namespace {

using namespace Test;
using ListOfArguments = ScriptArgument::List;

class PythonValues : public PythonTest {
protected:
    PythonValues() {
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
            {"like", value->isStringLike()},   {"object", value->isObject()},
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

TEST_F(PythonValues, AreSeenForWhatTheyAre) {
    EXPECT_EQ(run(R"py(
import datetime, decimal
for value in (None, True, 7, -2**63, 1.5, 'text', '\U0001F600', b'ab', [1, 2], (1,), {'a': 1}, {1},
              datetime.datetime(2026, 1, 2, 3, 4, 5), decimal.Decimal('1.10'), len, int):
    describe(value)
)py"),
              "");
    EXPECT_EQ(s_seen,
              (QStringList{"NoneType|None", "bool bool true|True", "int number integer true|7",
                           "int number integer true|-9223372036854775808", "float number true|1.5",
                           "str string like true|text",
                           QString::fromUtf8("str string like true|\xF0\x9F\x98\x80"),
                           "bytes true|b'ab'", "list list true|[1, 2]", "tuple list true|(1,)",
                           "dict map true|{'a': 1}", "set true|{1}",
                           "datetime true|2026-01-02 03:04:05", "Decimal number true|1.10",
                           "builtin_function_or_method callable true|<built-in function len>",
                           "type callable true|<class 'int'>"}));
}

TEST_F(PythonValues, PassThroughUnchanged) {
    EXPECT_EQ(run(R"py(
marker = object()
for value in (None, True, 2**63 - 1, 1.5, 'a\udc80\0z', [marker], {'k': marker}, marker):
    assert same(value) is value, value
)py"),
              "");
}

TEST_F(PythonValues, ConvertAsTheLanguageDoes) {
    define("convert", [](ScriptContext* context) {
        const SharedPtr<ScriptArgument> value = context->argument(0);
        s_seen.append(QStringLiteral("%1 %2").arg(value->toInt()).arg(value->toDouble()));
        return true;
    });
    EXPECT_EQ(run("for v in (3, 2.9, -2.9, True, 'x', None, 2**62): convert(v)"), "");
    EXPECT_EQ(s_seen, (QStringList{"3 3", "2 2.9", "-2 -2.9", "1 1", "0 0", "0 0",
                                   "4611686018427387904 4.61169e+18"}));
    EXPECT_EQ(run("convert(2**63)"),
              "OverflowError: int of 64 bits is too large: only 64 bits can be passed on");
    EXPECT_EQ(run("convert(float('nan'))"), "ValueError: cannot convert float NaN to integer");
    EXPECT_EQ(run("convert(1e300)"),
              "OverflowError: int of 997 bits is too large: only 64 bits can be passed on");
}

TEST_F(PythonValues, ComeBackAsPythonsOwn) {
    struct {
        std::function<void(ScriptContext*)> given;
        const char* expected;
    } const rows[] = {
        {[](auto* c) { c->setNullResult(); }, "None"},
        {[](auto* c) { c->setBoolResult(true); }, "True"},
        {[](auto* c) { c->setIntegerResult(-5); }, "-5"},
        {[](auto* c) { c->setInt64Result(1LL << 62); }, "4611686018427387904"},
        {[](auto* c) { c->setDoubleResult(0.5); }, "0.5"},
        {[](auto* c) { c->setStringResult(QString(QChar(0xdc80))); }, "'\\udc80'"},
        {[](auto* c) {
             c->setDateTimeResult(QDateTime({2026, 1, 2}, {3, 4, 5, 678}));
         },
         "datetime.datetime(2026, 1, 2, 3, 4, 5, 678000)"},
        {[](auto* c) {
             c->setListResult({"a", "b"});
         },
         "['a', 'b']"},
        {[](auto* c) {
             c->setMapResult({{"b", 1}, {"a", "x"}});
         },
         "{'a': 'x', 'b': '1'}"},
        {[](auto* c) { c->setObjectListResult({nullptr}); }, "[None]"},
        {[](auto* c) {
             c->setStackTraceResult({{"a.py", 3}, {QString(), -1}});
         },
         "[tamrix.Location(fileName='a.py', line=3)]"},
        {[](auto*) {}, "None"},
    };
    for (const auto& row : rows) {
        s_given = row.given;
        EXPECT_EQ(run("describe(repr(give()))"), "");
        EXPECT_EQ(s_seen.last(), QString("str string like true|") + row.expected);
    }
}

TEST_F(PythonValues, ObjectsOfTheModel) {
    InMemoryModel model;
    const auto button = model.addObject("Button", "ok");
    s_given = [&](ScriptContext* context) { context->setObjectResult(button); };
    define("isTheButton", [](ScriptContext* context) {
        context->setStringResult(context->argument(0)->toObject()->realName());
        return true;
    });
    EXPECT_EQ(run(R"py(
import tamrix
one, two = give(), give()
assert one == two and one is not two and len({one, two}) == 1
assert one != 5 and type(one) is tamrix.Object
assert isTheButton(one) == repr(one) == "{name='ok' type='Button'}"
try:
    tamrix.Object()
except TypeError:
    describe('refused')
)py"),
              "");
    EXPECT_EQ(s_seen.size(), 1);
    EXPECT_EQ(run("del one, two"), "");
}

TEST_F(PythonValues, ApplicationContextsAndDataSets) {
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
    EXPECT_EQ(run("application = give()\nassert idOf(application) == 4\n"
                  "assert \"AUT 'app'\" in repr(application) and application == give()"),
              "");

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
    EXPECT_EQ(run(R"py(
table = give()
assert len(table) == 3 and [r["price"] for r in table] == ['0', '10', '']
assert list(table[2]) == ['short', ''] and table[2][1] == ''
assert table[1][0] == table[-2][-2] == 'item1' and list(table[0]) == ['item0', '0']
assert setAndRow(table, table[1]) and not setAndRow(table, 5)
row = table[1]
del table
assert row["name"] == 'item1'
for wrong in (lambda: row["none"], lambda: row[2], lambda: give()[3]):
    try:
        wrong()
    except (KeyError, IndexError) as error:
        describe(repr(error))
)py"),
              "");
    EXPECT_EQ(s_seen.size(), 3);
    EXPECT_EQ(run("del row, application"), "");
}

TEST_F(PythonValues, CallablesAreCalled) {
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
    define("register", [](ScriptContext* context) {
        context->setStringResult(Interpreter::self()->registerCallable(context->argument(0)));
        return true;
    });
    define("unregister", [](ScriptContext* context) {
        context->setStringResult(Interpreter::self()->unregisterCallable(context->argument(0)));
        return true;
    });
    EXPECT_EQ(run("callTwice(lambda n: same(n) + 40)\ncallTwice(lambda n: 1 / n)"), "");
    EXPECT_EQ(s_seen, (QStringList{"40", "41", "kept", "error ZeroDivisionError: division by zero",
                                   "1.0", "kept"}));

    EXPECT_EQ(run(R"py(
class Handler:
    count = 0
    def on(self):
        self.count += 1
handler, other = Handler(), Handler()
identifier = register(handler.on)
assert identifier == register(handler.on) != register(other.on)
)py"),
              "");
    define("invoke", [](ScriptContext* context) {
        const QString identifier = context->argument(0)->toString();
        context->setBoolResult(Interpreter::self()->invokeCallable(identifier));
        return true;
    });
    EXPECT_EQ(run("assert invoke(identifier) and handler.count == 1\n"
                  "assert unregister(handler.on) == identifier and unregister(handler.on) == ''"),
              "");
}

TEST_F(PythonValues, ArgumentsOutliveTheirCallOnlyWhereTheyAreKept) {
    static std::vector<SharedPtr<ScriptArgument>> s_kept;
    define("keep", [](ScriptContext* context) {
        if (context->argumentCount() > 0)
            s_kept.push_back(context->argument(0));
        context->setIntegerResult(context->argumentCount());
        return true;
    });
    define("fail", [](ScriptContext* context) {
        context->setError("it failed");
        return false;
    });
    EXPECT_EQ(run(R"py(
import weakref
counts = [keep('first'), keep('next', 2), keep(), keep('third', 2, 3), same('lost') and keep('last')]
assert counts == [1, 2, 0, 3, 1]
class Given: pass
for function in (same, fail):
    given = Given()
    there = weakref.ref(given)
    try:
        assert function(given) is given
    except RuntimeError as error:
        assert str(error) == 'it failed'
    del given
    assert there() is None
)py"),
              "");
    QStringList kept;
    for (const SharedPtr<ScriptArgument>& each : s_kept)
        kept.append(each->toString());
    s_kept.clear();
    EXPECT_EQ(kept, (QStringList{"first", "next", "third", "last"}));
}

TEST_F(PythonValues, CodeThatIsHandedOverSeesTheCallersNames) {
    define("condition", [](ScriptContext* context) {
        QString error;
        const bool value = context->evaluateCondition(context->argument(0)->toString(), &error);
        s_seen.append(error.isEmpty() ? QString(value ? "true" : "false") : error);
        return true;
    });
    EXPECT_EQ(run(R"py(
limit = 3
def main():
    local = 5
    condition("local > limit")
    condition("  not local ")
    condition("nothing")
    test.exception("local / (limit - 3)")
    test.exception("def f(")
    test.exception(main, 'recursion' if limit == 0 else 'depth') if limit == 0 else None
main()
)py"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"true", "false", "NameError: name 'nothing' is not defined"}));
    EXPECT_EQ(results().at(0), "10 Exception: Raised ZeroDivisionError: division by zero");
    EXPECT_TRUE(results().at(1).startsWith("11 Exception: The code is not valid: SyntaxError"));
}

}  // namespace
}  // namespace Tamrix
