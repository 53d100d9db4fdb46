#include "interpreter/bridge/interpreter.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/environmentguard.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/warningrecorder.h"

namespace Tamrix {
namespace {

using namespace Test;

class InterpreterTest : public testing::Test {
protected:
    ~InterpreterTest() override { Interpreter::setSelf(nullptr); }

    FakeRunner runner;
    FakeInterpreter interpreter{&runner, Interpreter::Perl};
};

struct CountingDebugger : Debugger {
    CountingDebugger() : Debugger(nullptr) {}
    VariableBindings variables(const QString&) override { return {}; }
    void shutDown() override {
        ++shutDowns;
        Debugger::shutDown();
    }
    int shutDowns = 0;
};

TEST_F(InterpreterTest, CurrentInterpreterAndDebuggerGoTogether) {
    CountingDebugger debugger;
    {
        FakeInterpreter other(nullptr, Interpreter::Tcl);
        EXPECT_EQ(Interpreter::self(), &other);
        EXPECT_EQ(Interpreter::currentRunner(), nullptr);
        other.setDebugger(&debugger);
        Interpreter::setSelf(&interpreter);
        EXPECT_EQ(Debugger::self(), nullptr);
        Interpreter::setSelf(&other);
        EXPECT_EQ(Debugger::self(), &debugger);
        Interpreter::setSelf(nullptr);
        EXPECT_EQ(Debugger::self(), nullptr);
        Interpreter::setSelf(&interpreter);
    }
    EXPECT_EQ(debugger.shutDowns, 1);
    // Also when another one was current.
    EXPECT_EQ(Interpreter::self(), nullptr);
}

TEST_F(InterpreterTest, ErrorPositionStandsInFrontOfTheStack) {
    const LineInfo inner("a.py", 3);
    const LineInfo outer("b.py", 9);
    EXPECT_TRUE(interpreter.errorCallStack().empty());
    EXPECT_EQ(interpreter.errorFile("fallback"), "fallback");

    interpreter.setErrorFile("a.py");
    interpreter.setErrorLine(3);
    interpreter.setErrorCallStack({LineInfo(), outer, LineInfo("x", -1), LineInfo("", 2)});
    EXPECT_EQ(interpreter.errorCallStack(), (CallStack{inner, outer}));
    EXPECT_EQ(interpreter.errorCallStack(), (CallStack{inner, outer}));
    interpreter.setErrorCallStack({inner, outer});
    EXPECT_EQ(interpreter.errorCallStack(), (CallStack{inner, outer}));

    interpreter.clearError();
    EXPECT_TRUE(interpreter.errorCallStack().empty());
    EXPECT_EQ(interpreter.errorLine(), -1);
}

TEST_F(InterpreterTest, Callables) {
    int calls = 0;
    FakeContext context;
    FakeContext other;
    ScriptContext::setCurrent(&context);
    const auto good = callable([&](const auto&, QString*) {
        ++calls;
        ScriptContext::setCurrent(&other);
        return integer(1);
    });
    const auto bad = callable([](const auto&, QString* error) {
        *error = "raised";
        return SharedPtr<ScriptArgument>();
    });
    const QString identifier = interpreter.registerCallable(good);
    EXPECT_TRUE(interpreter.isCallableAvailable(identifier));
    EXPECT_TRUE(interpreter.invokeCallable(identifier));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(ScriptContext::current(), &context);
    EXPECT_FALSE(interpreter.invokeCallable("Callable|0x0"));

    testing::internal::CaptureStderr();
    EXPECT_FALSE(interpreter.invokeCallable(interpreter.registerCallable(bad)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Callable invoke exception: raised\n");

    EXPECT_EQ(interpreter.unregisterCallable(good), identifier);
    EXPECT_EQ(interpreter.unregisterCallable(good), "");
    interpreter.clearCallables();
    EXPECT_EQ(bad->referenceCount(), 1);
    ScriptContext::setCurrent(nullptr);
}

TEST_F(InterpreterTest, SearchPathIsInOrder) {
    const QTemporaryDir folder;
    for (const char* name : {"shared", "global", "first", "refused"})
        QDir(folder.path()).mkdir(name);
    ASSERT_TRUE(writeFile(folder.filePath("file")));
    const auto path = [&](const char* name) { return folder.filePath(name); };
    const EnvironmentGuard settings("TAMRIX_USER_SETTINGS_DIR", path("settings"));
    ASSERT_TRUE(writeFile(path("settings/ver1/paths.ini"),
                          QString("[General]\nGlobalScriptDirs = \"%1/\",\"%2\"\n")
                              .arg(path("global"), path("file"))
                              .toUtf8()));
    const EnvironmentGuard scripts("TAMRIX_SCRIPT_DIR",
                                   path("first") + "::" + path("refused") + ":" + path("none"));
    WarningRecorder warnings;
    interpreter.addDefaultSearchPaths(QFileInfo(path("shared")));
    EXPECT_EQ(interpreter.searchPath,
              (QStringList{path("shared"), path("global"), path("first"), path("refused")}));
    ASSERT_EQ(warnings.messages().size(), 1);
    EXPECT_TRUE(warnings.messages().first().contains("it is refused"));
}

TEST_F(InterpreterTest, TellsWhereATypeIsKnown) {
    EXPECT_EQ(interpreter.formattedTypeError("Button"),
              "Type 'Button' is not known in any ApplicationContext");
    for (int id : {1, 2, 3}) {
        SharedPtr<ApplicationContext> context(new ApplicationContext);
        context->id = id;
        context->name = "app" + QString::number(id);
        context->pid = 100 + id;
        context->startTime = QDateTime({2026, 1, 2}, {3, 4, 5});
        runner.contexts.append(context);
    }
    runner.knownTypes = {{"Button", 1}, {"Button", 3}, {"Other", 2}};
    EXPECT_EQ(interpreter.formattedTypeError("Button"),
              "Type 'Button' is known in the following ApplicationContexts: "
              "AUT 'app1' (pid 101, started 2026-01-02T03:04:05); "
              "AUT 'app3' (pid 103, started 2026-01-02T03:04:05)");
    EXPECT_EQ(FakeInterpreter(nullptr, Interpreter::Tcl).formattedTypeError("Button"), "");
}

TEST_F(InterpreterTest, WarnsOnceOfADeprecatedMethod) {
    const Method method("click", Signature({Argument("int"), Argument("QString")}), "use tap");
    const QString arguments = "(" + joinArguments(method.signature(), ", ") + ")";
    testing::internal::CaptureStderr();
    logDeprecationWarning(nullptr, &method, arguments);
    logDeprecationWarning(&interpreter, &method, arguments);
    runner.ideMode = true;
    logDeprecationWarning(&interpreter, &method, arguments);
    logDeprecationWarning(&interpreter, &method, arguments);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "click(int, QString) is deprecated: use tap\n");
}

TEST_F(InterpreterTest, NamesOfItsOwn) {
    interpreter.initNativeAPI();
    QStringList classes;
    for (const auto& nativeClass : interpreter.nativeClasses) {
        classes.append(nativeClass.name);
        // The debugger's views leave the settings out.
        EXPECT_EQ(interpreter.isSelfDefinedVariableName(nativeClass.name),
                  nativeClass.name.endsWith("ettings"));
    }
    EXPECT_EQ(classes, QStringList({"testSettings", "Image", "Screenshot", "VideoCapture",
                                    "TesseractTestSettings", "OCRSpaceTestSettings"}));
    EXPECT_FALSE(interpreter.isSelfDefinedVariableName("testsettings"));
    const QStringList natives = interpreter.nativeFunctions.split('\n');
    EXPECT_EQ(natives.first(), "typeName(object; )");
    EXPECT_TRUE(natives.contains("highlightObject(object; timeoutms, block)"));
    EXPECT_TRUE(natives.contains("findFile(type, name; )"));
}

TEST(NativeScriptType, LaterEntriesReplaceEarlierOnes) {
    const auto first = [](ScriptContext*) { return true; };
    const auto second = [](ScriptContext*) { return false; };
    NativeScriptType type(nullptr, nullptr);
    type.setStaticMethod("f", first, {"a"}, {}, "old");
    type.setStaticMethod("f", second, {}, {"b"}, "new");
    ASSERT_EQ(type.staticMethods().size(), 1);
    EXPECT_EQ(type.staticMethods()["f"].function, +second);
    EXPECT_EQ(type.staticMethods()["f"].optionalParameters, QStringList("b"));

    NativeScriptNamespace names;
    names.setFunction("f", first, {}, {}, "");
    const auto before = names.functions();
    names.setFunction("g", second, {}, {}, "");
    EXPECT_EQ(before.size(), 1);
    EXPECT_EQ(names.functions().size(), 2);
}

}  // namespace
}  // namespace Tamrix
