// Feature files with step definitions in Perl: what is Perl's own in them.

#include <QDir>

#include "plugins/perl/perltest.h"

namespace Tamrix {
namespace {

using namespace Test;

class PerlFeatures : public PerlTest {
protected:
    /// Runs the steps of a scenario with step definitions; the results, and the error if it failed.
    QStringList runSteps(const QByteArray& definitions, const QByteArray& steps) {
        interpreter->setScriptArguments(script(), {});
        EXPECT_TRUE(QDir(folder.path()).mkpath("steps"));
        EXPECT_TRUE(writeFile(folder.filePath("steps/steps.pl"), "use bdd;\n" + definitions));
        const QString feature = folder.filePath("x.feature");
        EXPECT_TRUE(writeFile(feature, "Feature: f\n  Scenario: s\n" + steps));
        report.entries.clear();
        const bool succeeded = interpreter->callLibraryFunction("runFeatureFile", {feature});
        return succeeded ? results() : results() + QStringList(interpreter->errorMessage());
    }
};

TEST_F(PerlFeatures, ValuesAndContext) {
    EXPECT_EQ(
        runSteps(R"perl(
ParameterType 'pair', '(\d+)-(\d+)', sub { [@_] };
Given 'numbers {int} {float} {word} {pair}', sub {
    my ($context, $int, $float, $word, $pair) = @_;
    test::log("$int $float $word @$pair");
    $context->{seen} = [$int];
};
Given qr/^named (?<colour>\w+) (\d+)$/i, sub {
    my ($context, $number, %named) = @_;
    test::log("$number $named{colour} $context->{seen}[0] " . join ' ', sort keys %$context);
    test::log(exists $context->{seen} && !exists $context->{other} ? 'yes' : 'no');
    delete $context->{seen};
    test::log(defined $context->{seen} ? 'yes' : 'no');
};
Given 'a table', sub {
    my $table = shift->{table};
    test::log(join ' ', scalar @$table, $table->[1]{b}, @{$table->headers}, $table->raw->[0][1]);
};
)perl",
                 "    Given numbers 7 1.5 w 3-4\n"
                 "    And NAMED red 5\n"
                 "    And a table\n      | a | b |\n      | 1 | 2 |\n      | 3 | 4 |\n"),
        (QStringList{"7 7 1.5 w 3 4: ", "7 5 red 7 feature scenario seen step table tags text: ",
                     "7 yes: ", "7 no: ", "7 2 4 a b b: "}));
}

TEST_F(PerlFeatures, WhatIsWrongIsTold) {
    const std::pair<const char*, const char*> rows[] = {
        {"Given 'x', 5;",
         "steps.pl:2: tamrix::ArgumentError: What is registered has to be a function"},
        {"Given qr/x/x, sub {};",
         "steps.pl:2: tamrix::ArgumentError: Steps know the flags i, m and s of regular "
         "expressions "
         "only"},
        {"my $x = ;\n1;", "steps.pl:2: syntax error, at EOF"},
    };
    for (const auto& [definitions, error] : rows) {
        const QStringList told = runSteps(definitions, "    Given x\n");
        EXPECT_TRUE(told.last().endsWith(error)) << qPrintable(told.last());
    }
    EXPECT_EQ(runSteps("Given 'x', sub { exit };", "    Given x\n"), QStringList());
    EXPECT_EQ(runSteps("Given 'x', sub { Pending() };", "    Given x\n"),
              QStringList("9 Pending Step Definition: bdd::Pending: the step definition is to be "
                          "written"));
}

}  // namespace
}  // namespace Tamrix
