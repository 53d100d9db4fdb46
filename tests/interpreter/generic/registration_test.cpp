#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include "interpreter/bridge/librarynames.h"
#include "support/fakelanguage.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::compareWithGolden;

/// Writes down what is registered, in order.
struct ListingContext : Test::FakeContext {
    void addGlobalFunction(const QString& name, Function function) override {
        names.append(name);
        FakeContext::addGlobalFunction(name, function);
    }
    void addStaticMemberFunction(const QString& className, const QString& name,
                                 Function function) override {
        names.append(className + "." + name);
        FakeContext::addStaticMemberFunction(className, name, function);
    }
    void addMemberFunction(const QString& className, const QString& name, Function) override {
        names.append(className + "->" + name);
    }
    QStringList names;
};

/// What help() shows of a function: its parameters, those that can be left out in brackets, and its
/// sentence.
QString described(const QString& name) {
    const auto description =
        ScriptContext::functionDescription(QString(name).replace(".", "::").replace("->", "::"));
    QStringList parameters = description.requiredParameters;
    for (const QString& optional : description.optionalParameters)
        parameters += "[" + optional + "]";
    return QStringLiteral("%1(%2): %3").arg(name, parameters.join(", "), description.text);
}

TEST(Registration, RegistersWhatThereIsInOrder) {
    ListingContext context;
    context.initFunctions();
    const QStringList first = context.names;
    QString listing;
    for (const QString& name : first) {
        const QString line = described(name);
        EXPECT_FALSE(line.endsWith("): ")) << "without a sentence: " << qPrintable(name);
        listing += line + "\n";
    }
    EXPECT_TRUE(compareWithGolden("generic/functions.txt", listing));

    EXPECT_TRUE(ScriptContext::hasGlobalFunction("source"));
    EXPECT_EQ(context.tryCall("objectMap", "none"), 2);

    context.names.clear();
    context.initFunctions();
    EXPECT_EQ(context.names, first);
}

TEST(Registration, AllGlobalNamesAreLibraryNames) {
    const QStringList all = libraryNames();
    ListingContext context;
    context.initFunctions();
    Tamrix::Test::FakeInterpreter interpreter(nullptr, Interpreter::Tcl);
    interpreter.initNativeAPI();
    for (const auto& nativeClass : interpreter.nativeClasses)
        context.names.append(nativeClass.name);
    for (const QString& name : qAsConst(context.names)) {
        const bool isMember = name.contains("->");
        EXPECT_TRUE(isMember || all.contains(name.section('.', 0, 0))) << qPrintable(name);
    }
    EXPECT_TRUE(all.contains("click")) << "of applications";
}

TEST(Registration, ArgumentsHaveTheNamesThatAreDocumented) {
    ListingContext().initFunctions();
    QFile document(TAMRIX_TEST_SOURCE_DIR "/docs/scripts.md");
    ASSERT_TRUE(document.open(QIODevice::ReadOnly));
    // Calls with plain arguments in the first column of a table: `object.children(object)`.
    const QRegularExpression call("`([\\w.]+)\\(([\\w=, ]*)\\)`");
    int checked = 0;
    for (const QString& line : QString::fromUtf8(document.readAll()).split('\n')) {
        if (!line.startsWith("| `"))
            continue;
        auto found = call.globalMatch(line.section(" | ", 0, 0));
        while (found.hasNext()) {
            const QRegularExpressionMatch match = found.next();
            const auto description =
                ScriptContext::functionDescription(match.captured(1).replace(".", "::"));
            const QStringList known =
                description.requiredParameters + description.optionalParameters;
            if (description.text.isEmpty())
                continue;
            for (const QString& argument : match.captured(2).split(", ", Qt::SkipEmptyParts))
                EXPECT_TRUE(known.contains(argument.section('=', 0, 0)))
                    << qPrintable(match.captured(0)) << ": " << qPrintable(known.join(' '));
            ++checked;
        }
    }
    EXPECT_GT(checked, 30);
}

}  // namespace
}  // namespace Tamrix
