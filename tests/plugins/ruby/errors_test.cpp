#include <gmock/gmock.h>

#include "plugins/ruby/rubytest.h"

namespace Tamrix {
namespace {

using namespace Test;
using testing::HasSubstr;

class RubyErrors : public RubyTest {};

TEST_F(RubyErrors, StackOfScriptLines) {
    ASSERT_EQ(run("def inner\n"                                          // 1
                  "  raise ArgumentError, 'bad'\n"                       // 2
                  "end\n"                                                // 3
                  "def main\n"                                           // 4
                  "  [1].each { inner }\n"                               // 5
                  "end\n"                                                // 6
                  "def library\n"                                        // 7
                  "  require 'json'\n"                                   // 8
                  "  JSON.parse('{')\n"                                  // 9
                  "end\n"                                                // 10
                  "def chained\n"                                        // 11
                  "  inner\n"                                            // 12
                  "rescue ArgumentError\n"                               // 13
                  "  raise KeyError, 'k'\n"                              // 14
                  "end\n"                                                // 15
                  "def endless = endless\n"                              // 16
                  "def evaluated = eval('inner')\n"                      // 17
                  "class Body\n"                                         // 18
                  "  def self.make = Class.new { raise 'in a body' }\n"  // 19
                  "end\n"
                  "def body = Body.make\n"),  // 21
              "");
    EXPECT_FALSE(call("main"));
    EXPECT_EQ(interpreter->errorMessage(), "ArgumentError: bad");
    EXPECT_EQ(lines(), (std::vector{2, 5, 5}));
    EXPECT_EQ(interpreter->errorFile({}),
              QFileInfo(folder.path()).canonicalFilePath() + "/test.rb");
    EXPECT_FALSE(call("library"));
    EXPECT_EQ(lines(), std::vector{9});
    EXPECT_FALSE(call("chained"));
    EXPECT_EQ(interpreter->errorMessage(), "KeyError: k\ncaused by ArgumentError: bad");
    EXPECT_FALSE(call("endless"));
    EXPECT_EQ(interpreter->errorMessage(), "SystemStackError: stack level too deep");
    EXPECT_EQ(lines().size(), 100u);
    EXPECT_FALSE(call("evaluated"));
    EXPECT_EQ(lines(), (std::vector{2, 17}));
    EXPECT_FALSE(call("body"));
    EXPECT_EQ(lines(), (std::vector{19, 19, 21}));
    EXPECT_EQ(run("nil"), "");
    EXPECT_EQ(interpreter->errorLine(), -1);
    EXPECT_FALSE(call("nothing"));
}

TEST_F(RubyErrors, Syntax) {
    const struct {
        const char* text;
        int line;
        const char* message;
    } rows[] = {
        {"x = 1\nif x\n", 2, "SyntaxError: syntax error, unexpected end-of-input"},
        {"\nx = = 1\n", 2, "SyntaxError: syntax error, unexpected '='"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(interpreter->checkSyntax(row.text, script()));
        EXPECT_EQ(interpreter->errorLine(), row.line) << row.text;
        EXPECT_THAT(interpreter->errorMessage().toStdString(), testing::StartsWith(row.message));
    }
    EXPECT_FALSE(interpreter->checkSyntax(QString("x = 1\ny = ") + QChar(0), script()));
    EXPECT_EQ(interpreter->errorLine(), 2);
    EXPECT_THAT(interpreter->errorMessage().toStdString(), HasSubstr("a NUL character"));
    // The text is decoded already, whatever its coding line says.
    EXPECT_TRUE(
        interpreter->checkSyntax(QString::fromUtf8("# coding: ascii\nx = '\xc3\xa4'\n"), script()));
    // A file with a syntax error is named with its line, below the require.
    ASSERT_TRUE(writeFile(folder.filePath("broken.rb"), "\n\nx = = 1\n"));
    EXPECT_THAT(run("\nrequire_relative 'broken'").toStdString(), HasSubstr("SyntaxError"));
    EXPECT_EQ(lines(), (std::vector{3, 2}));
}

TEST_F(RubyErrors, CodeWithoutAFileHasALine) {
    EXPECT_FALSE(interpreter->evaluate("x = 1\ny = nothing\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 2);
    EXPECT_EQ(interpreter->errorFile("none"), "none");
    EXPECT_FALSE(interpreter->evaluate("x = (\n", QString()));
    EXPECT_GT(interpreter->errorLine(), 0);
}

TEST_F(RubyErrors, ExitEndsTheCase) {
    ASSERT_EQ(run("def init = exit\n"
                  "def main = test.fail('not reached')\n"
                  "def cleanup = test.log('cleaned')\n"
                  "def failing = abort('went wrong')\n"
                  "at_exit { test.log('at exit') }\n"),
              "");
    EXPECT_FALSE(call("failing"));
    EXPECT_EQ(interpreter->errorMessage(), "SystemExit: went wrong");
    EXPECT_TRUE(call("init"));
    EXPECT_TRUE(call("main"));
    EXPECT_TRUE(call("cleanup"));
    interpreter.reset();
    EXPECT_EQ(results(), (QStringList{"7 cleaned: ", "7 at exit: "}));
}

TEST_F(RubyErrors, OnlyTheSkipItselfEndsACaseAsSkipped) {
    const struct {
        const char* body;
        bool ends;
        bool isSkip;
    } rows[] = {
        {"test.skip('s')", true, true},
        {"begin; test.skip('s'); ensure; puts 'x'; end", true, true},
        {"begin; test.skip('s'); rescue => e; test.fail('swallowed'); end", true, true},
        {"begin; test.skip('s'); rescue Exception => e; raise e; end", true, true},
        {"test.exception { test.skip('s') }", true, true},
        {"begin; test.skip('s'); ensure; raise 'database is broken'; end", true, false},
        {"begin; test.skip('s'); rescue Exception; end\nraise Tamrix::FatalError, 's: '", true,
         false},
        {"begin; test.skip(''); rescue Exception; end", false, false},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(run("def main\n" + QString(row.body) + "\nend\n"), "");
        EXPECT_EQ(call("main"), !row.ends) << row.body;
        EXPECT_EQ(interpreter->errorIsSkip(), row.isSkip) << row.body;
    }
}

TEST_F(RubyErrors, AreClassesOfTheirKind) {
    EXPECT_EQ(run(R"rb(
def raised
  yield
rescue Exception => e
  [e.class, e.class.superclass]
end
raise 'lookup' unless raised { waitForObject('x', 0) } == [Tamrix::LookupError, Tamrix::Error]
raise 'argument' unless raised { test.compare(1, nothing: 2) }[0] == ArgumentError
raise 'general' unless raised { snooze('x') } == [Tamrix::Error, StandardError]
testSettings.throwOnFailure = true
raise 'verify' unless raised { test.verify(false) }[0] == Tamrix::VerificationError
testSettings.throwOnFailure = false
raise 'typo' unless raised { test.comapre(1, 1) }[0] == NoMethodError
)rb"),
              "");
}

TEST_F(RubyErrors, ObjectsThatCantBeShown) {
    EXPECT_EQ(run("class Bad\n"
                  "  def to_s = raise('x')\n"
                  "  def ==(other) = raise('no comparison')\n"
                  "end\n"
                  "test.xcompare(1, Bad) or test.verify(Bad.new, Bad.new)\n"),
              "");
    EXPECT_EQ(run("test.compare(Bad.new, 1)"), "RuntimeError: no comparison");
    EXPECT_EQ(run("class Own < StandardError\n  def message = 1 / 0\nend\nraise Own"), "Own");
    EXPECT_EQ(run("raise Class.new(BasicObject).new").left(9), "TypeError");
    for (const char* backtrace : {"raise('x')", "nil", "'text'"}) {
        EXPECT_EQ(run(QStringLiteral("class Own < StandardError\n"
                                     "  def message = 'own'\n"
                                     "  def backtrace = %1\n"
                                     "end\n"
                                     "raise Own\n")
                          .arg(QLatin1String(backtrace))),
                  "Own: own");
        EXPECT_EQ(lines(), std::vector{5}) << backtrace;
    }
}

TEST_F(RubyErrors, OutputStandsInOrder) {
    EXPECT_EQ(run("print 'one '\n"
                  "puts 'two'\n"
                  "$stdout << 'cut'\n"
                  "test.log('between')\n"
                  "$stderr.write('to err')\n"
                  "printf('%s', 'last')\n"
                  "warn 'warned'\n"
                  "p 1\n"
                  "require 'logger'\n"
                  "Logger.new($stdout, formatter: ->(*all) { all.last }).info('logged')\n"
                  "raise if $stdout.tty? || $stdout.fileno != 1\n"),
              "");
    QStringList seen;
    for (const ReportEntry& entry : report.entries) {
        if (const auto* output = eventOf<OutputWritten>(entry))
            seen.append((output->stream == OutputStream::StandardError ? "stderr:" : "stdout:") +
                        output->text);
        if (const auto* logged = eventOf<ResultAdded>(entry))
            seen.append(":" + logged->message);
    }
    EXPECT_EQ(seen.join('|'),
              "stdout:one two\n|stdout:cut|:between|stderr:to err|stdout:last|"
              "stderr:warned\n|stdout:1\n|stdout:logged");
}

TEST_F(RubyErrors, PositionsThroughNativeCode) {
    define("callBack", [](ScriptContext* context) {
        QString error;
        context->argument(0)->call({}, &error);
        return true;
    });
    EXPECT_EQ(run("def inner\n"                        // 1
                  "  test.fail('inner')\n"             // 2
                  "  test.fixateResultContext(2)\n"    // 3
                  "  test.log('fixated')\n"            // 4
                  "  test.restoreResultContext\n"      // 5
                  "end\n"                              // 6
                  "def outer\n"                        // 7
                  "  callBack(-> { inner })\n"         // 8
                  "end\n"                              // 9
                  "outer\n"                            // 10
                  "eval('test.log(\"in eval\")')\n"),  // 11
              "");
    const std::vector<ResultAdded> entries = report.results();
    const auto linesOf = [&](std::size_t index) {
        QStringList found;
        for (const LineInfo& position : entries.at(index).callStack)
            found.append(QString::number(position.lineNumber()));
        return found.join(' ');
    };
    EXPECT_EQ(linesOf(0), "2 8 8 10");
    EXPECT_EQ(linesOf(1), "8");
    EXPECT_EQ(linesOf(2), "11");
}

TEST_F(RubyErrors, ExtensionsOfTheLibraryLoad) {
    EXPECT_EQ(run("require 'openssl'\nrequire 'socket'\nrequire 'bigdecimal'\nrequire 'yaml'\n"
                  "require 'fiddle'\nraise unless YAML.load('a: 1') == {'a' => 1}\n"
                  "raise unless BigDecimal('1.10').to_s('F') == '1.1'"),
              "");
}

}  // namespace
}  // namespace Tamrix
