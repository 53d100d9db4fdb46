#include "interpreter/bridge/debugger.h"

#include "plugins/ruby/rubytest.h"
#include "runner/coreapplication.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

/// Ruby's debugger is driven through Debugger alone, and seen through a front end.
class RubyDebugging : public RubyTest {
protected:
    RubyDebugging() : debugger(interpreter->debugger()) {
        coreApplication();
        EXPECT_TRUE(writeFile(script(), text));
        EXPECT_EQ(run(text), "");
    }

    /// Calls main() and gives the lines at which it stopped.
    QString stops() {
        EXPECT_TRUE(interpreter->callFunction("main", ObjectList()))
            << qPrintable(interpreter->errorMessage());
        return frontEnd.take(" ");
    }

    QString listing(const QString& path) {
        QStringList words;
        for (const auto& binding : debugger->variables(path))
            words.append(binding.type + " " + binding.name + "=" + binding.value);
        return words.join("; ");
    }

    QString evaluate(const QString& code) { return debugger->evaluate(code); }

    const char* const text =
        "def helper(n)\n"           // 1
        "  m = n + 1\n"             // 2
        "  m\n"                     // 3
        "end\n"                     // 4
        "def main\n"                // 5
        "  a = helper(1)\n"         // 6
        "  begin\n"                 // 7
        "    fails\n"               // 8
        "  rescue ArgumentError\n"  // 9
        "    b = helper(2)\n"       // 10
        "  end\n"                   // 11
        "  [1, 2].each do |n|\n"    // 12
        "    a += n\n"              // 13
        "  end\n"                   // 14
        "  b\n"                     // 15
        "end\n"                     // 16
        "def fails\n"               // 17
        "  raise ArgumentError\n"   // 18
        "end\n";                    // 19
    Debugger* debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(*debugger);
};

TEST_F(RubyDebugging, StopsByMode) {
    debugger->setDebuggerMode(Debugger::Step);
    EXPECT_EQ(stops(), "") << "not interactive";
    debugger->setInteractive(true);
    EXPECT_EQ(stops(), "6 2 3 8 18 10 2 3 12 13 13 15");
    debugger->next(1);
    EXPECT_EQ(stops(), "6 8 10 12 15");
    debugger->next(0);
    EXPECT_EQ(stops(), "");
    debugger->setDebuggerMode(Debugger::Run);
    EXPECT_EQ(stops(), "");
    debugger->setDebuggerMode(Debugger::None);
    EXPECT_EQ(stops(), "");
    debugger->setInteractive(false);
    debugger->step();
    EXPECT_EQ(stops(), "");
}

TEST_F(RubyDebugging, StopsAtBreakPoints) {
    debugger->bufferBreakPoint(script(), 3);
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    EXPECT_EQ(stops(), "3 3");
    const int id = debugger->findSourceId("test.rb");
    ASSERT_GT(id, 0);
    debugger->setBreakPoint(3, id, false);
    debugger->setBreakPoint(13, id, true);
    EXPECT_EQ(stops(), "13 13");
    // One where no code is; and one where the script stands, which is not told again.
    debugger->setBreakPoint(4, id, true);
    debugger->step();
    frontEnd.commands = {SetBreakPoint{script(), 6}, Resume{Resume::Run}, Resume{Resume::Step},
                         Resume{Resume::Run}};
    EXPECT_EQ(stops(), QString("6 %1:6 13 13").arg(script()));
}

TEST_F(RubyDebugging, StopsInModulesAndInCodeThatNamesAFile) {
    const QString module = folder.filePath("numbers.rb");
    ASSERT_TRUE(writeFile(module,
                          "class Numbers\n"                                           // 1
                          "  def self.each(&block) = [1, 2].each(&block)\n"           // 2
                          "  define_method(:sum) { |*n|\n"                            // 3
                          "    n.sum }\n"                                             // 4
                          "  class_eval 'def twice(n)\n  n * 2\nend', __FILE__, 5\n"  // 5
                          "end\n"));
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    for (const int line : {2, 4, 6})
        debugger->bufferBreakPoint(module, line);
    ASSERT_EQ(run(QString("require '%1'\n"
                          "def main\n"
                          "  Numbers.each { |n| n }\n"
                          "  Numbers.new.sum(1, 2)\n"
                          "  Numbers.new.twice(3)\n"
                          "end\n")
                      .arg(module)),
              "");
    EXPECT_EQ(frontEnd.take(" "), "2") << "where a method is defined";
    EXPECT_EQ(stops(), "4 6");
}

