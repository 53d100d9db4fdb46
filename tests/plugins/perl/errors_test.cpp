#include <gmock/gmock.h>

#include "interpreter/bridge/debugger.h"
#include "plugins/perl/perltest.h"

namespace Tamrix {
namespace {

using namespace Test;

class PerlErrors : public PerlTest {
protected:
    bool call(const char* function) { return interpreter->callFunction(function, ObjectList()); }

    /// Calls main of the script text; the error's text and its positions.
    QString failure(const QString& text) {
        EXPECT_EQ(run(text), "");
        if (call("main"))
            return QStringLiteral("no error");
        return interpreter->errorMessage() + " at " + errorStack().join(' ');
    }
};

TEST_F(PerlErrors, HaveTextAndStack) {
    ASSERT_TRUE(writeFile(folder.filePath("Helper.pm"),
                          "package Helper;\nsub call {\n    $_[0]->();\n}\n1;\n"));
    ASSERT_TRUE(writeFile(folder.filePath("Broken.pm"), "package Broken;\nmy $x = ;\n1;\n"));
    ASSERT_TRUE(writeFile(folder.filePath("Dying.pm"), "package Dying;\n\ndie 'at load';\n1;\n"));
    interpreter->addToSearchPath(QFileInfo(folder.path()));
    const struct {
        const char* code;
        const char* failure;
    } rows[] = {
        {"sub main {\n    die 'plain';\n}", "plain at test.pl:2"},
        {"sub main {\n    die \"own line\\n\";\n}", "own line at test.pl:2"},
        {"sub f {\n    die 'in f';\n}\nsub main {\n    if (1) {\n        f(1,\n          2);\n    "
         "}\n}",
         "in f at test.pl:2 test.pl:6"},
        {"sub main {\n    my $x = 1;\n    $x->nothing;\n}",
         "Can't locate object method \"nothing\" via package \"1\" (perhaps you forgot to load "
         "\"1\"?) at test.pl:3"},
        {"sub main {\n    my %h = (code => sub {\n        die {code => 7};\n    });\n    "
         "$h{code}->();\n}",
         "An exception that is no text: {\"code\" => 7} at test.pl:3 test.pl:5"},
        {"package Own { sub new { bless {} } sub message { 'of its own' } }\nsub main {\n    die "
         "Own->new;\n}",
         "Own: of its own at test.pl:3"},
        {"sub main {\n    eval { die \"first\\n\" };\n    die \"then $@\";\n}",
         "then first at test.pl:3"},
        {"sub main {\n    eval {\n        die 'again';\n    };\n    die $@;\n}",
         "again at test.pl:3"},
        {"sub main {\n    my $e = eval { test::compare(1); 1 } ? 0 : $@;\n    die $e;\n}",
         "tamrix::Error: compare() expects 2-3 arguments at test.pl:2"},
        {"use Helper;\nsub main {\n    Helper::call(sub {\n        die 'back';\n    });\n}",
         "back at test.pl:4 Helper.pm:3 test.pl:5"},
        {"sub main {\n    require Broken;\n}",
         "syntax error, near \"= ;\" at Broken.pm:2 test.pl:2"},
        {"sub main {\n    require Dying;\n}", "at load at Dying.pm:3 test.pl:2"},
        {"sub main {\n    my @s = sort { die 'in sort' } 2, 1;\n}", "in sort at test.pl:2"},
        {"sub main {\n    local $SIG{__DIE__} = sub { print \"hooked: @_\" };\n    die 'seen';\n}",
         "seen at test.pl:3"},
        {"sub main {\n    local $SIG{ALRM} = sub { die \"alarm\\n\" };\n    alarm 1;\n    1 while "
         "1;\n}",
         "alarm at test.pl:4"},
        {"sub main {\n    my $o = bless {}, 'D';\n    undef $o;\n    die 'after';\n}\nsub "
         "D::DESTROY { die 'ignored' }",
         "after at test.pl:4"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(failure(row.code), row.failure) << row.code;
}

TEST_F(PerlErrors, Syntax) {
    const struct {
        const char* text;
        int line;
        const char* message;
    } rows[] = {
        {"my $x = 1;\nmy $y = = 2;\n", 2, "syntax error, near \"= =\""},
        {"use strict;\n\n$y = 1;\n", 3, "Global symbol \"$y\" requires explicit package name"},
        {"my $x = \"\n\n", 1, "Can't find string terminator '\"' anywhere before EOF"},
        {"BEGIN {\n    die 'early';\n}\n", 2, "early"},
        {"use NoSuch::Module;\n", 1, "Can't locate NoSuch/Module.pm in @INC"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(interpreter->checkSyntax(row.text, script())) << row.text;
        EXPECT_EQ(interpreter->errorLine(), row.line) << row.text;
        EXPECT_THAT(interpreter->errorMessage().toStdString(), testing::StartsWith(row.message));
    }
    // What is checked runs once.
    ASSERT_TRUE(interpreter->checkSyntax("test::log('runs');\ndie 'then';\n", script()));
    EXPECT_FALSE(interpreter->evaluate("test::log('runs');\ndie 'then';\n", script()));
    EXPECT_EQ(interpreter->errorMessage(), "then");
    EXPECT_EQ(results(), QStringList("7 runs: "));
}

TEST_F(PerlErrors, CodeWithoutAFileHasALine) {
    EXPECT_FALSE(interpreter->evaluate("my $x = 1;\ndie 'here';\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 2);
    EXPECT_EQ(interpreter->errorFile("none"), "none");
    EXPECT_FALSE(interpreter->evaluate("my $x = ;\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 1);
    EXPECT_TRUE(interpreter->evaluate("1;\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), -1);
}

TEST_F(PerlErrors, AnObjectThatCantTellItsTextHasAPlace) {
    ASSERT_EQ(run("package Bad; use overload '\"\"' => sub { die 'no text' };\n"
                  "package main;\n"
                  "sub failing {\n"
                  "    die bless {}, 'Bad';\n"
                  "}\n"),
              "");
    EXPECT_FALSE(call("failing"));
    EXPECT_EQ(errorStack(), QStringList("test.pl:4"));
}

TEST_F(PerlErrors, ExitEndsTheCase) {
    ASSERT_EQ(run("sub init { eval { exit }; test::fail('caught') }\n"
                  "sub main { test::fail('not reached') }\n"
                  "sub cleanup { test::log('cleaned') }\n"
                  "sub failing { my @s = sort { exit 3 } 2, 1 }\n"),
              "");
    EXPECT_FALSE(call("failing"));
    EXPECT_EQ(interpreter->errorMessage(), "The script ended with exit(3)");
    EXPECT_EQ(errorStack(), QStringList("test.pl:4"));
    EXPECT_TRUE(call("init"));
    EXPECT_TRUE(call("main"));
    EXPECT_TRUE(call("cleanup"));
    EXPECT_EQ(results(), QStringList("7 cleaned: "));
}

TEST_F(PerlErrors, OnlyTheSkipItselfEndsACaseAsSkipped) {
    const struct {
        const char* body;
        bool ends;
        bool isSkip;
    } rows[] = {
        {"test::skip('s')", true, true},
        {"eval { test::skip('s') }; test::fail('caught')", true, true},
        {"test::exception(sub { test::skip('s') })", true, true},
        {"my @s = sort { test::skip('s') } 2, 1", true, true},
        {"my $guard = bless []; test::skip('s')", true, true},
        {"die 'other'", true, false},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(
            run(QString("sub main {\n    %1;\n}\nsub DESTROY { $::ended = 1 }").arg(row.body)), "");
        EXPECT_EQ(call("main"), !row.ends) << row.body;
        EXPECT_EQ(interpreter->errorIsSkip(), row.isSkip) << row.body;
    }
    EXPECT_EQ(run("die 'no' unless $::ended"), "");
    EXPECT_FALSE(interpreter->evaluate("test::skip('while it loads')\n", script()));
    EXPECT_TRUE(interpreter->errorIsSkip());
    for (const QString& line : results())
        EXPECT_THAT(line.toStdString(), testing::StartsWith("6 "));
}

TEST_F(PerlErrors, TheNextScriptStartsAfresh) {
    ASSERT_TRUE(interpreter->evaluate("our $shared = 1;\n", QString()));  // an init script
    interpreter->setScriptArguments(script(), {"one", "two"});
    ASSERT_EQ(run("die 'arguments' if \"@ARGV\" ne 'one two' || $0 !~ /test.pl$/;\n"
                  "sub main { exit }\n"
                  "sub cleanup { test::fail('of another script') }\n"),
              "");
    EXPECT_TRUE(call("main"));
    interpreter->setScriptArguments(script(), {});
    EXPECT_FALSE(interpreter->hasFunction("main"));
    EXPECT_FALSE(interpreter->hasFunction("cleanup"));
    ASSERT_EQ(run("sub main { test::log('runs', \"$main::shared\") }\n"), "");
    EXPECT_TRUE(call("main"));
    EXPECT_EQ(results(), QStringList("7 runs: 1"));
}

TEST_F(PerlErrors, OutputStandsInOrder) {
    EXPECT_EQ(run("print 'one', ' '; print \"two\\n\";\n"
                  "{ local ($,, $\\) = ('-', \"!\\n\"); print 'a', 'b'; }\n"
                  "printf '%03d', 7;\n"
                  "test::log('between');\n"
                  "warn \"to err\\n\";\n"
                  "use feature 'say'; say \"\\x{e4}\\x{20ac}\"; say \"\\xc3\\xa4\";\n"
                  "die 'fileno' unless fileno(STDOUT) == 1 && fileno(STDERR) == 2;\n"
                  "open my $old, '>&', \\*STDOUT or die; close STDOUT; print 'last';\n"
                  "open STDOUT, '>', \\my $text or die $!; print \"in a text\\n\"; close STDOUT;\n"
                  "open STDOUT, '>&', $old or die $!; print \"back with $text\";\n"
                  "open STDERR, '>&STDOUT' or die $!; print STDERR \"aside\\n\";\n"),
              "");
    QStringList seen;
    for (const ReportEntry& entry : report.entries) {
        if (const auto* output = eventOf<OutputWritten>(entry))
            seen.append((output->stream == OutputStream::StandardError ? "stderr:" : "stdout:") +
                        output->text);
        if (const auto* logged = eventOf<ResultAdded>(entry))
            seen.append(":" + logged->message);
    }
    EXPECT_EQ(seen, (QStringList{"stdout:one two\n", "stdout:a-b!\n", "stdout:007", ":between",
                                 "stderr:to err\n", QString::fromUtf8("stdout:ä€\n"),
                                 QString::fromUtf8("stdout:ä\n"),
                                 "stdout:lastback with in a text\n", "stdout:aside\n"}));
}

TEST_F(PerlErrors, DataIsWhatStandsBehindTheCode) {
    EXPECT_EQ(run("my @lines = <DATA>; chomp @lines; test::log(join '|', @lines);\n"
                  "test::log(fileno(DATA) // 'none');\n__DATA__\n"
                  "first\n\xc3\xa4 __END__\n__END__\n"),
              "");
    EXPECT_EQ(results().value(0), QString::fromUtf8("7 first|\xc3\xa4 __END__|__END__: "));
    // Of each script its own.
    EXPECT_EQ(run("test::log(scalar <DATA>)\n__END__\nsecond"), "");
    EXPECT_EQ(results().last(), "7 second: ");
}

TEST_F(PerlErrors, PositionsThroughNativeCode) {
    define("callBack", [](ScriptContext* context) {
        QString error;
        context->argument(0)->call({}, &error);
        return true;
    });
    EXPECT_EQ(run("sub inner {\n"
                  "    test::fail('inner');\n"
                  "    test::fixateResultContext(2);\n"
                  "    test::log('fixated');\n"
                  "    test::restoreResultContext();\n"
                  "}\n"
                  "sub outer {\n"
                  "    callBack(sub { inner() });\n"
                  "}\n"
                  "outer();\n"
                  "eval 'test::log(1 && \"in eval\")';\n"),
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

TEST_F(PerlErrors, ModulesWithLibrariesOfTheirOwn) {
    EXPECT_EQ(
        run("use POSIX (); use List::Util 'sum'; use Data::Dumper; use Storable 'dclone';\n"
            "use Encode; use Time::HiRes; use tamrix;\n"
            "die unless sum(1, 2) == 3 && dclone([1])->[0] == 1 && POSIX::floor(1.5) == 1;\n"),
        "");
}

}  // namespace
}  // namespace Tamrix
