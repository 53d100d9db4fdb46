// Every command of the line protocol with its answers, failures included, and every event.

#include <gtest/gtest.h>
#include <json/json.h>

#include <clocale>
#include <stdexcept>

#include "interpreter/bridge/internaldebugger.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/debugger/testdebugger.h"
#include "platform/objectmodel/inspector.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/golden.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"
#include "support/protocoldialogue.h"

namespace Tamrix {
namespace {

using namespace Test;

/// The runner of these tests, with what only the protocol asks of it.
class LaunchingRunner : public FakeRunner {
public:
    SharedPtr<ApplicationContext> startSpecialApplication(const QString& program,
                                                          const QMap<QString, QString>& options,
                                                          const QString&, int, int,
                                                          QString* error) override {
        QStringList words;
        for (auto option = options.cbegin(); option != options.cend(); ++option)
            words.append(option.key() + "=" + option.value());
        calls.append("special " + program + " {" + words.join(", ") + "}");
        *error = startError;
        return started;
    }
    using FakeRunner::startSpecialApplication;
    bool isRunning(SharedPtr<ApplicationContext>) override { return running; }
    bool running = false;
    void setImageSearchFixTarget(int target) override {
        calls.append("fix target " + QString::number(target));
    }
};

/// Evaluates a text to what it is in brackets; what begins with "fail" fails.
class EchoInterpreter : public FakeInterpreter {
public:
    explicit EchoInterpreter(RunnerInterface* runner) : FakeInterpreter(runner, Tcl) {}
    bool evaluate(const QString& text, const QString& fileName, int, int) override {
        calls.append(QString("evaluate %1 in '%2' in mode %3")
                         .arg(text, fileName, QString::number(Debugger::self()->debuggerMode())));
        setResultMessage(text.isEmpty() ? QString() : "[" + text + "]");
        setErrorMessage(text.startsWith("fail") ? resultMessage() : QString());
        return errorMessage().isEmpty();
    }
    QStringList calls;
};

class NumberSearch final : public InternalDebugger {
public:
    QString contextName() const override { return "NumberLookup"; }
    Json::Value getState() const override {
        Json::Value state;
        state["name"] = "\u00fc";
        state["number"] = number;
        return state;
    }
    void setState(const Json::Value& state) override {
        if (!state["number"].isInt())
            throw std::runtime_error("number must be an integer");
        number = state["number"].asInt();
    }
    int number = 1;
};

/// Shows one listing for each path.
class ListingDebugger : public Debugger {
public:
    using Debugger::Debugger;
    VariableBindings variables(const QString& path) override {
        if (path == "a b")
            return {{"a b.c", "str", ""}};
        if (!path.isEmpty())
            return {};
        return {{"+table", "dict", QString()},
                {"text", "a#type", "comma, hash # equals = slash \\ line\nend"},
                {"\u00fcn\u00ef", "str", "\u20ac"}};
    }
    void initVariableWatcher() override { ++watchers; }
    int watchers = 0;
};

class ProtocolCommands : public testing::Test {
protected:
    ProtocolCommands() {
        // The encoding of terminals, which an application takes from its environment.
        std::setlocale(LC_ALL, "C.UTF-8");
        interpreter.setDebugger(&debugger);
        Interpreter::setSelf(&interpreter);
        debugger.setCode(1, "/nowhere/a.py");
        debugger.setInteractive(true);
        for (const int line : {0, 20, 10, 3})
            debugger.pushFrameAndSetCurrent(line, 4, 1);
    }
    ~ProtocolCommands() override {
        debugger.shutDown();
        // The debugger goes first.
        interpreter.setDebugger(nullptr);
        Interpreter::setSelf(nullptr);
        TestSettingsType::reset();
        Inspector::self()->setModel(nullptr);
        std::setlocale(LC_ALL, "C");
    }

    /// What is said at a stop with these commands.
    QString said(const QStringList& commands) {
        dialogue->commands = commands;
        debugger.stop();
        return dialogue->take();
    }

