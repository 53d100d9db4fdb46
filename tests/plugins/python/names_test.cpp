#include <stdexcept>

#include "plugins/python/pythontest.h"

namespace Tamrix {
namespace {

using namespace Test;

class PythonNames : public PythonTest {};

TEST_F(PythonNames, HelpAndSignatures) {
    EXPECT_EQ(run(R"py(
import inspect, pydoc
assert str(inspect.signature(test.compare)) == '(value1, value2, comment=None)'
text = pydoc.render_doc(test.compare, renderer=pydoc.plaintext)
assert 'Passes when both values are equal' in text, text
assert 'compare(value1, value2' in pydoc.render_doc(test, renderer=pydoc.plaintext)
assert 'pass_' in dir(test) and 'pass' not in dir(test)
assert findFile.__doc__ == 'Finds a script or testdata file'
assert inspect.isbuiltin(source) and test.pass_.__name__ == 'pass_'
)py"),
              "");
    EXPECT_EQ(run("objectMap.load('x')"), "tamrix.Error: File 'x' couldn't be found.");
}

TEST_F(PythonNames, ArgumentsByName) {
    define("show",
           [](ScriptContext* context) {
               QStringList words;
               for (int index = 0; index < context->argumentCount(); ++index)
                   words.append(context->argument(index) ? context->argument(index)->toString()
                                                         : QString("-"));
               s_seen.append(words.join(' '));
               return true;
           },
           {"first", "from"}, {"third", "fourth"});
    EXPECT_EQ(run("show(1, third=3, from_=2)\nshow(from_=2, first=1)\nshow(1, 2, fourth=4)\n"
                  "show(fourth=4, third=3, from_=2, first=1)"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"1 2 3", "1 2", "1 2 - 4", "1 2 3 4"}));
    // None leaves out what may be left out, and is a value elsewhere.
    s_seen.clear();
    EXPECT_EQ(run("show(1, 2, None)\nshow(1, 2, None, None)\nshow(1, 2, None, 4)\n"
                  "show(1, 2, third=None)\nshow(None, None)\nshow(1, 2, None, 4, None)"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"1 2", "1 2", "1 2 - 4", "1 2", "None None", "1 2 - 4 None"}));
    EXPECT_EQ(run("show(1, other=2)"), "TypeError: show() has no argument 'other'");
    EXPECT_EQ(run("show(1, first=2)"),
              "TypeError: show() got several values for the argument 'first'");
    EXPECT_EQ(run("show(1, third=2)"), "TypeError: show() needs an argument 'from_'");
}

TEST_F(PythonNames, OptionalArgumentsOfAllFunctions) {
    runner.started = SharedPtr<ApplicationContext>(new ApplicationContext);
    runner.started->id = 1;
    runner.found = SharedPtr<Object>(new Object(7, nullptr));
    runner.takesInput = true;
    const struct {
        const char* code;
        const char* call;
    } rows[] = {
        {"startApplication('p', timeout=3000)", "start p host '' port -1 timeout 3000"},
        {"startApplication('p', None, None, None)", "start p host '' port -1 timeout -1"},
        {"attachToApplication(timeout=5, name='n')", "attach n host '' port -1 timeout 5"},
        {"waitForObject(':n', None)", "wait for :n for 20000 ms"},
        {"waitForObject(timeout=7, objectOrName=':n')", "wait for :n for 7 ms"},
        {"waitForObjectExists(':n', timeout=None)", "wait until exists :n for 20000 ms"},
        {"waitForObjectItem(':n', 'i', timeout=5)", "wait for item 'i' row -1 column -1 for 5 ms"},
        {"waitForObjectItem(':n', 'i', None, 5)", "wait for item 'i' row -1 column -1 for 5 ms"},
        {"waitForObjectItem(':n', 1, column=2)", "wait for item '' row 1 column 2 for 20000 ms"},
        {"highlightObject(':n', block=True)", "snooze 3"},
        {"highlightObject(':n', None, None)", "highlight  for 3000"},
        {"mousePress(button=2)", "mouse - mask 0 at 0,0 button 2 modifiers 0 change 1 press 1"},
        {"mousePress(y=2, x=1)", "mouse - mask 8 at 1,2 button 1 modifiers 0 change 1 press 1"},
        {"mouseRelease(1, 2)", "mouse - mask 0 at 0,0 button 1 modifiers 2 change 1 press 0"},
        {"mouseMove(x=3, y=4)", "mouse - mask 8 at 3,4 button 1 modifiers 0 change 0 press 0"},
    };
    for (const auto& row : rows) {
        runner.calls.clear();
        EXPECT_EQ(run(row.code), "") << row.code;
        EXPECT_TRUE(runner.calls.contains(row.call))
            << row.code << ": " << qPrintable(runner.calls.join("; "));
    }
    for (const char* wrong :
         {"mousePress(x=1)", "mouseMove(x=1)", "mousePress(1, 2, button=1)", "mouseMove(y=1)"})
        EXPECT_EQ(run(wrong), "tamrix.Error: Overload not found") << wrong;
    EXPECT_TRUE(run("waitForObjectItem(':n', 'i', column=2)").startsWith("tamrix.Error: waitFor"));

    EXPECT_EQ(run("test.verify(True, None)\ntest.verify(comment='c', condition=True)\n"
                  "test.compare(None, None, comment=None)\ntest.log('m', None)\n"
                  "assert test.stackTrace(maximum=1, start=None) == test.stackTrace(0, 1)"),
              "");
    EXPECT_EQ(report.results().at(0).comment, "");
    EXPECT_EQ(report.results().at(1).comment, "c");
    EXPECT_EQ(results().mid(2),
              (QStringList{"10 Comparison: 'None' and 'None' are equal", "7 m: "}));
}

