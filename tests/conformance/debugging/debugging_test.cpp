// An editor debugs scripts in every language, over the Debug Adapter Protocol: the same scripts,
// written in each, are stopped, looked into and stepped at the same places.

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "support/dapclient.h"
#include "support/dapprocess.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

/// What the scripts of a folder beside this file look like. They have marks such as "@body" at the
/// ends of lines where something stops.
struct Debugged {
    /// Of the files, and the folder's name.
    const char* suffix;
    const char* plugin;
    /// Holds at the second element of the list, where the total is 2.
    const char* condition;
    /// The variables of the total and of the list, and the texts of their values.
    const char* total;
    const char* list;
    const char* listText;
    /// What stands below the list for its second element.
    const char* element;
    const char* elementText;
    /// Code that gives 5 there, and code that makes the total 10.
    const char* expression;
    const char* assignment;
    /// The variable that has the sum afterwards.
    const char* sum;
    /// Values that hold and that do not, in the language's own way, at a line of a feature file.
    const char* holding;
    const char* empty;
    /// Code that reads the number of pies in the step.
    const char* count;
};

constexpr Debugged languages[] = {
    {"js", "tamrixjavascript", "each.price > 2", "total", "list", "[{price: 2}, {price: 3}]", "1",
     "{price: 3}", "total + each.price", "total = 10", "sum", "[]", "0n", "context.count"},
    {"py", "tamrixpython-3", "each['price'] > 2", "total", "list", "[{'price': 2}, {'price': 3}]",
     "1", "{'price': 3}", "total + each['price']", "total = 10", "sum", "[0]", "{}", "context.count"},
};

class Debugging : public testing::TestWithParam<Debugged> {
protected:
    void SetUp() override {
        if (!QFileInfo::exists(
                QStringLiteral(TAMRIX_TEST_PREFIX "/lib/%1.so").arg(language.plugin)))
            GTEST_SKIP() << "There is no plug-in " << language.plugin;
        const QDir scripts(TAMRIX_TEST_SOURCE_DIR "/tests/conformance/debugging");
        for (const QString& name : {QStringLiteral("common"), QString(language.suffix)})
            copy(scripts.filePath(name));
    }

    void copy(const QString& source) {
        QDirIterator files(source, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            const QString target = path(QDir(source).relativeFilePath(file));
            ASSERT_TRUE(writeFile(target, readFile(file)));
            const QStringList lines = QString::fromUtf8(readFile(file)).split('\n');
            static const QRegularExpression s_mark(QStringLiteral("(@\\w+)$"));
            for (int line = 0; line < lines.size(); ++line) {
                const QRegularExpressionMatch mark = s_mark.match(lines.at(line));
                if (mark.hasMatch())
                    m_marks[mark.captured(1)] = {target, line + 1};
            }
        }
    }
    QString path(const QString& name) const {
        return QFileInfo(folder.path()).canonicalFilePath() + "/suite_shop/" + name;
    }
    /// Marks in the place of files and lines.
    QString marked(const QString& file, int line) const {
        for (auto it = m_marks.cbegin(); it != m_marks.cend(); ++it) {
            if (it->second == line && QFileInfo(it->first).fileName() == file)
                return it.key();
        }
        return QStringLiteral("%1:%2").arg(file).arg(line);
    }
    QString markedStop(const QString& stop) const {
        const QString place = stop.section(' ', 1);
        return stop.section(' ', 0, 0) + ' ' +
               marked(place.section(':', 0, 0), place.section(':', 1).toInt());
    }
    QString stop() { return markedStop(client.stop()); }
    QString after(const char* request) {
        client.body(request, {{"threadId", 1}});
        return stop();
    }
    /// The innermost place first.
    QString stack() {
        QStringList frames;
        for (const auto& each :
             client.body("stackTrace", {{"threadId", 1}})["stackFrames"].toArray()) {
            const QJsonObject frame = each.toObject();
            frames.append(
                marked(QFileInfo(frame["source"].toObject()["path"].toString()).fileName(),
                       frame["line"].toInt()));
        }
        return frames.join(' ');
    }
    QString evaluated(const char* code) {
        return client.body("evaluate", {{"expression", code}, {"context", "watch"}})["result"]
            .toString();
    }
    /// The text of a variable's value, or of its part's.
    QString value(const char* name, const char* part = nullptr) {
        QJsonValue variable = client.variables().value(name);
        if (part)
            variable =
                client.variables(variable.toObject()["variablesReference"].toInt()).value(part);
        return variable.toObject()["value"].toString();
    }
    void leave(int exitCode) {
        client.body("continue", {{"threadId", 1}});
        EXPECT_EQ(client.event("exited")["exitCode"].toInt(-1), exitCode);
        client.event("terminated");
        client.body("disconnect");
        EXPECT_EQ(process.exitCode(), 0) << process.errors().constData();
        EXPECT_TRUE(client.fitsProtocol());
    }
    void setBreakPoint(const char* mark, const char* condition) {
        const auto [file, line] = m_marks.value(mark);
        client.setBreakPoints(file, {QJsonObject{{"line", line}, {"condition", condition}}});
    }

