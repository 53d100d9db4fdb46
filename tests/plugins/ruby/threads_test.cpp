// Threads and fibers of a script beside its own thread.

#include <QThread>

#include "base/blocking.h"
#include "plugins/ruby/rubytest.h"

namespace Tamrix {
namespace {

using namespace Test;

class RubyThreads : public RubyTest {};

TEST_F(RubyThreads, RunWhileAFunctionWaits) {
    define("sleepAside", [](ScriptContext*) {
        blockingSleep(300'000);
        return true;
    });
    define("holdLock", [](ScriptContext*) {
        QThread::msleep(300);
        return true;
    });
    define("pollAside", [](ScriptContext*) {
        blockingPoll(nullptr, 0, 300);
        return true;
    });
    EXPECT_EQ(run(R"rb(
count = 0
stopped = false
thread = Thread.new { until stopped do count += 1; sleep 0.001 end }
counted = lambda do |&work|
  before = count
  work.call
  count - before
end
# A busy machine may give the thread no turn in one of them, nor this one at its end.
runs = lambda do |&work|
  20.times.any? { counted.call(&work) > 5 }
end
raise 'held' if 3.times.map { counted.call { holdLock } }.min > 1
raise 'sleep' unless runs.call { sleepAside }
raise 'poll' unless runs.call { pollAside }
raise 'wait' unless runs.call { waitFor(300) { false } }
stopped = true
thread.join
)rb"),
              "");
}

TEST_F(RubyThreads, OthersMayNotCall) {
    EXPECT_EQ(run(R"rb(
errors = []
Thread.new do
  test.log('from another thread')
rescue Tamrix::Error => error
  errors << error.message
end.join
raise errors.inspect unless errors[0].include?('was called from another thread')
)rb"),
              "");
    EXPECT_TRUE(results().isEmpty());
}

TEST_F(RubyThreads, WhatIsRaisedInAWaitComesBehindIt) {
    define("sleepAside", [](ScriptContext*) {
        blockingSleep(300'000);
        return true;
    });
    EXPECT_EQ(run(R"rb(
require 'timeout'
begin
  Timeout.timeout(0.05) { sleepAside }
  raise 'in time'
rescue Timeout::Error
  test.log('late')
end
)rb"),
              "");
    EXPECT_EQ(results(), QStringList("7 late: "));
}

TEST_F(RubyThreads, FibersCall) {
    EXPECT_EQ(run(R"rb(
fiber = Fiber.new do
  Fiber.yield test.log('first')
  waitFor { true }
  test.log('second')
end
fiber.resume
test.log('between')
fiber.resume
words = Enumerator.new { |y| y << test.compare(1, 1) }
raise unless words.next
)rb"),
              "");
    EXPECT_EQ(results().mid(0, 3), (QStringList{"7 first: ", "7 between: ", "7 second: "}));
}

}  // namespace
}  // namespace Tamrix
