#include "interpreter/bridge/testsettingstype.h"
#include "plugins/ruby/rubytest.h"

namespace Tamrix {
namespace {

using namespace Test;

class RubyValues : public RubyTest {
protected:
    RubyValues() {
        define("describe", describe);
        define("same", [](ScriptContext* context) {
            context->setResult(context->argument(0));
            return true;
        });
        define("give", [](ScriptContext* context) {
            s_given(context);
            return true;
        });
        s_given = nullptr;
    }
    ~RubyValues() override { TestSettingsType::reset(); }

    /// Notes what the core is told of a value.
    static bool describe(ScriptContext* context) {
        const SharedPtr<ScriptArgument> value = context->argument(0);
        QStringList words{value->typeName()};
        const std::pair<const char*, bool> tests[] = {
            {"bool", value->isBool()},       {"number", value->isNumber()},
            {"integer", value->isInteger()}, {"string", value->isString()},
            {"object", value->isObject()},   {"callable", value->isCallable()},
            {"list", value->isList()},       {"map", value->isMap()},
            {"null", value->isNull()},       {"true", context->isTrue(value)}};
        for (const auto& [name, holds] : tests) {
            if (holds)
                words.append(name);
        }
        s_seen.append(words.join(' ') + "|" + value->toString());
        return true;
    }

