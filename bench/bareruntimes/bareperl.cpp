#include <unistd.h>

#include <string>

#include "bareruntime.h"
#include "plugins/perl/perlheaders.h"

extern "C" void boot_DynaLoader(pTHX_ CV* cv);

namespace Tamrix::Bench {

namespace {

void nothing(pTHX_ CV*) {
    dXSARGS;
    if (items != 0)
        croak("nothing takes no arguments");
    XSRETURN_EMPTY;
}

void plus(pTHX_ CV*) {
    dXSARGS;
    if (items != 2 || !SvIOK(ST(0)) || !SvIOK(ST(1)))
        croak("plus takes two integers");
    const IV left = SvIV(ST(0));
    const IV right = SvIV(ST(1));
    XSRETURN_IV(left + right);
}

void now(pTHX_ CV*) {
    dXSARGS;
    PERL_UNUSED_VAR(items);
    EXTEND(SP, 1);
    XSRETURN_IV(nanosecondsNow());
}

void report(pTHX_ CV*) {
    dXSARGS;
    if (items != 2)
        croak("report takes a name and a number");
    keepReport(SvPV_nolen(ST(0)), SvNV(ST(1)));
    XSRETURN_EMPTY;
}

void bootLibraries(pTHX) {
    newXS("DynaLoader::boot_DynaLoader", boot_DynaLoader, __FILE__);
}

}  // namespace

void runBarePerl(const char* script, const std::function<void()>& onStarted) {
    static char s_name[] = "perl";
    static char s_option[] = "-e";
    static char s_text[] = "0";
    static char* s_arguments[] = {s_name, s_option, s_text, nullptr};
    int count = 3;
    char** arguments = s_arguments;
    char** variables = environ;
    PERL_SYS_INIT3(&count, &arguments, &variables);
    PerlInterpreter* const my_perl = perl_alloc();
    PERL_SET_CONTEXT(my_perl);
    perl_construct(my_perl);
    if (perl_parse(my_perl, bootLibraries, 3, s_arguments, nullptr) != 0 || perl_run(my_perl) != 0)
        giveUp("Perl can't be started");
    onStarted();
    newXS("main::nothing", nothing, __FILE__);
    newXS("main::plus", plus, __FILE__);
    newXS("main::now", now, __FILE__);
    newXS("main::report", report, __FILE__);
    eval_pv((std::string(script) + "\nmain(); 1").c_str(), 0);
    if (SvTRUE(ERRSV))
        giveUp(SvPV_nolen(ERRSV));
}

}  // namespace Tamrix::Bench
