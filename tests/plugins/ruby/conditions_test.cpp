// What a failed test.verify() tells of its condition.

#include "plugins/ruby/rubytest.h"

namespace Tamrix {
namespace {

using namespace Test;

class RubyConditions : public RubyTest {
protected:
    /// The explanation of the only verdict in a script.
    QString explained(const QString& call) {
        const QString text = R"rb(
Pair = Struct.new(:left, :right)
class Thing
  attr_reader :name, :rows, :calls
  def initialize
    @name, @rows, @calls = 'n', [1, 2], 0
  end
  def count = @calls += 1
  def gone = raise('gone')
  def inspect = 'Thing'
  def verify(test, wanted) = test.verify(@name == wanted)
end
class String
  def size = $patched = true
end
def helper(number) = number
def main
  thing, wanted, zero, none = Thing.new, 'w', 0, nil
  long = 'x' * 500
  pair = Pair.new(1, [2])
  )rb" + call + R"rb(
  $calls = thing.calls
end
main
)rb";
        report.entries.clear();
        EXPECT_EQ(run(text), "") << qPrintable(call);
        EXPECT_EQ(report.results().size(), 1u) << qPrintable(call);
        return report.results().empty() ? QString() : report.results().front().explanation;
    }
};

TEST_F(RubyConditions, TextAndValues) {
    const struct {
        const char* call;
        const char* explanation;
    } rows[] = {
        {"test.verify(none)", "none\nnone: nil"},
        {"test.verify(thing.name == wanted && zero > 1, 'comment')",
         "thing.name == wanted && zero > 1\nthing.name: \"n\"\nwanted: \"w\"\nzero: 0"},
        {"test.verify(comment: 'c', condition: !thing.rows)", "!thing.rows\nthing.rows: [1, 2]"},
        {"test.verify thing.rows.size == thing.rows[1] + 1",
         "thing.rows.size == thing.rows[1] + 1\nthing.rows.size: 2\nthing.rows[1]: 2"},
        {"test.verify(thing.name ==\n              'ä' +   wanted)",
         "thing.name == 'ä' +   wanted\nthing.name: \"n\"\nwanted: \"w\""},
        {"test.verify('ä  ä' == 'ö', 'two'); wanted", "'ä  ä' == 'ö'"},
        {"test.verify(pair.right.include?(pair.left) || none&.size)",
         "pair.right.include?(pair.left) || none&.size\npair.right.include?(pair.left): false\n"
         "none&.size: nil"},
        {"test.verify(wanted =~ /x/ ? zero : none)",
         "wanted =~ /x/ ? zero : none\nwanted: \"w\"\nzero: 0\nnone: nil"},
        {"thing.verify(test, wanted)", "@name == wanted\n@name: \"n\"\nwanted: \"w\""},
        {"test.verify((3..4).cover?(zero))", "(3..4).cover?(zero)\n(3..4).cover?(zero): false"},
        // Calls are made once only, and what can't be had is left out.
        {"test.verify(thing.count > zero + 1)", "thing.count > zero + 1\nthing: Thing\nzero: 0"},
        {"test.verify(helper(zero) == 1)", "helper(zero) == 1\nzero: 0"},
        {"test.verify(none || lambda { false }.call || thing.rows.find { |row| row > 2 })",
         "none || lambda { false }.call || thing.rows.find { |row| row > 2 }\nnone: nil\n"
         "thing.rows: [1, 2]"},
        {"test.verify(none && thing.gone)", "none && thing.gone\nnone: nil\nthing: Thing"},
        {"test.verify(none || wanted.size == 3)",
         "none || wanted.size == 3\nnone: nil\nwanted: "
         "\"w\""},
        {"test.verify(none || Thing == 3)", "none || Thing == 3\nnone: nil"},
        {"test.xverify(wanted)", "wanted\nwanted: \"w\""},
        {"eval('test.verify(none)')", "none\nnone: nil"},
        // Nothing to tell.
        {"test.verify(false)", ""},
        {"test.verify(wanted)", ""},
        {"test.xverify(none)", ""},
        {"[none].each(&test.method(:verify))", ""},
        {"test.public_send(:verify, none)", ""},
        {"test.verify(*[none])", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(explained(row.call), QString::fromUtf8(row.explanation)) << row.call;
    EXPECT_EQ(explained("test.verify(long == zero)").split('\n').value(1),
              "long: \"" + QString(199, 'x') + "...");
    EXPECT_EQ(explained("test.verify(thing.count > 1)").section('\n', 0, 0), "thing.count > 1");
    EXPECT_EQ(run("raise $calls.to_s unless $calls == 1"), "");
}

}  // namespace
}  // namespace Tamrix