struct Point : NativeScriptObject {
    static void* staticTypeId() { return &s_marker; }
    void* typeId() const override { return staticTypeId(); }
    long long x = 0;
    inline static int s_marker = 0;
    inline static int s_alive = 0;
    Point() { ++s_alive; }
    ~Point() override { --s_alive; }
};

struct NamedPoint : Point {
    static void* staticTypeId() { return &s_marker; }
    void* typeId() const override { return staticTypeId(); }
    inline static int s_marker = 0;
};

long long s_scale = 1;

Point* pointOf(const SharedPtr<NativeScriptObject>& object) {
    return static_cast<Point*>(object.get());
}

NativeScriptType pointType() {
    NativeScriptType type(nullptr, [](ScriptContext* context) {
        if (context->argumentCount() != 1) {
            context->setError("Point(x)");
            return SharedPtr<NativeScriptObject>();
        }
        SharedPtr<Point> point(new Point);
        point->x = context->argument(0)->toInt();
        return SharedPtr<NativeScriptObject>(point);
    });
    type.setMethod(
        "moved",
        [](SharedPtr<NativeScriptObject> object, ScriptContext* context) {
            SharedPtr<Point> point(new Point);
            point->x = pointOf(object)->x + context->argument(0)->toInt();
            context->setResult(context->createNative(point));
            return true;
        },
        {"distance"}, {}, "A point beside this one");
    type.setStaticMethod(
        "isPoint",
        [](ScriptContext* context) {
            context->setBoolResult(bool(context->argument(0)->toNative<Point>()));
            return true;
        },
        {"value"}, {}, "Whether the value is a point");
    type.setProperty(
        "x",
        [](SharedPtr<NativeScriptObject> object, ScriptContext* context) {
            context->setInt64Result(pointOf(object)->x * s_scale);
            return true;
        },
        [](SharedPtr<NativeScriptObject> object, ScriptContext* context) {
            pointOf(object)->x = context->argument(0)->toInt();
            return true;
        });
    type.setProperty(
        "doubled",
        [](SharedPtr<NativeScriptObject> object, ScriptContext* context) {
            context->setInt64Result(pointOf(object)->x * 2);
            return true;
        },
        nullptr);
    type.setStaticProperty(
        "scale",
        [](ScriptContext* context) {
            context->setInt64Result(s_scale);
            return true;
        },
        [](ScriptContext* context) {
            if (context->argument(0)->toInt() < 1)
                context->setError("The scale must be positive");
            else
                s_scale = context->argument(0)->toInt();
            return !context->hasError();
        });
    return type;
}

