// Threads of a script beside its own one.

#include <QThread>

#include "base/blocking.h"
#include "plugins/python/pythontest.h"

namespace Tamrix {
namespace {

using namespace Test;

class PythonThreads : public PythonTest {
protected:
    PythonThreads() {
        EXPECT_EQ(run(R"py(
import threading, time
count = 0
stopped = threading.Event()
def work():
    global count
    while not stopped.is_set():
        count += 1
        time.sleep(0.001)
thread = threading.Thread(target=work, daemon=True)
thread.start()
def counted(function, *arguments):
    before = count
    function(*arguments)
    return count - before
def runs(function, *arguments):
    # A busy machine may give the thread no turn in one of them, nor this one at its end.
    return any(counted(function, *arguments) > 5 for _ in range(20))
)py"),
                  "");
    }
    ~PythonThreads() override { EXPECT_EQ(run("stopped.set()\nthread.join()"), ""); }
};

TEST_F(PythonThreads, RunWhileAFunctionWaits) {
    define("sleepAside", [](ScriptContext*) {
        blockingSleep(300'000);
        return true;
    });
    define("pollAside", [](ScriptContext*) {
        blockingPoll(nullptr, 0, 300);
        return true;
    });
    define("holdLock", [](ScriptContext*) {
        QThread::msleep(300);
        return true;
    });
    EXPECT_EQ(run(R"py(
assert min(counted(holdLock) for _ in range(3)) <= 1
assert runs(sleepAside)
assert runs(pollAside)
assert runs(waitFor, "False", 300)
assert runs(waitFor, lambda: False, 300)
)py"),
              "");
}

TEST_F(PythonThreads, ScriptCodeInsideAWaitHasTheLock) {
    // What runs between the waits, and what it raises, is the script's own business.
    EXPECT_EQ(run(R"py(
import tamrix
values = []
def condition():
    values.append(threading.current_thread() is threading.main_thread())
    if len(values) == 3:
        raise KeyError('third')
    return False
try:
    waitFor(condition, 60000)
except tamrix.Error as error:
    assert 'third' in str(error), error
assert values == [True] * 3
)py"),
              "");
}

TEST_F(PythonThreads, OthersMayNotCallMeanwhile) {
    EXPECT_EQ(run(R"py(
errors = []
def call():
    try:
        test.log('from another thread')
    except RuntimeError as error:
        errors.append(str(error))
timer = threading.Timer(0.05, call)
timer.start()
waitFor(lambda: bool(errors), 60000)
timer.join()
assert 'was called from another thread' in errors[0]
)py"),
              "");
    EXPECT_TRUE(results().isEmpty());
}

TEST(BlockingSection, GivesUpNothingElsewhere) {
    // No interpreter, and another thread than the script's: nothing is there to give up.
    blockingSleep(1000);
    EXPECT_EQ(blockingPoll(nullptr, 0, 1), 0);
    errno = 0;
    EXPECT_EQ(blockingPoll(nullptr, 1, 0), -1);
    EXPECT_EQ(errno, EFAULT);
}

}  // namespace
}  // namespace Tamrix