    inline static std::function<void(ScriptContext*)> s_given;
};

TEST_F(RubyValues, AreSeenForWhatTheyAre) {
    EXPECT_EQ(run(R"rb(
[nil, true, 7, -2**63, 1.5, 'text', "\u{1F600}", :name, [1, 2], {a: 1}, 3r,
 'ä'.encode('ISO-8859-1'), Time.at(0).utc, String].each { |value| describe(value) }
describe(->(x) { x }.class)
same(method(:puts)).arity == -1 or raise 'not the method'
)rb"),
              "");
    EXPECT_EQ(
        s_seen,
        (QStringList{
            "NilClass null|nil", "TrueClass bool true|true", "Integer number integer true|7",
            "Integer number integer true|-9223372036854775808", "Float number true|1.5",
            "String string true|text", QString::fromUtf8("String string true|\xF0\x9F\x98\x80"),
            "Symbol string true|name", "Array list true|[1, 2]", "Hash map true|{:a=>1}",
            "Rational number true|3/1", QString::fromUtf8("String string true|ä"),
            "Time true|1970-01-01 00:00:00 UTC", "Class true|String", "Class true|Proc"}));
}

TEST_F(RubyValues, PassThroughUnchanged) {
    EXPECT_EQ(run(R"rb(
marker = Object.new
[nil, true, 2**63 - 1, 1.5, "a\0z", [marker], {'k' => marker}, marker].each do |value|
  raise value.inspect unless same(value).equal?(value)
end
)rb"),
              "");
}

TEST_F(RubyValues, ConvertAsTheLanguageDoes) {
    define("convert", [](ScriptContext* context) {
        const SharedPtr<ScriptArgument> value = context->argument(0);
        s_seen.append(QStringLiteral("%1 %2").arg(value->toInt()).arg(value->toDouble()));
        return true;
    });
    EXPECT_EQ(run("[3, 2.9, -2.9, true, 'x', nil, 2**62, 5/2r].each { |v| convert(v) }"), "");
    EXPECT_EQ(s_seen, (QStringList{"3 3", "2 2.9", "-2 -2.9", "1 1", "0 0", "0 0",
                                   "4611686018427387904 4.61169e+18", "2 2.5"}));
    EXPECT_EQ(run("convert(2**63)"),
              "RangeError: Integer of 64 bits is too large: only 64 bits can be passed on");
    EXPECT_EQ(run("convert(Float::NAN)"), "FloatDomainError: NaN");
}

TEST_F(RubyValues, ComeBackAsRubysOwn) {
    struct {
        std::function<void(ScriptContext*)> given;
        const char* expected;
    } const rows[] = {
        {[](auto* c) { c->setNullResult(); }, "nil"},
        {[](auto* c) { c->setBoolResult(true); }, "true"},
        {[](auto* c) { c->setIntegerResult(-5); }, "-5"},
        {[](auto* c) { c->setInt64Result((1LL << 62) + 1); }, "4611686018427387905"},
        {[](auto* c) { c->setDoubleResult(0.5); }, "0.5"},
        {[](auto* c) { c->setStringResult(QString::fromUtf8("ä\xF0\x9F\x98\x80")); },
         "\"ä\xF0\x9F\x98\x80\""},
        {[](auto* c) { c->setStringResult(QString(QChar(0xdc80))); }, "\"\\xED\\xB2\\x80\""},
        {[](auto* c) { c->setStringResult(QString("a") + QChar(0) + "b"); }, "\"a\\u0000b\""},
        {[](auto* c) {
             c->setDateTimeResult(QDateTime({2026, 1, 2}, {3, 4, 5, 678}, Qt::UTC));
         },
         "2026-01-02 03:04:05.678 UTC"},
        {[](auto* c) { c->setResult(c->createBytes("\xff\x01")); }, "\"\\xFF\\x01\""},
        {[](auto* c) {
             c->setListResult({"a", "b"});
         },
         "[\"a\", \"b\"]"},
        {[](auto* c) {
             c->setMapResult({{"b", 1}, {"a", "x"}});
         },
         "{\"a\"=>\"x\", \"b\"=>\"1\"}"},
        {[](auto* c) { c->setObjectListResult({nullptr}); }, "[nil]"},
        {[](auto* c) {
             c->setStackTraceResult({{"a.rb", 3}, {QString(), -1}});
         },
         "[#<struct Tamrix::Location file_name=\"a.rb\", line=3>]"},
        {[](auto*) {}, "nil"},
    };
    for (const auto& row : rows) {
        s_given = row.given;
        EXPECT_EQ(run("v = give\nv = v.utc if v.is_a?(Time)\ndescribe(v.inspect)"), "");
        EXPECT_EQ(s_seen.last(), "String string true|" + QString::fromUtf8(row.expected));
    }
    // Half a pair of surrogates comes back as it went.
    s_given = [](auto* c) { c->setStringResult("x" + QString(QChar(0xd83d))); };
    EXPECT_EQ(run("describe(give)"), "");
    EXPECT_EQ(s_seen.last(), "String string true|x" + QString(QChar(0xd83d)));
}

TEST_F(RubyValues, ApplicationContextsAndDataSets) {
    s_given = [](ScriptContext* context) {
        SharedPtr<ApplicationContext> application(new ApplicationContext);
        application->id = 4;
        application->name = "app";
        context->setContextResult(application);
    };
    EXPECT_EQ(run("raise give.inspect unless give.inspect.include?(\"AUT 'app'\") && give == give\n"
                  "raise give.name unless give.name == 'app' && give.is_running != nil"),
              "");
    s_given = [](ScriptContext* context) {
        auto* const set = new TestDataSet("prices.csv", ',', false);
        auto* const header = new TestDataRecord(set, -1);
        header->addValue("name");
        header->addValue("price");
        set->setHeader(header);
        for (int index = 0; index < 2; ++index) {
            auto* const record = new TestDataRecord(set, index);
            record->addValue(QString("item%1").arg(index));
            record->addValue(QString::number(10 * index));
            set->addRecord(record);
        }
        auto* const shortRow = new TestDataRecord(set, 2);
        shortRow->addValue("short");
        set->addRecord(shortRow);
        context->setTestDataSetResult(set);
    };
    EXPECT_EQ(run(R"rb(
table = give
raise 'count' unless table.size == 3 && table.map { |r| r['price'] } == ['0', '10', '']
raise 'short' unless table[2].to_a == ['short', ''] && table[2][1] == ''
raise 'row' unless table[1][0] == 'item1' && table[-2][:name] == 'item1' && table[0].to_a == %w[item0 0]
raise 'field' unless testData.field(table[1], 'price') == '10'
row = table[1]
table = nil
GC.start
raise row['name'] unless row['name'] == 'item1'
[-> { row['none'] }, -> { row[2] }, -> { give[3] }].each do |wrong|
  begin
    wrong.call
  rescue KeyError, IndexError => error
    describe(error.message)
  end
end
)rb"),
              "");
    EXPECT_EQ(s_seen.size(), 3) << qPrintable(s_seen.join('\n'));
}

TEST_F(RubyValues, ArgumentsByNameAndBlocks) {
    define("noted",
           [](ScriptContext* context) {
               QStringList words;
               for (int index = 0; index < context->argumentCount(); ++index)
                   words.append(context->argument(index) ? context->argument(index)->toString()
                                                         : QStringLiteral("-"));
               s_seen.append(words.join(','));
               return true;
           },
           {"fileName"}, {"otherPart", "last"});
    EXPECT_EQ(run("noted('a', last: 3)\nnoted('a', nil, 3)\nnoted('a', other_part: 2)\n"
                  "noted(fileName: 'b')\nnoted('a', {x: 1})\nnoted('a', **{last: 4})"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"a,-,3", "a,-,3", "a,2", "b", "a,{:x=>1}", "a,-,4"}));
    const std::pair<const char*, const char*> refused[] = {
        {"noted('a', lst: 3)", "ArgumentError: noted() has no argument 'lst'"},
        {"noted('a') { }", "ArgumentError: noted() takes no block"},
    };
    for (const auto& [code, error] : refused)
        EXPECT_EQ(run(code).left(QString(error).size()), error) << code;
    EXPECT_EQ(run("count = 0\nraise 'late' unless waitFor { (count += 1) == 2 }\n"
                  "raise 'early' if wait_for(0) { false }\n"
                  "raise 'named' if wait_for(timeout: 0) { false }"),
              "");
}

TEST_F(RubyValues, CallablesAreCalled) {
    define("callTwice", [](ScriptContext* context) {
        const SharedPtr<ScriptArgument> function = context->argument(0);
        for (int count = 0; count < 2; ++count) {
            QString error;
            const auto value = function->call({context->createInteger(count)}, &error);
            s_seen.append(value ? value->toString() : "error " + error);
        }
        // The arguments of this call are still there.
        s_seen.append(context->argument(0) == function ? "kept" : "lost");
        return true;
    });
    EXPECT_EQ(run("callTwice(->(n) { same(n) + 40 })\ncallTwice(proc { |n| 1 / n })"), "");
    EXPECT_EQ(s_seen, (QStringList{"40", "41", "kept", "error ZeroDivisionError: divided by 0", "1",
                                   "kept"}));
    define("register", [](ScriptContext* context) {
        context->setStringResult(Interpreter::self()->registerCallable(context->argument(0)));
        return true;
    });
    define("invoke", [](ScriptContext* context) {
        const QString identifier = context->argument(0)->toString();
        context->setBoolResult(Interpreter::self()->invokeCallable(identifier));
        return true;
    });
    EXPECT_EQ(run(R"rb(
class Handler
  attr_reader :count
  def on() = @count = @count.to_i + 1
end
handler, other = Handler.new, Handler.new
id = register(handler.method(:on))
raise id unless id == register(handler.method(:on)) && id != register(other.method(:on))
GC.start
raise 'not called' unless invoke(id) && handler.count == 1
)rb"),
              "");
    // Jumps out of a block pass through native code.
    EXPECT_EQ(run(R"rb(
def out() = callTwice(->(n) { throw :done, n })
raise 'catch' unless catch(:done) { out } == 0
def back
  waitFor { return 5 }
end
raise 'return' unless back == 5
raise 'break' unless waitFor { break 6 } == 6
raise $!.inspect if $!
)rb"),
              "");
}

TEST_F(RubyValues, CodeThatIsHandedOverSeesTheCallersNames) {
    EXPECT_EQ(run(R"rb(
def main
  local = 5
  raise 'no' unless waitFor('local > 3') && !waitFor('  !local ', 0)
  test.exception('local / 0')
  test.exception('def f(')
  test.exception { raise ArgumentError, 'own' }
  test.exception('nothing') { 1 }
end
main
)rb"),
              "");
    const QStringList all = results();
    EXPECT_EQ(all.value(0), "10 Exception: Raised ZeroDivisionError: divided by 0");
    EXPECT_TRUE(all.value(1).startsWith("11 Exception: The code is not valid: SyntaxError"));
    EXPECT_EQ(all.value(2), "10 Exception: Raised ArgumentError: own");
    EXPECT_TRUE(all.value(3).contains("No exception was raised")) << qPrintable(all.value(3));
}

TEST_F(RubyValues, SettingsAreProperties) {
    EXPECT_EQ(run(R"rb(
raise 'default' unless testSettings.waitForObjectTimeout == 20_000
testSettings.waitForObjectTimeout = 500
test_settings.throw_on_failure = true
testSettings.tesseract.language = 'deu'
testSettings.tesseract.psm += 1
raise 'psm' unless testSettings.tesseract.psm == 7
raise 'class' unless testSettings.tesseract.class == Tamrix::TesseractTestSettings
)rb"),
              "");
    EXPECT_EQ(TestSettingsType::s_waitForObjectTimeout, 500);
    EXPECT_EQ(TestSettingsType::s_ocr.tesseract.language, QString("deu"));
    const std::pair<const char*, const char*> rows[] = {
        {"testSettings.waitForObjectTimeout = -1",
         "Tamrix::Error: The timeout value cannot be negative"},
        {"testSettings.waitForObjecTimeout = 1",
         "NoMethodError: undefined method `waitForObjecTimeout=' for Tamrix::TestSettings:Class"},
        {"testSettings.new", "ArgumentError: testSettings objects can't be made by scripts"},
    };
    for (const auto& [code, error] : rows)
        EXPECT_EQ(run(code).section('\n', 0, 0), error) << code;
}

}  // namespace
}  // namespace Tamrix