TEST_F(RubyDebugging, GoesOnAsItsFrontEndCommands) {
    debugger->setInteractive(true);
    debugger->step();
    frontEnd.commands = {Resume{Resume::Step}, Resume{Resume::Return},      Resume{Resume::Next},
                         Resume{Resume::Next}, SetBreakPoint{script(), 13}, Resume{Resume::Run},
                         Resume{Resume::Next}, Resume{Resume::Run}};
    EXPECT_EQ(stops(), QString("6 2 8 10 12 %1:13 13 13").arg(script()));
}

TEST_F(RubyDebugging, ShowsVariablesAndEvaluates) {
    ASSERT_EQ(run(R"rb(Pair = Struct.new(:left, :right)
class Thing
  def initialize
    @name = 'thing'
    @parts = {1 => [true, nil], 'a.b' => 2.5}
  end
  def look
    local = Pair.new(1, self)
    long = 'x' * 1000
    $global = :symbol
    local.left
  end
end
class Slow
  def inspect = sleep(5)
end
def main
  outer = [Thing.new, Slow.new]
  outer[0].look
end
)rb"),
              "");
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    QStringList told;
    frontEnd.commands = {Look([&](Debugger&) {
        told << listing("") << listing("+local") << listing("+local.right.@parts")
             << listing("+local.right.@parts.[1]") << listing("^1") << evaluate("local.left + 1")
             << evaluate("long = 7") << evaluate("^1 outer.size")
             << evaluate("nothing").section(' ', 0, 6) << evaluate("@name")
             << evaluate("^1 outer[1]");
    })};
    EXPECT_FALSE(debugger->addBreakPoint(script(), 11).isBuffered);
    EXPECT_EQ(stops(), "11");
    EXPECT_EQ(
        told.join('\n').replace(QString("x").repeated(199), "XXX"),
        "Pair +local=#<struct Pair left=1, right=#<Thing>>; String long=\"XXX...; "
        "Thing +self=#<Thing>; String @name=\"thing\"; Hash +@parts={1=>[true, nil], "
        "\"a.b\"=>2.5}; Symbol $global=:symbol\n"
        "Integer local.left=1; Thing +local.right=#<Thing>\n"
        "Array +local.right.@parts.[1]=[true, nil]; Float local.right.@parts.[\"a.b\"]=2.5\n"
        "TrueClass local.right.@parts.[1].0=true; NilClass local.right.@parts.[1].1=nil\n"
        "Array +^1.outer=[#<Thing>, <no representation: not in time>]; Symbol ^1.$global=:symbol\n"
        "2\n7\n2\nNameError: undefined local variable or method `nothing'\n\"thing\"\n"
        "<no representation: not in time>");
}

TEST_F(RubyDebugging, StopsWhereNothingCatchesAnError) {
    ASSERT_EQ(run("def deep(n)\n"
                  "  raise ArgumentError, \"n=#{n}\"\n"
                  "end\n"
                  "def main\n"
                  "  deep(1) rescue nil\n"
                  "  test.exception { deep(2) }\n"
                  "  deep(3)\n"
                  "ensure\n"
                  "  puts 'ensured'\n"
                  "end\n"),
              "");
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    QString seen;
    frontEnd.commands = {Look([&](Debugger&) {
        seen = listing("") + "|" + evaluate("n * 2") + "|" + evaluate("raise 'another'");
    })};
    EXPECT_FALSE(interpreter->callFunction("main", ObjectList()));
    EXPECT_EQ(frontEnd.take(" "), "ScriptError=ArgumentError: n=3 2");
    EXPECT_EQ(seen, "Integer n=3|6|RuntimeError: another");
    EXPECT_EQ(interpreter->errorMessage(), "ArgumentError: n=3");
    // Neither an exit nor a skip is an error.
    for (const char* const code : {"exit", "test.skip('s')"}) {
        ASSERT_EQ(run(QString("def main\n  %1\nend\n").arg(code)), "");
        interpreter->callFunction("main", ObjectList());
        EXPECT_EQ(frontEnd.take(" "), "") << code;
    }
}

TEST_F(RubyDebugging, AnInterruptStopsALoop) {
    define("interruptSoon", [](ScriptContext*) {
        Debugger::self()->interrupt();
        return true;
    });
    ASSERT_EQ(run("def main\n"
                  "  interruptSoon\n"
                  "  count = 0\n"
                  "  count += 1 until count > 100\n"
                  "end\n"),
              "");
    debugger->setInteractive(true);
    debugger->setDebuggerMode(Debugger::Run);
    frontEnd.commands = {Resume{Resume::Run}};
    EXPECT_EQ(stops(), "3");
}

}  // namespace
}  // namespace Tamrix