    LaunchingRunner runner;
    EchoInterpreter interpreter{&runner};
    ListingDebugger debugger{&interpreter};
    std::unique_ptr<ProtocolDialogue> dialogue =
        std::make_unique<ProtocolDialogue>(debugger, ProtocolDialect::Machine);
};

TEST_F(ProtocolCommands, WhatLetsTheScriptGoOn) {
    const char* const lines[] = {"n",
                                 "next",
                                 "r",
                                 "return",
                                 "s",
                                 "step",
                                 "stop",
                                 "run",
                                 "c",
                                 "continue",
                                 "continue skipCurrentError",
                                 "continue skipCurrentError updateReferences names%20%3D%201",
                                 "continue updateReferences x skipCurrentError",
                                 "continue updateReferences",
                                 "continue other"};
    QString text;
    for (const char* line : lines) {
        for (const int depth : {4, 0}) {
            // Without a frame there is no stop, but a step of a feature may be missing.
            while (debugger.frameDepth() > depth)
                debugger.popFrame();
            while (debugger.frameDepth() < depth)
                debugger.pushFrame({1, 0, 1});
            debugger.next(7);
            interpreter.calls.clear();
            debugger.watchers = 0;
            dialogue->commands = QStringList{line, "s", "print line"};
            debugger.missingStep(9, "I am");
            dialogue->note(QString("depth %1: mode %2, step depth %3, skip %4, start %5, watchers "
                                   "%6, left %7 %8")
                               .arg(depth)
                               .arg(debugger.debuggerMode())
                               .arg(debugger.stepDepth())
                               .arg(debugger.skipCurrentError())
                               .arg(debugger.startFlag())
                               .arg(debugger.watchers)
                               .arg(dialogue->commands.size())
                               .arg(interpreter.calls.join("; ")));
            text += dialogue->take();
        }
    }
    EXPECT_TRUE(compareWithGolden("debugger/resume.txt", text));
}

TEST_F(ProtocolCommands, BreakPoints) {
    const QString text = said({"b",
                               "b a.py",
                               "b a.py:3 a.py:4",
                               "b C:/x.py",
                               "b C:\\\\x.py",
                               "b C:/x.py:3",
                               "b x.py:-1",
                               "b x.py:",
                               "b x.py:99999999999",
                               "b :3",
                               "b a.py:3",
                               "break /nowhere/a.py:0",
                               "b /nowhere/my\\ file\\x2c\\u20ac.py:12",
                               "d",
                               "d a.py",
                               "d a.py:x",
                               "delete a.py:4",
                               "delete a.py:3",
                               "d a.py:3",
                               "d /nowhere/my\\ file\\x2c\\u20ac.py:12"});
    EXPECT_TRUE(
        compareWithGolden("debugger/breakpoints.txt",
                          Normaliser().path(Debugger::sanitizedFilePath("."), "<HERE>")(text)));
    EXPECT_FALSE(debugger.hasBreakPoint(3, 1));
    EXPECT_TRUE(debugger.hasBreakPoint(0, 1));
    debugger.setCode(2, QString::fromUtf8("/nowhere/my file,\u20ac.py"));
    EXPECT_TRUE(debugger.hasBreakPoint(12, 2));
    debugger.setCode(3, "/elsewhere/b.py");
    said({"b c.py:5"});
    debugger.setCode(4, "/elsewhere/c.py");
    EXPECT_TRUE(debugger.hasBreakPoint(5, 4)) << "by its bare name, loaded later";
}

TEST_F(ProtocolCommands, WhereTheScriptStandsAndWhatItHolds) {
    const QStringList commands = {"print line",
                                  "p file",
                                  "p",
                                  "p other",
                                  "print variables",
                                  "print variables a b",
                                  "print variables  unknown",
                                  "bt",
                                  "backtrace",
                                  "eval 1%2B1%20%22%C3%BC%22",
                                  "print evaluation",
                                  "eval fail",
                                  "print evaluation",
                                  "eval",
                                  "eval a b",
                                  "eval %"};
    EXPECT_TRUE(compareWithGolden("debugger/inspection.txt", said(commands)));
    EXPECT_EQ(interpreter.calls.value(0),
              QString::fromUtf8("evaluate 1+1 \"\u00fc\" in '' in mode 0"));
    EXPECT_EQ(debugger.debuggerMode(), Debugger::Run) << "the mode of before";
    while (debugger.frameDepth() > 1)
        debugger.popFrame();
    EXPECT_EQ(said({"bt"}), "out|TDBG:@line 3, column 4, /nowhere/a.py:\n> bt\n");
}

TEST_F(ProtocolCommands, SwitchesOfWhatStops) {
    const struct {
        const char* argument;
        bool isOn;
    } rows[] = {{"", true}, {" false", false}, {" maybe", true}, {" FALSE", true}};
    for (const auto& row : rows) {
        for (const char* kind : {"Object", "Image", "Text"}) {
            const QString line = QString("enable%1NotFoundDebugging%2").arg(kind, row.argument);
            EXPECT_FALSE(said({line}).contains("> " + line + "\nout")) << "no answer";
        }
        EXPECT_EQ(debugger.objectNotFoundDebugging(), row.isOn) << row.argument;
        EXPECT_EQ(debugger.imageNotFoundDebugging(), row.isOn) << row.argument;
        EXPECT_EQ(debugger.textNotFoundDebugging(), row.isOn) << row.argument;
    }
    const QString text =
        said({"imageNotFoundFixTarget", "imageNotFoundFixTarget -1", "imageNotFoundFixTarget x",
              "imageNotFoundFixTarget 0", "imageNotFoundFixTarget 2", "imageSearchDefaults",
              "imageSearchDefaults threshold:95,tolerant:true",
              "imageSearchDefaults threshold:95, unknown:1", "imageSearchDefaults unknown:1",
              "imageSearchDefaults threshold:x", "breakOnMissingStep", "breakOnMissingStep a b",
              "breakOnMissingStep yes", "breakOnMissingStep true"});
    EXPECT_TRUE(compareWithGolden("debugger/switches.txt", text));
    EXPECT_EQ(runner.calls, (QStringList{"fix target 0", "fix target 2"}));
    EXPECT_TRUE(debugger.breakOnMissingStep());
}

TEST_F(ProtocolCommands, DefaultsOfTheImageSearchAreReplaced) {
    said({"imageSearchDefaults threshold:95,tolerant:true"});
    EXPECT_EQ(TestSettingsType::s_image.description(), "threshold: 95.000, tolerant: true");
    said({"imageSearchDefaults multiscale:true"});
    EXPECT_EQ(TestSettingsType::s_image.description(), "multiscale: true") << "as a whole";
}

TEST_F(ProtocolCommands, TheSearchBehindTheStop) {
    QString text = said({"getInterpreterStateFor", "getInterpreterStateFor NumberLookup",
                         "setInterpreterStateFor", "setInterpreterStateFor NumberLookup",
                         "setInterpreterStateFor NumberLookup %7B%7D"});
    NumberSearch search;
    debugger.setInternalDebugger(&search);
    const QString deep = QString("%5B").repeated(5000);
    text +=
        said({"getInterpreterStateFor OtherLookup", "getInterpreterStateFor NumberLookup more",
              "setInterpreterStateFor OtherLookup %7B%7D",
              "setInterpreterStateFor NumberLookup {\"number\":7,}",
              "setInterpreterStateFor NumberLookup [7]", "setInterpreterStateFor NumberLookup 7",
              "setInterpreterStateFor NumberLookup {\"number\":\"7\"}"});
    EXPECT_EQ(search.number, 1);
    text += said({"setInterpreterStateFor NumberLookup %7B%22number%22:7%7D",
                  "getInterpreterStateFor NumberLookup"});
    EXPECT_EQ(search.number, 7);
    EXPECT_TRUE(compareWithGolden("debugger/searchstate.txt", text));
    EXPECT_TRUE(said({"setInterpreterStateFor NumberLookup " + deep}).contains("Invalid JSON: "))
        << "too deep";
}

TEST_F(ProtocolCommands, LaunchingApplications) {
    const QStringList commands = {
        "launchApplication",
        "launchApplication StartApplication",
        "launchApplication StartApplication a b",
        "launchApplication StartApplication calculator%20--large",
        "launchApplication AttachApplication addressbook",
        "launchApplication ConnectToVNC host=h;;=x;y;VncPasswordKey=key;port=1=2",
        "launchApplication ConnectToVNC %3B",
        "launchApplication Other x",
        "launchApplication LoadUrl http%3A//x/"};
    TestSettingsType::s_passwords = {{"key", "secret"}};
    QString text = said(commands);
    dialogue->note("No text of the failure, no password");
    TestSettingsType::s_passwords.clear();
    runner.startError.clear();
    text += said(commands.mid(3, 3));
    dialogue->note("An application");
    runner.started = SharedPtr<ApplicationContext>(new ApplicationContext);
    text += said(commands.mid(3, 2));
    runner.running = true;
    text += said(commands.mid(3, 3));
    dialogue->note(runner.calls.join("\n-- "));
    EXPECT_TRUE(compareWithGolden("debugger/launch.txt", text + dialogue->take()));
}

TEST_F(ProtocolCommands, OpeningAPage) {
    // A page is opened when there is no text to give back.
    const struct {
        QVariant result;
        const char* answer;
    } rows[] = {{true, "out|TDBG:launchApplicationrunning\n"},
                {"no browser", "out|TDBG:launchApplicationfailed: no browser\n"}};
    for (const auto& row : rows) {
        InMemoryModel model;
        Inspector::self()->setModel(&model);
        model.editableGlobalClass()->addMethod("startBrowser", Signature({Argument("QString")}));
        model.onCall = [&](const SharedPtr<Object>&, const QString&, const ObjectList& arguments) {
            EXPECT_EQ(arguments.at(0)->toVariant().toString(), "http://x/");
            return Outcome<SharedPtr<Object>>(Inspector::self()->createObject(row.result));
        };
        EXPECT_TRUE(said({"launchApplication LoadUrl http%3A//x/"}).endsWith(row.answer));
        Inspector::self()->setModel(nullptr);
    }
}

TEST_F(ProtocolCommands, WhatIsNoCommand) {
    EXPECT_TRUE(compareWithGolden("debugger/unknown.txt",
                                  said({"", "   ", "Next", "  next2   please ", "\tprint\tline ",
                                        "help", QString::fromUtf8("\u00fc")})));
}

TEST_F(ProtocolCommands, WhatIsToldUnasked) {
    tamrix_hl_debugger = true;
    debugger.setInteractive(false);
    for (const ProtocolDialect dialect : {ProtocolDialect::Machine, ProtocolDialect::Terminal}) {
        dialogue.reset();
        dialogue = std::make_unique<ProtocolDialogue>(debugger, dialect);
        debugger.stop();
        debugger.stopWithObjectName("", "no name, so a line");
        debugger.stopWithObjectName("{a='1,#2\\\n'}", "");
        debugger.stopWithObjectName(
            "n", QString::fromUtf8("tab\t \"q\" \\ \n \x7f \r \u00e4 \u20ac ~,=#"));
        debugger.stopWithSearchImage("a=b", 3, "/tmp/x,y.png");
        debugger.stopWithSearchText("/tmp/#.png");
        debugger.missingStep(12, "I am, #1 \\");
        debugger.notify("a=b", "c,d\ne");
        debugger.stopAndRun();
        EXPECT_TRUE(compareWithGolden(dialect == ProtocolDialect::Machine
                                          ? "debugger/events.txt"
                                          : "debugger/events-terminal.txt",
                                      dialogue->take()));
    }
    tamrix_hl_debugger = false;
}

TEST_F(ProtocolCommands, APersonSeesThePositionInFrontOfEachCommand) {
    dialogue.reset();
    dialogue = std::make_unique<ProtocolDialogue>(debugger, ProtocolDialect::Terminal, true);
    EXPECT_TRUE(compareWithGolden(
        "debugger/terminal.txt",
        said({"b a.py:7", "b a.py", "d a.py:8", "print variables", "bt", "eval x", "foo", "s"})));
}

TEST_F(ProtocolCommands, QuitStopsApplicationsAndEndsTheProcess) {
    class StoppedContext : public ApplicationContext {
    public:
        void stop(const QString& message) override {
            std::fprintf(stderr, "%s;", message.toLocal8Bit().constData());
        }
    };
    class Word : public CommandInput {
    public:
        explicit Word(const char* word) : m_word(word) {}
        Line readLine(const std::string&) override { return {End::None, m_word}; }

    private:
        const char* m_word;
    };
    runner.contexts = {new StoppedContext, new StoppedContext};
    dialogue.reset();
    for (const char* word : {"q", "quit", "exit"}) {
        EXPECT_EXIT(
            {
                debugger.setFrontEnd(std::make_unique<LineProtocol>(
                    ProtocolDialect::Machine,
                    ProtocolSurroundings{std::make_unique<Word>(word),
                                         [] { std::fputs("about to quit", stderr); },
                                         {}}));
                debugger.stop();
            },
            testing::ExitedWithCode(0), "^Stopped by the user;Stopped by the user;about to quit$");
    }
}

}  // namespace
}  // namespace Tamrix
