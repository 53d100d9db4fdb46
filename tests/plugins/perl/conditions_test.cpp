// What a failed test::verify() tells of its condition.

#include "plugins/perl/perltest.h"

namespace Tamrix {
namespace {

using namespace Test;

class PerlConditions : public PerlTest {
protected:
    /// The explanation of the only verdict in a script that is on disk.
    QString explained(const QString& call) {
        const QString text = R"perl(use utf8;
our $global = 4;
package Thing {
    use overload '""' => sub { 'Thing' }, fallback => 1;
    sub new { bless {name => 'n', rows => [1, 2], calls => 0}, shift }
    sub count { ++$_[0]{calls} }
}
package Counting { sub TIESCALAR { bless \my $n } sub FETCH { ++${$_[0]} } }
package main;
sub same { $_[0] }
sub main {
    my ($thing, $wanted, $zero, $none, $first) = (Thing->new, 'w', 0, undef, 0);
    my (@list, %map) = ();
    @list = (3, {deep => [7]}); %map = ('a key' => 1, b => {});
    my $long = 'x' x 500;
    tie my $tied, 'Counting';
    )perl" + call + R"perl(
    $calls = $thing->{calls} + $tied;
}
main('argument');
)perl";
        report.entries.clear();
        EXPECT_TRUE(writeFile(script(), text.toUtf8()));
        EXPECT_EQ(run(text), "") << qPrintable(call);
        EXPECT_EQ(report.results().size(), 1u) << qPrintable(call);
        return report.results().empty() ? QString() : report.results().front().explanation;
    }
};

TEST_F(PerlConditions, TextAndValues) {
    const struct {
        const char* call;
        const char* explanation;
    } rows[] = {
        {"test::verify($zero);", "$zero\n$zero: 0"},
        {"test::verify($thing->{name} eq $wanted && $zero > 1, 'comment');",
         "$thing->{name} eq $wanted && $zero > 1\n$thing->{name}: \"n\"\n$wanted: \"w\"\n$zero: 0"},
        {"test::verify(-comment => 'c', -condition => !@{$thing->{rows}});",
         "!@{$thing->{rows}}\n$thing->{rows}: [1, 2]"},
        {"test::verify(@list == $list[0] + $#list);",
         "@list == $list[0] + $#list\n@list: [3, {\"deep\" => [7]}]\n$list[0]: 3"},
        {"test::verify($thing->{name} eq\n            'ä' .   $wanted # why, or not\n    );",
         "$thing->{name} eq 'ä' . $wanted\n$thing->{name}: \"n\"\n$wanted: \"w\""},
        {"test::verify('ä, ä)' eq q(ö, '), 'two'); my $other = $wanted;", "'ä, ä)' eq q(ö, ')"},
        {"test::verify($list[1]{deep}[$first] == 8 or $map{'a key'} > 1 + $map{b}{none});",
         "$list[1]{deep}[$first] == 8 or $map{'a key'} > 1 + "
         "$map{b}{none}\n$list[1]{deep}[$first]: 7\n"
         "$map{'a key'}: 1"},
        {"test::verify($global / 2 == $main::global / $global);",
         "$global / 2 == $main::global / $global\n$global: 4\n$main::global: 4"},
        {"test::verify($_[0] =~ /^arg, ($wanted)/ || 0);",
         "$_[0] =~ /^arg, ($wanted)/ || 0\n$_[0]: \"argument\""},
        {"test::verify($wanted =~ m{^[)]} || 0);", "$wanted =~ m{^[)]} || 0\n$wanted: \"w\""},
        // No code runs, nothing comes into being, and what can't be had is left out.
        {"test::verify($thing->count > $zero + 1);", "$thing->count > $zero + 1\n$zero: 0"},
        {"test::verify(same($zero) || $list[same(0)] == 4);",
         "same($zero) || $list[same(0)] == 4\n$zero: 0"},
        {"test::verify($none && $none->{key}{of}, 'c'); die if $none;",
         "$none && $none->{key}{of}\n$none: undef"},
        {"test::verify(scalar grep { $_ > $first } 0);", "scalar grep { $_ > $first } 0"},
        {"test::verify($tied == 3 || $zero);", "$tied == 3 || $zero\n$zero: 0"},
        {"if ($wanted) { test::verify($zero == 1); }", "$zero == 1\n$zero: 0"},
        {"test::xverify($wanted);", "$wanted\n$wanted: \"w\""},
        // Nothing to tell.
        {"test::verify(0);", ""},
        {"test::verify('');", ""},
        {"test::verify($wanted);", ""},
        {"test::xverify($zero);", ""},
        {"my $check = \\&test::verify; $check->($zero);", ""},
        {"eval 'test::verify($zero)';", ""},
        {"test::verify($zero) for 1; sub other { test::verify($_[0]) }", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(explained(row.call), QString::fromUtf8(row.explanation)) << row.call;
    EXPECT_EQ(explained("test::verify($long eq $zero);").split('\n').value(1),
              "$long: \"" + QString(199, 'x') + "...");
    explained("test::verify($thing->count > 1 && $tied);");
    EXPECT_EQ(run("die $calls if $calls != 2"), "") << "the call, and the variable at the end";
}

TEST_F(PerlConditions, AnotherFileTellsNothing) {
    for (const char* const text :
         {"nothing that fits\n", "\n\n)(]~~~~'\"{q(m{~~~\n", "\n\ntest::verify($zero\n"}) {
        ASSERT_TRUE(writeFile(script(), text));
        EXPECT_EQ(run("our $zero = 0;\n\ntest::verify($zero)\n"), "");
    }
    QFile::remove(script());
    EXPECT_EQ(run("our $zero = 0;\n\ntest::verify($zero)\n"), "");
    for (const ResultAdded& entry : report.results())
        EXPECT_EQ(entry.explanation, "");
    EXPECT_EQ(results().value(0), "11 Not verified: False expression");
}

}  // namespace
}  // namespace Tamrix