TEST_F(PythonNames, NativeClasses) {
    interpreter->addNativeType("Point", Point::staticTypeId(), pointType());
    interpreter->addNativeType("NamedPoint", NamedPoint::staticTypeId(),
                               NativeScriptType(Point::staticTypeId(), nullptr));
    define("makeNamed", [](ScriptContext* context) {
        context->setResult(context->createNative(new NamedPoint));
        return true;
    });
    EXPECT_EQ(run(R"py(
point = Point(4)
point.x += 1
assert (point.x, point.doubled, point.moved(3).x, point.moved(distance=1).x) == (5, 10, 8, 6)
assert Point.isPoint(point) and not Point.isPoint(5)
Point.scale = 3
assert Point.scale == 3 and point.x == 15
named = makeNamed()
assert type(named) is NamedPoint and isinstance(named, Point) and Point.isPoint(named)
named.x = 2
assert named.moved(1).doubled == 6

class Own(Point):
    def __init__(self, x):
        self.extra = 'e'
own = Own(7)
assert own.doubled == 14 and own.extra == 'e' and Point.isPoint(own)
assert 'A point beside this one' in Point.moved.__doc__
)py"),
              "");
    EXPECT_EQ(run("Point.scale = 0"), "tamrix.Error: The scale must be positive");
    EXPECT_EQ(run("point.doubled = 1").left(15), "AttributeError:");
    EXPECT_EQ(run("Point()"), "tamrix.Error: Point(x)");
    EXPECT_EQ(run("NamedPoint()"), "TypeError: NamedPoint objects can't be made by scripts");
    EXPECT_EQ(run("Point.moved(5, 1)"),
              "TypeError: moved needs an object of its class as first argument");
    EXPECT_GT(Point::s_alive, 0);
    interpreter.reset();
    EXPECT_EQ(Point::s_alive, 0);
}

TEST_F(PythonNames, MemberFunctionsOfContexts) {
    auto* const context = ScriptContext::current();
    EXPECT_EQ(context, nullptr);
    define("application", [](ScriptContext* call) {
        SharedPtr<ApplicationContext> made(new ApplicationContext);
        made->name = "app";
        call->setContextResult(made);
        call->addMemberFunction("ApplicationContext", "nameForTests", [](ScriptContext* inner) {
            inner->setStringResult(inner->argument(0)->toApplicationContext()->name +
                                   inner->argument(1)->toString());
        });
        return true;
    });
    EXPECT_EQ(run("app = application()\nassert app.nameForTests('!') == 'app!'"), "");
}

TEST_F(PythonNames, ExceptionsOfNativeCode) {
    define("fail", [](ScriptContext* context) {
        context->setError("words", ScriptContext::ErrorType(context->argument(0)->toInt()));
        return false;
    });
    define("throwNative", [](ScriptContext*) -> bool { throw std::runtime_error("inner text"); });
    EXPECT_EQ(run(R"py(
import tamrix, builtins
def caught(number, *classes):
    try:
        fail(number)
    except BaseException as error:
        assert str(error) == 'words'
        return [c for c in classes if not isinstance(error, c)]
assert caught(0, tamrix.Error, RuntimeError) == []
assert caught(1, tamrix.VerificationError, tamrix.Error, AssertionError) == []
assert caught(3, tamrix.LookupError, tamrix.Error, builtins.LookupError) == []
assert caught(2, tamrix.FatalError) == [] and not issubclass(tamrix.FatalError, Exception)
)py"),
              "");
    EXPECT_EQ(run("throwNative()"), "tamrix.Error: throwNative() failed: inner text");
}

