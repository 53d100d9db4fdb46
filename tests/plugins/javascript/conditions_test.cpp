// What a failed test.verify() tells of its condition.

#include "plugins/javascript/javascripttest.h"

namespace Tamrix {
namespace {

using namespace Test;

class JavaScriptConditions : public JavaScriptTest {
protected:
    /// The explanation of the only verdict of a call in a script.
    QString explained(const QString& call) {
        const QString text = R"js(
class Thing {
    name = "n";
    rows = [1, 2];
    calls = 0;
    count() { return ++this.calls; }
    get gone() { throw new Error("gone"); }
}
const thing = new Thing(), wanted = "w", zero = 0, long = "x".repeat(500);
function run() {
    )js" + call + R"js(
    if (thing.calls > 1)
        throw new Error("called twice");
}
run();
)js";
        report.entries.clear();
        // Names of another script are another script's.
        interpreter->setScriptArguments(script(), {});
        EXPECT_EQ(run(text), "") << qPrintable(call);
        EXPECT_EQ(report.results().size(), 1u) << qPrintable(call);
        return report.results().empty() ? QString() : report.results().front().explanation;
    }
};

TEST_F(JavaScriptConditions, TextAndValues) {
    const struct {
        const char* call;
        const char* explanation;
    } rows[] = {
        {"test.verify(zero)", "zero\nzero: 0"},
        {"test.verify(thing.name === wanted && zero > 1, 'comment')",
         "thing.name === wanted && zero > 1\nthing.name: 'n'\nwanted: 'w'\nzero: 0"},
        {"test.verify(!thing.rows)", "!thing.rows\nthing.rows: [1, 2]"},
        {"test.verify(thing.rows.length === thing['rows'][1] + 1)",
         "thing.rows.length === thing['rows'][1] + 1\nthing.rows.length: 2\nthing['rows'][1]: 2"},
        {"test.verify(Math.max(zero, 2) === Number(wanted))",
         "Math.max(zero, 2) === Number(wanted)\nMath.max(zero, 2): 2\nNumber(wanted): NaN"},
        {"test\n        .verify(thing.name ===\n            'ä' +   wanted)",
         "thing.name === 'ä' +   wanted\nthing.name: 'n'\nwanted: 'w'"},
        {"test.verify('ä )  ä' == 'ö(', 'two'); wanted", "'ä )  ä' == 'ö('"},
        // The parser forgets brackets.
        {"test.verify(((zero || wanted) == 1) && (thing.rows[zero]))",
         "((zero || wanted) == 1) && (thing.rows[zero])\nzero: 0\nwanted: 'w'\nthing.rows[zero]: "
         "1"},
        // Calls are made once only, and what can't be had is left out.
        {"test.verify(thing.count() > zero + 1)",
         "thing.count() > zero + 1\nthing: Thing {name: 'n', rows: [1, 2], calls: 1}\nzero: 0"},
        {"test.verify(zero || (() => false)() || thing.rows.filter(r => r > 2).length)",
         "zero || (() => false)() || thing.rows.filter(r => r > 2).length\nzero: 0\n"
         "thing.rows: [1, 2]"},
        {"test.verify(zero && thing.gone)", "zero && thing.gone\nzero: 0"},
        {"test.verify(`${wanted}` === (thing?.rows?.[0] ? 1 : 2))",
         "`${wanted}` === (thing?.rows?.[0] ? 1 : 2)\nwanted: 'w'\nthing?.rows?.[0]: 1"},
        {"test.xverify(wanted)", "wanted\nwanted: 'w'"},
        {"eval('test.verify(zero)')", "zero\nzero: 0"},
        {"const check = test.verify; check(zero > 1)", "zero > 1\nzero: 0"},
        // Nothing to tell.
        {"test.verify(false)", ""},
        {"test.verify(undefined)", ""},
        {"test.verify(wanted)", ""},
        {"test.xverify(zero)", ""},
        {"Reflect.apply(test.verify, null, [zero])", ""},
        {"test.verify(...[zero])", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(explained(row.call), QString::fromUtf8(row.explanation)) << row.call;
    EXPECT_EQ(explained("test.verify(long == zero)").split('\n').value(1),
              "long: '" + QString(199, 'x') + "...");
}

TEST_F(JavaScriptConditions, InAModule) {
    EXPECT_EQ(run("await null;\nexport const zero = 0;\ntest.verify(zero > 1);\n"), "");
    EXPECT_EQ(report.results().front().explanation, "zero > 1\nzero: 0");
}

}  // namespace
}  // namespace Tamrix
