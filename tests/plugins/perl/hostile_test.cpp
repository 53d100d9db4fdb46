// Scripts that end their case and never the run.

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "interpreter/bridge/debugger.h"
#include "plugins/perl/perltest.h"

namespace Tamrix {
namespace {

using namespace Test;

using PerlHostility = PerlTest;

TEST_F(PerlHostility, EndsItsCaseAlone) {
    const struct {
        const char* code;
        const char* error;
    } rows[] = {
        {"sub f { f() } f()", "Recursion is deeper than 50000 calls and blocks"},
        {"my $m = {}; $m->{m} = $m; findObject($m)",
         "tamrix::Error: findObject() failed: The name of an object is nested deeper than 16: does "
         "a part of it hold itself?"},
        {"package O { use overload '+' => sub { $_[0] + 1 } } my $o = bless [], 'O'; my $x = $o + "
         "1",
         "Recursion is too deep for the stack"},
        {"package S { use overload '\"\"' => sub { \"$_[0]\" } } my $o = bless [], 'S'; my $x = "
         "\"$o\"",
         "Recursion is too deep for the stack"},
        {"package T { use overload '\"\"' => sub { \"$_[0]\" } } test::log(bless [], 'T')", ""},
        {"my $x = 'x' x (1 << 46)", "Perl has no memory left"},
        {"$SIG{__DIE__} = sub { die 'in the hook' }; die 'x'", "in the hook"},
        {"sub D::DESTROY { exit 2 } my $o = bless [], 'D'; undef $o",
         "The script ended with exit(2)"},
        {"*main::test::compare = 1; undef &test::pass; test::pass('x')", "Undefined subroutine"},
        {"tamrix::Object->anything",
         "tamrix::MemberError: 'anything' was not called on an object "
         "of an application"},
        {"my $o = bless {}, 'tamrix::Object'; $o->text",
         "tamrix::MemberError: 'text' was not called on an object of an application"},
        {"tamrix::Record::_fields(1)", "tamrix::Error: Not called on a record"},
        {"tamrix::_write(); tamrix::StepContext->_addStep(1)", "tamrix::Error: Too few arguments"},
        {"tamrix::Object::_text()", "tamrix::Error: Too few arguments"},
    };
    for (const auto& row : rows) {
        const QString error = run(row.code);
        EXPECT_EQ(error.left(static_cast<int>(qstrlen(row.error))), row.error) << row.code;
        EXPECT_EQ(run("1"), "") << row.code;
        EXPECT_EQ(run("undef $SIG{__DIE__}"), "");
    }
}

TEST_F(PerlHostility, LeavesTheProcessAsItWas) {
    const auto handlers = [] {
        QStringList words;
        for (const int signal : {SIGUSR1, SIGPIPE}) {
            struct sigaction now = {};
            sigaction(signal, nullptr, &now);
            words.append(QString::number(reinterpret_cast<quintptr>(now.sa_handler)));
        }
        return words;
    };
    const QStringList before = handlers();
    EXPECT_EQ(run("$SIG{USR1} = sub { }; $SIG{PIPE} = 'IGNORE'; alarm 100; $ENV{LEFT} = 1;"
                  "END { print 'end' } close STDERR; close STDIN;"),
              "");
    interpreter.reset();
    EXPECT_EQ(handlers(), before);
    EXPECT_EQ(alarm(0), 0U);
    for (const int stream : {0, 1, 2})
        EXPECT_NE(fcntl(stream, F_GETFD), -1) << stream;
    unsetenv("LEFT");
    interpreter.reset(ScriptLanguagePlugin("tamrixperl").interpreter(&runner));
    interpreter->initTestFunctions(&result);
    EXPECT_EQ(run("die 'left' if defined $main::{left} || exists $SIG{USR1} && defined $SIG{USR1}"),
              "");
}

TEST_F(PerlHostility, ProgramsOfScriptsHaveTheEnvironmentOfTheRun) {
    const auto variables = [&] {
        report.entries.clear();
        EXPECT_EQ(run("test::log(join ' ', sort grep { /PERL|TAMRIX_P/ } `env`);"), "");
        return results().value(0);
    };
    const auto start = [this] {
        interpreter.reset(ScriptLanguagePlugin("tamrixperl").interpreter(&runner));
        interpreter->initTestFunctions(&result);
        interpreter->debugger()->setInteractive(true);
    };
    const EnvironmentGuard library("PERL5LIB", "");
    unsetenv("PERL5LIB");
    start();
    const QString before = variables();
    EXPECT_FALSE(before.contains("PERL5")) << qPrintable(before);
    // Options for the perl of others are for programs, and no part of the case's own.
    const EnvironmentGuard debugger("PERL5DB", "BEGIN { die 'a debugger of theirs' }");
    const EnvironmentGuard options("PERL5OPT", "-Mnothing");
    start();
    EXPECT_TRUE(variables().contains("PERL5DB=BEGIN { die 'a debugger of theirs' }"));
    EXPECT_TRUE(variables().contains("PERL5OPT=-Mnothing"));
    interpreter->debugger()->setInteractive(false);
}

TEST_F(PerlHostility, ChildrenAreNotTheRun) {
    EXPECT_EQ(run("my @status;\n"
                  "for my $how (sub { exit 3 }, sub { die 'x' }, sub { }) {\n"
                  "    my $pid = fork;\n"
                  "    if (!$pid) { close STDERR; $how->(); exit 0 }\n"
                  "    waitpid $pid, 0;\n"
                  "    push @status, $? >> 8;\n"
                  "}\n"
                  "die \"@status\" if \"@status\" ne '3 255 0';\n"),
              "");
}

TEST_F(PerlHostility, InterruptsEndALoop) {
    define("interruptMe", [](ScriptContext*) {
        raise(SIGINT);
        return true;
    });
    for (const char* const loop : {"1 while 1", "while (1) { eval { my $x = 1 } }", "sleep 60"})
        EXPECT_EQ(run(QString("interruptMe(); %1").arg(loop)), "Interrupted") << loop;
    EXPECT_EQ(run("1"), "");
}

TEST_F(PerlHostility, SeveralInterpretersAreApart) {
    std::unique_ptr<Interpreter> other(ScriptLanguagePlugin("tamrixperl").interpreter(&runner));
    EXPECT_TRUE(other->evaluate("our $mine = 2; sub main { }", "other.pl"));
    other.reset();
    Interpreter::setSelf(interpreter.get());
    EXPECT_EQ(run("die 'shared' if defined $main::mine; test::pass('still here')"), "");
}

}  // namespace
}  // namespace Tamrix