    const Debugged& language = GetParam();
    QTemporaryDir folder;
    DapProcess process{
        TAMRIX_TEST_PREFIX "/bin/tamrixrunner", {"dap"}, {{"QT_QPA_PLATFORM", "offscreen"}}};
    DapClient client{process.stream()};

private:
    QMap<QString, QPair<QString, int>> m_marks;
};

TEST_P(Debugging, BreakPointsStepsAndVariables) {
    client.launch({{"suite", path("")}, {"cases", QJsonArray{"order"}}});
    setBreakPoint("@body", language.condition);
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray{"scriptError"}}});
    client.body("configurationDone");

    EXPECT_EQ(stop(), "breakpoint @body");
    EXPECT_EQ(stack(), "@body @call");
    EXPECT_EQ(value(language.total), "2");
    EXPECT_EQ(value(language.list), language.listText);
    EXPECT_EQ(value(language.list, language.element), language.elementText);
    EXPECT_EQ(evaluated(language.expression), "5");
    evaluated(language.assignment);
    EXPECT_EQ(after("next"), "step @head");
    EXPECT_EQ(after("next"), "step @return");
    EXPECT_EQ(after("stepOut"), "step @after");
    EXPECT_EQ(evaluated(language.sum), "13");
    EXPECT_EQ(after("stepIn"), "step @twice");
    EXPECT_EQ(stack(), "@twice @after");
    EXPECT_EQ(after("stepOut"), "step @compare");
    EXPECT_EQ(after("continue"), "exception @throw");
    EXPECT_TRUE(client.body("exceptionInfo", {{"threadId", 1}})["description"].toString().contains(
        "at last"));
    leave(1);
    EXPECT_FALSE(client.output("stderr").contains("the sum"))
        << qPrintable(client.output("stderr"));
}

TEST_P(Debugging, AFeatureFileAndItsSteps) {
    client.launch({{"suite", path("")}, {"cases", QJsonArray{"pies"}}});
    const QString feature = path("pies/test.feature");
    client.setBreakPoints(feature, {QJsonObject{{"line", 4}, {"condition", language.holding}},
                                    QJsonObject{{"line", 5}, {"condition", language.empty}}});
    client.body("configurationDone");

    EXPECT_EQ(stop(), "breakpoint test.feature:4");
    EXPECT_EQ(after("stepIn"), "step @eaten");
    EXPECT_EQ(stack(), "@eaten test.feature:4");
    EXPECT_EQ(evaluated(language.count), "2");
    leave(0);
}

INSTANTIATE_TEST_SUITE_P(, Debugging, testing::ValuesIn(languages),
                         [](const auto& row) { return std::string(row.param.suffix); });

}  // namespace
}  // namespace Tamrix
