// What a failed test.verify() tells of its condition.

#include "plugins/python/pythontest.h"

namespace Tamrix {
namespace {

using namespace Test;

class PythonConditions : public PythonTest {
protected:
    /// The explanation of the only verdict in a script that is on disk.
    QString explained(const QString& call) {
        const QString text = R"py(
class Thing:
    def __init__(self):
        self.name, self.rows = 'n', [1, 2]
        self.calls = 0
    def count(self):
        self.calls += 1
        return self.calls
    @property
    def gone(self): raise ValueError()
    def __repr__(self): return 'Thing'
def main():
    thing, wanted, zero = Thing(), 'w', 0
    long = 'x' * 500
    )py" + call + R"py(
    calls.append(thing.calls)
calls = []
main()
)py";
        report.entries.clear();
        EXPECT_TRUE(writeFile(script(), text.toUtf8()));
        EXPECT_EQ(run(text), "") << qPrintable(call);
        EXPECT_EQ(report.results().size(), 1u) << qPrintable(call);
        return report.results().empty() ? QString() : report.results().front().explanation;
    }
};

TEST_F(PythonConditions, TextAndValues) {
    const struct {
        const char* call;
        const char* explanation;
    } rows[] = {
        {"test.verify(zero)", "zero\nzero: 0"},
        {"test.verify(thing.name == wanted and zero > 1, 'comment')",
         "thing.name == wanted and zero > 1\nthing.name: 'n'\nwanted: 'w'\nzero: 0"},
        {"test.verify(comment='c', condition=not thing.rows)",
         "not thing.rows\nthing.rows: [1, 2]"},
        {"test.verify(len(thing.rows) == thing.rows[1] + 1)",
         "len(thing.rows) == thing.rows[1] + 1\nlen(thing.rows): 2\nthing.rows[1]: 2"},
        {"test.verify(thing.name ==\n            'ä' +   wanted)",
         "thing.name == 'ä' + wanted\nthing.name: 'n'\nwanted: 'w'"},
        {"test.verify('ä  ä' == 'ö', 'two'); wanted", "'ä  ä' == 'ö'"},
        // Calls are made once only, and what can't be had is left out.
        {"test.verify(thing.count() > zero + 1)",
         "thing.count() > zero + 1\nthing: Thing\nzero: 0"},
        {"test.verify(zero or (lambda: False)() or [r for r in thing.rows if r > 2])",
         "zero or (lambda: False)() or [r for r in thing.rows if r > 2]\nzero: 0"},
        {"test.verify(zero and thing.gone)", "zero and thing.gone\nzero: 0"},
        {"test.verify(zero == 1 == zero)", "zero == 1 == zero\nzero: 0"},
        {"test.xverify(wanted)", "wanted\nwanted: 'w'"},
        // Nothing to tell.
        {"test.verify(False)", ""},
        {"test.verify(wanted)", ""},
        {"test.xverify(zero)", ""},
        {"list(map(test.verify, [zero]))", ""},
        {"eval('test.verify(zero)')", ""},
        {"check = test.verify; check(*[zero])", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(explained(row.call), QString::fromUtf8(row.explanation)) << row.call;
    EXPECT_EQ(explained("test.verify(long == zero)").split('\n').value(1),
              "long: '" + QString(199, 'x') + "...");
    EXPECT_EQ(explained("test.verify(thing.count() > 1)").section('\n', 0, 0), "thing.count() > 1");
    EXPECT_EQ(run("assert calls == [1], calls"), "");
}

TEST_F(PythonConditions, AnotherFileTellsNothing) {
    ASSERT_TRUE(writeFile(script(), "nothing that fits\n"));
    EXPECT_EQ(run("zero = 0\n\ntest.verify(zero)\n"), "");
    ASSERT_TRUE(writeFile(script(), "\n\n)(]~~~~~~~~~~~~~~\n"));
    EXPECT_EQ(run("zero = 0\n\ntest.verify(zero)\n"), "");
    QFile::remove(script());
    EXPECT_EQ(run("zero = 0\n\ntest.verify(zero)\n"), "");
    for (const ResultAdded& entry : report.results())
        EXPECT_EQ(entry.explanation, "");
    EXPECT_EQ(results().value(0), "11 Not verified: False expression");
}

}  // namespace
}  // namespace Tamrix