TEST_F(PythonNames, PythonsObjectStaysWhatItIs) {
    ASSERT_TRUE(writeFile(folder.filePath("helper.py"), R"py(
def there(name): return object.exists(name)
class Helper(object): pass
)py"));
    interpreter->addToSearchPath(QFileInfo(folder.path()));
    EXPECT_EQ(run(R"py(
import builtins, helper, inspect
class Thing(object):
    def __init__(self):
        object.__setattr__(self, 'x', super().__init__())
assert Thing.__bases__ == (builtins.object,) == helper.Helper.__bases__
assert isinstance(Thing(), object) and issubclass(int, object) and inspect.isclass(object)
assert type(object()) is builtins.object and object == builtins.object == object
assert {object: 1}[builtins.object] == 1 and (object | None) == (builtins.object | None)
assert 'children' in dir(object) and '__init__' in dir(object)
assert object.exists('{a=\'1\'}') is helper.there('{a=\'1\'}') is False
assert not hasattr(builtins.object, 'exists') and not hasattr(Thing, 'exists')
)py"),
              "");
}

TEST_F(PythonNames, OnlyTheScriptsThreadMayCall) {
    EXPECT_EQ(run(R"py(
import threading
errors = []
def work():
    try:
        test.log('x')
    except RuntimeError as error:
        errors.append(str(error))
thread = threading.Thread(target=work)
thread.start()
thread.join()
assert len(errors) == 1 and errors[0].startswith('test.log() was called from another thread')
)py"),
              "");
    EXPECT_TRUE(results().isEmpty());
}

TEST_F(PythonNames, ImportFindsWhatFindFileFinds) {
    const QString root = QFileInfo(folder.path()).canonicalFilePath();
    const EnvironmentGuard suite("TAMRIX_SUITE_DIR", root + "/suite");
    const EnvironmentGuard scripts("TAMRIX_SCRIPT_DIR", root + "/env");
    const char* const places[] = {"suite", "suite/shared/scripts", "suite/tst", "env"};
    int number = 0;
    for (const char* first : places) {
        for (const char* second : places) {
            ++number;
            for (const char* place : {first, second})
                ASSERT_TRUE(
                    writeFile(QString("%1/%2/module%3.py").arg(root, place).arg(number), ""));
        }
    }
    const WorkingDirectory inCase(root + "/suite/tst");
    interpreter->addDefaultSearchPaths(QFileInfo(root + "/suite/shared/scripts"));
    interpreter->setScriptArguments(root + "/suite/tst/test.py", {});
    EXPECT_EQ(run(QString(R"py(
import importlib, os, sys
for number in range(1, %1 + 1):
    found = os.path.realpath(findFile('scripts', 'module%d.py' % number))
    imported = importlib.import_module('module%d' % number).__file__
    assert found == os.path.realpath(imported), (found, imported)
assert len(set(sys.path)) == len(sys.path), sys.path
)py")
                      .arg(number)),
              "");
}

TEST_F(PythonNames, ACaseLeavesNothingBehind) {
    QDir(folder.path()).mkdir("modules");
    ASSERT_TRUE(writeFile(folder.filePath("modules/stateful.py"), "count = 0\n"));
    interpreter->addToSearchPath(QFileInfo(folder.filePath("modules")));
    EXPECT_EQ(run(R"py(
import stateful, sys, os, builtins, signal, atexit
stateful.count = 1
sys.path.append('/left')
os.environ['TAMRIX_LEFT'] = '1'
builtins.left = builtins.len = 1
import bdd, tamrix
tamrix.Error = bdd.step = None
sys.stdout = None
sys.excepthook = print
signal.signal(signal.SIGINT, signal.SIG_IGN)
del test.log
)py"),
              "");
    EXPECT_EQ(Environment::getVariable("TAMRIX_LEFT"), "1");
    const ScriptLanguagePlugin plugin("tamrixpython-3");
    interpreter.reset();
    EXPECT_TRUE(Environment::getVariable("TAMRIX_LEFT").isNull());
    interpreter.reset(plugin.interpreter(&runner));
    interpreter->addToSearchPath(QFileInfo(folder.filePath("modules")));
    EXPECT_EQ(run(R"py(
import stateful, sys, os, signal
assert stateful.count == 0 and '/left' not in sys.path and 'TAMRIX_LEFT' not in os.environ
import bdd, tamrix
assert callable(bdd.step) and issubclass(tamrix.LookupError, tamrix.Error)
assert callable(len) and sys.excepthook is sys.__excepthook__
assert signal.getsignal(signal.SIGINT) is signal.default_int_handler
try:
    left
except NameError:
    print('gone')
test.log
)py"),
              "");
}

TEST_F(PythonNames, ASecondInterpreterDisturbsNothing) {
    EXPECT_EQ(run("value = 5\nimport json\njson.mark = 1"), "");
    const ScriptLanguagePlugin plugin("tamrixpython-3");
    delete plugin.interpreter(&runner);
    Interpreter::setSelf(interpreter.get());
    EXPECT_EQ(run("import json\nassert value == 5 and json.mark == 1\ntest.log('still')"), "");
    EXPECT_EQ(results(), QStringList("7 still: "));
}

}  // namespace
}  // namespace Tamrix
