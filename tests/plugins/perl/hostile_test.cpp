// Scripts that end their case and never the run.

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

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
        {"tamrix::Record::_fields(1); tamrix::_print(); bdd::_step(1)",
         "tamrix::ArgumentError: Too few arguments for a function of bdd"},
    };
    for (const auto& row : rows) {
        const QString error = run(row.code);
        EXPECT_EQ(error.left(static_cast<int>(qstrlen(row.error))), row.error) << row.code;
        EXPECT_EQ(run("1"), "") << row.code;
        EXPECT_EQ(run("undef $SIG{__DIE__}"), "");
    }
}

TEST_F(PerlHostility, LeavesTheProcessAsItWas) {
    EXPECT_EQ(run("$SIG{USR1} = sub { }; $SIG{PIPE} = 'IGNORE'; alarm 100; $ENV{LEFT} = 1;"
                  "END { print 'end' } close STDERR; close STDIN;"),
              "");
    interpreter.reset();
    struct sigaction now = {};
    for (const int signal : {SIGUSR1, SIGPIPE}) {
        sigaction(signal, nullptr, &now);
        EXPECT_EQ(now.sa_handler, SIG_DFL);
    }
    EXPECT_EQ(alarm(0), 0U);
    for (const int stream : {0, 1, 2})
        EXPECT_NE(fcntl(stream, F_GETFD), -1) << stream;
    unsetenv("LEFT");
    interpreter.reset(ScriptLanguagePlugin("tamrixperl").interpreter(&runner));
    interpreter->initTestFunctions(&result);
    EXPECT_EQ(run("die 'left' if defined $main::{left} || exists $SIG{USR1} && defined $SIG{USR1}"),
              "");
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
