#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <memory>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "platform/testresult/testresult.h"
#include "support/environmentguard.h"
#include "support/fakerunner.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix::Test {

/// A Tcl interpreter of the built plug-in, whose scripts call native functions of the test.
class TclTest : public testing::Test {
protected:
    TclTest() {
        const ScriptLanguagePlugin plugin("tamrixtcl");
        EXPECT_EQ(plugin.lastErrorMessage(), "");
        interpreter.reset(plugin.interpreter(&runner));
        interpreter->initTestFunctions(&result);
        Interpreter::setSelf(interpreter.get());
        s_seen.clear();
    }
    ~TclTest() override {
        interpreter.reset();
        Interpreter::setSelf(nullptr);
    }

    /// Makes a native function known to scripts.
    void define(const char* name, bool (*function)(ScriptContext*),
                const QStringList& required = {}, const QStringList& optional = {}) {
        interpreter->addNativeFunction(name, function, required, optional,
                                       "A function of the test");
    }

    /// Runs script text; the text of the error, empty on success.
    QString run(const QString& text) {
        return interpreter->evaluate(text, script()) ? QString() : interpreter->errorMessage();
    }
    bool call(const char* name) { return interpreter->callFunction(name, ObjectList()); }

    QString script() const { return folder.filePath("test.tcl"); }

    /// Results as "type message: detail".
    QStringList results() const {
        QStringList lines;
        for (const ResultAdded& entry : report.results())
            lines.append(
                QStringLiteral("%1 %2: %3").arg(entry.type).arg(entry.message, entry.detail));
        return lines;
    }

    /// Lines of the last error's stack, innermost first.
    std::vector<int> lines() const {
        std::vector<int> found;
        for (const LineInfo& position : interpreter->errorCallStack())
            found.push_back(position.lineNumber());
        return found;
    }

    /// What native functions of the tests have noted.
    inline static QStringList s_seen;

    QTemporaryDir folder;
    EnvironmentGuard prefix{"TAMRIX_PREFIX", TAMRIX_TEST_PREFIX};
    FakeRunner runner;
    RecordingReport report;
    TestResult result{&report};
    std::unique_ptr<Interpreter> interpreter;
};

}  // namespace Tamrix::Test
