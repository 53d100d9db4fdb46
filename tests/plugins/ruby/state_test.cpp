// What a test case leaves behind does not reach the next one.

#include <csignal>

#include "plugins/ruby/rubytest.h"

namespace Tamrix {
namespace {

using namespace Test;

class RubyState : public RubyTest {
protected:
    /// Runs text as a case of its own.
    QString runCase(const QString& text) {
        makeInterpreter();
        interpreter->setScriptArguments(script(), {"argument"});
        const QString error = run(text);
        return error;
    }
};

TEST_F(RubyState, NothingReachesTheNextCase) {
    ASSERT_TRUE(writeFile(folder.filePath("helper.rb"),
                          "$loads = $loads.to_i + 1\n"
                          "module Helper\n  VALUE = 1\nend\n"));
    struct {
        const char* changes;
        const char* check;
    } const rows[] = {
        {"def main = 1\ndef helper = 2", "respond_to?(:helper, true) || respond_to?(:main, true)"},
        {"class Case; end\nCONSTANT = 1\nclass String\n  OWN = 1\nend",
         "defined?(Case) || defined?(CONSTANT) || defined?(String::OWN)"},
        {"$left = 1\n@left = 2\nObject.class_variable_set(:@@left, 3)",
         "$left || @left || Object.class_variable_defined?(:@@left)"},
        {"class Integer\n  def +(other) = 42\n  def extra = 1\nend",
         "1 + 1 != 2 || 1.respond_to?(:extra)"},
        {"class String\n  alias_method :shout, :upcase\nend", "'a'.respond_to?(:shout)"},
        {"class Array\n  undef_method :push\nend", "![].respond_to?(:push)"},
        {"def Math.sqrt(x) = 0\ndef self.own = 1", "Math.sqrt(4) != 2 || respond_to?(:own)"},
        {"module Loud\n  def to_s = 'loud'\nend\nclass Integer\n  prepend Loud\nend",
         "1.to_s != '1'"},
        {"def puts(*) = nil\nmodule Kernel\n  def format(*) = 'x'\nend", "format('%d', 1) != '1'"},
        {"require 'helper'\nraise unless Helper::VALUE == 1",
         "defined?(Helper) || !require('helper') || $loads != 1"},
        {"$LOAD_PATH << '/left'\n$, = nil\n$VERBOSE = nil",
         "$LOAD_PATH.include?('/left') || $VERBOSE.nil?"},
        {"Thread.new { sleep }\ntrap('USR1') { $hit = 1 }\nat_exit { $late = 1 }",
         "Thread.list.size != 1 || !trap('USR1', 'DEFAULT').end_with?('DEFAULT') || $late"},
        {"Encoding.default_external = 'US-ASCII'", "Encoding.default_external != Encoding::UTF_8"},
        {"require 'set'\nrequire 'json'\nraise unless Set[1].to_a.to_json == '[1]'",
         "require 'set'\nrequire 'json'\nSet[1].to_a.to_json != '[1]'"},
        {"Object.send(:remove_const, :Comparable)", "!defined?(Comparable)"},
        {"class << test\n  def compare(*) = true\nend", "test.compare(1, 2)"},
        {"ARGV.clear\nGC.disable", "ARGV != ['argument'] || GC.enable"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(runCase(row.changes), "") << row.changes;
        EXPECT_EQ(runCase("raise 'left' if begin\n" + QString(row.check) + "\nend"), "")
            << row.changes;
    }
}

TEST_F(RubyState, InitScriptsStayForAllScripts) {
    makeInterpreter();
    ASSERT_TRUE(interpreter->evaluate("def shared = 1\nclass String\n  def own = 1\nend", {}));
    for (int count = 0; count < 2; ++count) {
        interpreter->setScriptArguments(script(), {});
        EXPECT_FALSE(interpreter->hasFunction("main"));
        ASSERT_EQ(run("def main = test.log((shared + ''.own).to_s)"), "");
        EXPECT_TRUE(call("main"));
    }
    EXPECT_EQ(results(), (QStringList{"7 2: ", "7 2: "}));
    EXPECT_EQ(runCase("raise 'left' if ''.respond_to?(:own) || respond_to?(:shared, true)"), "");
}

TEST_F(RubyState, SourceRunsAFileAtTheTopLevel) {
    ASSERT_TRUE(writeFile(folder.filePath("more.rb"), "def more = __FILE__\nLEFT = 1\n"));
    const QString path = folder.filePath("more.rb");
    EXPECT_EQ(
        runCase("source('" + path + "')\nraise more unless more.end_with?('more.rb') && LEFT"), "");
    ASSERT_TRUE(writeFile(folder.filePath("bad.rb"), "\nraise 'bad'\n"));
    EXPECT_TRUE(runCase("source('" + folder.filePath("bad.rb") + "')")
                    .contains("bad.rb:2: RuntimeError: bad"));
    EXPECT_EQ(runCase("raise 'left' if defined?(LEFT) || respond_to?(:more, true)"), "");
}

TEST_F(RubyState, AScriptHasItsDataAndItsBlocksAtTheEnd) {
    const QString text =
        "END { test.log('END') }\n  END{ test.log('second') }\nat_exit { test.log('exit') }\n"
        "puts <<~TEXT\nEND { none }\nTEXT\ntest.log(DATA.read)\n__END__\n\xc3\xa4 1\nEND {\n";
    ASSERT_TRUE(writeFile(script(), text.toUtf8()));
    EXPECT_EQ(runCase(text.split("puts")[0]), "");
    EXPECT_EQ(runCase("test.log(defined?(DATA).to_s)"), "");
    EXPECT_EQ(results(), (QStringList{"7 exit: ", "7 second: ", "7 END: ", "7 : "}));
    EXPECT_EQ(runCase(text), "");
    EXPECT_EQ(results().last(), QString::fromUtf8("7 \xc3\xa4 1\nEND {\n: "));
}

TEST_F(RubyState, WhatThePluginHasOfItsOwnTakesNoWrongValues) {
    for (const char* const code :
         {"Tamrix::Native.write(1, 5)", "Tamrix::Native.write(nil, '')",
          "Tamrix::StepContext::CURRENT._addStep(1, 2)",
          "Tamrix::StepContext::CURRENT._addHook('x', nil, nil)",
          "Tamrix::StepContext::CURRENT._addType('x', 5, nil)",
          "Tamrix::StepContext::CURRENT._addType(1, [2], 3)", "Tamrix::Native.property(5, 'x')",
          "Tamrix::Native.members(nil)", "Tamrix::StepContext::CURRENT._find(nil)",
          "Tamrix::Steps.hook(:x, nil, proc {})", "Tamrix::Condition.explain(nil, nil, nil)",
          "Tamrix::DataSet.allocate", "Tamrix::StepContext.new.x = 1",
          "Tamrix::Namespace.new(1).inspect"}) {
        run(QString("begin\n  %1\nrescue StandardError => error\n  error.message\nend").arg(code));
        EXPECT_EQ(run("1"), "") << code;
    }
}

}  // namespace
}  // namespace Tamrix
