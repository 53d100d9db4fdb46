#include <QDateTime>
#include <functional>

#include "plugins/perl/perltest.h"

namespace Tamrix {
namespace {

using namespace Test;

class PerlValues : public PerlTest {
protected:
    PerlValues() {
        define("describe", describe);
        define("same", same);
        define("give", give);
        s_given = nullptr;
    }

    /// Notes what the core is told of a value.
    static bool describe(ScriptContext* context) {
        const SharedPtr<ScriptArgument> value = context->argument(0);
        QStringList words{value->typeName()};
        const std::pair<const char*, bool> tests[] = {
            {"bool", value->isBool()},         {"number", value->isNumber()},
            {"integer", value->isInteger()},   {"string", value->isString()},
            {"like", value->isStringLike()},   {"object", value->isObject()},
            {"callable", value->isCallable()}, {"list", value->isList()},
            {"map", value->isMap()},           {"null", value->isNull()},
            {"true", context->isTrue(value)}};
        for (const auto& [name, holds] : tests) {
            if (holds)
                words.append(name);
        }
        s_seen.append(words.join(' ') + "|" + value->toString());
        return true;
    }

    static bool same(ScriptContext* context) {
        context->setResult(context->argument(0));
        return true;
    }

    /// Gives what the test has put down.
    static bool give(ScriptContext* context) {
        s_given(context);
        return true;
    }
    inline static std::function<void(ScriptContext*)> s_given;
};

TEST_F(PerlValues, AreSeenForWhatTheyAre) {
    EXPECT_EQ(run(R"perl(
package Text { use overload '""' => sub { 'as text' }, fallback => 1; sub new { bless [], shift } }
my $used = '12'; my $sum = $used + 1;
my $shown = 7; my $text = "$shown";
describe($_) for undef, !!1, !!0, $shown, -9223372036854775808, 1.5, int(7.9), 'text',
    "\x{1F600}", $used, [1, 2], {a => 1}, \&describe, Text->new, qr/x/i;
)perl"),
              "");
    EXPECT_EQ(
        s_seen,
        (QStringList{
            "undef null|", "boolean bool true|1", "boolean bool|",
            "integer number integer like true|7",
            "integer number integer like true|-9223372036854775808", "number number like true|1.5",
            "integer number integer like true|7", "string string like true|text",
            QString::fromUtf8("string string like true|\xF0\x9F\x98\x80"),
            "string string like true|12", "ARRAY list true|[1, 2]", "HASH map true|{\"a\" => 1}",
            s_seen.value(12), "Text like true|as text", "Regexp true|(?^i:x)"}));
    EXPECT_TRUE(s_seen.value(12).startsWith("CODE callable true|CODE("));
}

TEST_F(PerlValues, PassThroughUnchanged) {
    EXPECT_EQ(run(R"perl(
my $object = bless {}, 'Any';
for my $value (9223372036854775807, 1.5, "a\x{dc80}\0z", "\x{10ffff}", "\xe4", [$object], $object) {
    my $back = same($value);
    die "not the same: $value" if ref $value ? $back != $value : $back ne $value;
}
die 'undef' if defined same(undef);
tie my $tied, 'Counter';
package Counter { sub TIESCALAR { bless \my $n } sub FETCH { ++${$_[0]} } }
die 'tied' if same($tied) != 1;
)perl"),
              "");
}

TEST_F(PerlValues, ConvertAsTheLanguageDoes) {
    define("convert", [](ScriptContext* context) {
        const SharedPtr<ScriptArgument> value = context->argument(0);
        s_seen.append(QStringLiteral("%1 %2").arg(value->toInt()).arg(value->toDouble()));
        return true;
    });
    EXPECT_EQ(run("convert($_) for 3, 2.9, -2.9, !!1, 'x', undef, 2**62"), "");
    EXPECT_EQ(s_seen, (QStringList{"3 3", "2 2.9", "-2 -2.9", "1 1", "0 0", "0 0",
                                   "4611686018427387904 4.61169e+18"}));
    for (const char* const number : {"9223372036854775808", "1e300", "'nan' + 0"})
        EXPECT_TRUE(run(QString("convert(%1)").arg(number))
                        .endsWith(" is too large: only 64 bits can be passed on"))
            << number;
}

TEST_F(PerlValues, ComeBackAsPerlsOwn) {
    struct {
        std::function<void(ScriptContext*)> given;
        const char* holds;
    } const rows[] = {
        {[](auto* c) { c->setNullResult(); }, "!defined $v"},
        {[](auto* c) { c->setBoolResult(true); }, "$v && $v eq '1'"},
        {[](auto* c) { c->setBoolResult(false); }, "!$v && $v eq ''"},
        {[](auto* c) { c->setInt64Result(1LL << 62); }, "$v == 4611686018427387904"},
        {[](auto* c) { c->setDoubleResult(0.5); }, "$v == 0.5"},
        {[](auto* c) { c->setStringResult(QString(QChar(0xdc80))); }, "$v eq \"\\x{dc80}\""},
        {[](auto* c) { c->setStringResult(QString::fromUtf8("\xC3\xA4")); },
         "$v eq \"\\x{e4}\" && length $v == 1"},
        {[](auto* c) {
             c->setDateTimeResult(QDateTime({2026, 1, 2}, {3, 4, 5, 500}));
         },
         "$v->ymd eq '2026-01-02' && $v->hms eq '03:04:05' && $v->epoch =~ /\\.5$/"},
        {[](auto* c) {
             c->setListResult({"a", "b"});
         },
         "\"@$v\" eq 'a b'"},
        {[](auto* c) {
             c->setMapResult({{"b", 1}, {"a", "x"}});
         },
         "$v->{a} eq 'x' && $v->{b} eq '1' && keys %$v == 2"},
        {[](auto* c) { c->setObjectListResult({nullptr}); }, "@$v == 1 && !defined $v->[0]"},
        {[](auto* c) {
             c->setStackTraceResult({{"a.pl", 3}, {QString(), -1}});
         },
         "@$v == 1 && $v->[0]{fileName} eq 'a.pl' && $v->[0]{line} == 3"},
        {[](auto*) {}, "!defined $v"},
    };
    for (const auto& row : rows) {
        s_given = row.given;
        EXPECT_EQ(run(QString("my $v = give(); die unless %1;").arg(row.holds)), "") << row.holds;
    }
}

TEST_F(PerlValues, AreEqualAsTestersMean) {
    struct {
        const char* left;
        const char* right;
        bool equal;
    } const rows[] = {
        {"1", "1.0", true},
        {"1", "'1'", true},
        {"1", "'1.0'", true},
        {"'1'", "'1.0'", false},
        {"1", "'x'", false},
        {"0", "''", false},
        {"!!1", "1", true},
        {"!!0", "0", true},
        {"!!0", "''", true},
        {"undef", "undef", true},
        {"undef", "''", false},
        {"undef", "0", false},
        {"'ä'", "\"\\x{e4}\"", true},
        {"[1, {a => undef}]", "[1, {a => undef}]", true},
        {"[1]", "[1, 2]", false},
        {"{a => 1}", "{b => 1}", false},
        {"[]", "{}", false},
        {"\\&same", "\\&same", true},
        {"sub { 1 }", "sub { 1 }", false},
        {"qr/a/", "qr/a/", true},
        {"18446744073709551615", "-1", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run(QString("die 'wrong' if !!test::xcompare(%1, %2) ne !!%3")
                          .arg(row.left, row.right, row.equal ? "1" : "0")),
                  "")
            << row.left << ' ' << row.right;
    EXPECT_EQ(run("my $c = []; push @$c, $c; my $d = []; push @$d, $d; test::compare($c, $d)"),
              "tamrix::Error: Values that are compared are nested deeper than 100: does a part of "
              "one hold itself?");
}

TEST_F(PerlValues, ArgumentsByName) {
    define(
        "take",
        [](ScriptContext* context) {
            QStringList words;
            for (int index = 0; index < context->argumentCount(); ++index)
                words.append(context->argument(index) ? context->argument(index)->toString() : "-");
            s_seen.append(words.join(' '));
            return true;
        },
        {"first"}, {"second", "third"});
    EXPECT_EQ(run("take(1, -third => 3); take(-second => 2, -first => 1); take('-x', '-second');"
                  "take('-other', 2)"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"1 - 3", "1 2", "-x -second", "-other 2"}));
    EXPECT_EQ(run("take(-second => 2)"), "tamrix::ArgumentError: take() needs an argument 'first'");
}

TEST_F(PerlValues, CallablesAndTheirErrors) {
    define("callBack", [](ScriptContext* context) {
        QString error;
        const SharedPtr<ScriptArgument> value =
            context->argument(0)->call({context->createInteger(2)}, &error);
        s_seen.append(value ? value->toString() : "error " + error);
        return true;
    });
    EXPECT_EQ(run("$@ = 'kept';\n"
                  "callBack(sub { 2 * shift });\n"
                  "callBack(sub { die \"wrong\\n\" });\n"
                  "callBack(sub { die tamrix::LookupError->new('gone') });\n"
                  "die 'lost' if $@ ne 'kept';\n"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"4", "error wrong", "error tamrix::LookupError: gone"}));
}

}  // namespace
}  // namespace Tamrix
