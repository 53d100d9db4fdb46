#include "plugins/perl/perlruntime.h"

#include <unistd.h>

#include <QByteArray>
#include <cstdlib>
#include <optional>
#include <stdexcept>

#include "base/environment.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/departure.h"

// Perl declares it for itself alone.
#include <perliol.h>

extern "C" void boot_DynaLoader(pTHX_ CV* cv);

namespace Tamrix::PerlPlugin {

namespace {

void bootLibraries(pTHX) {
    newXS("DynaLoader::boot_DynaLoader", boot_DynaLoader, __FILE__);
}

/// Once for the process.
void startSystem() {
    static const bool s_isStarted = [] {
        static char s_name[] = "tamrix";
        static char* s_arguments[] = {s_name, nullptr};
        int count = 1;
        char** arguments = s_arguments;
        char** variables = environ;
        PERL_SYS_INIT3(&count, &arguments, &variables);
        // Perl closes the process's own streams with an interpreter, unless others use them.
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            PerlIOUnix_refcnt_inc(stream);
        return true;
    }();
    static_cast<void>(s_isStarted);
}

/// Variables that would make Perl's start do something else than start.
class WithoutOptions {
public:
    WithoutOptions() {
        for (Saved& each : m_saved) {
            if (const char* const value = std::getenv(each.name)) {
                each.value = value;
                unsetenv(each.name);
            }
        }
    }
    ~WithoutOptions() {
        dTHX;
        for (const Saved& each : m_saved) {
            if (!each.value)
                continue;
            setenv(each.name, each.value->constData(), 1);
            // Perl may not have started.
            if (!aTHX)
                continue;
            static_cast<void>(hv_store(get_hv("ENV", GV_ADD), each.name,
                                       static_cast<I32>(qstrlen(each.name)),
                                       newSVpv(each.value->constData(), 0), 0));
        }
    }
    WithoutOptions(const WithoutOptions&) = delete;
    WithoutOptions& operator=(const WithoutOptions&) = delete;

private:
    struct Saved {
        const char* name;
        std::optional<QByteArray> value;
    };
    Saved m_saved[2] = {{"PERL5OPT", {}}, {"PERL5DB", {}}};
};

/// What a script may have set in Perl's %SIG.
bool isOfPerl(const struct sigaction& action) {
    return action.sa_handler == SIG_IGN || action.sa_handler == SIG_DFL ||
           action.sa_handler == reinterpret_cast<void (*)(int)>(PL_csighandlerp) ||
           action.sa_handler == reinterpret_cast<void (*)(int)>(PL_csighandler1p);
}

}  // namespace

PerlRuntime::PerlRuntime() {
    startSystem();
    noteSignals();
    m_perl = perl_alloc();
    if (!m_perl)
        throw std::runtime_error("there is no memory for Perl");
    enter();
    // Perl lets one runtime alone set handlers of signals.
    PL_curinterp = m_perl;
    pTHX = m_perl;
    perl_construct(aTHX);
    PL_perl_destruct_level = 2;
    PL_exit_flags |= PERL_EXIT_DESTRUCT_END;
    const WithoutOptions withoutOptions;
    static char s_name[] = "tamrix";
    static char s_option[] = "-e";
    static char s_text[] = "0";
    static char* s_arguments[] = {s_name, s_option, s_text, nullptr};
    if (perl_parse(aTHX_ bootLibraries, 3, s_arguments, nullptr) != 0 || perl_run(aTHX) != 0) {
        end();
        throw std::runtime_error("Perl does not run an empty script");
    }
    // Keeps each statement's own place, also in a block without variables.
    PL_perldb = PERLDBf_NOOPT;
    AV* const folders = get_av("INC", GV_ADD);
    for (SSize_t index = 0; index < static_cast<SSize_t>(av_count(folders)); ++index)
        m_ownFolders.append(PerlPlugin::textOf(aTHX_ * av_fetch(folders, index, 1)));
}

PerlRuntime::~PerlRuntime() {
    end();
}

void PerlRuntime::end() {
    if (!m_perl)
        return;
    enter();
    pTHX = std::exchange(m_perl, nullptr);
    {
        // Nothing of Perl stands around the last objects: leaving them would end the process.
        const HeldDepartures held;
        perl_destruct(aTHX);
    }
    perl_free(aTHX);
    PERL_SET_CONTEXT(nullptr);
    // Handlers of the script would run in an interpreter that is gone.
    alarm(0);
    for (int signal = 1; signal < static_cast<int>(m_signalActions.size()); ++signal) {
        struct sigaction now = {};
        const struct sigaction& before = m_signalActions[static_cast<std::size_t>(signal)];
        if (sigaction(signal, nullptr, &now) == 0 && isOfPerl(now) &&
            now.sa_handler != before.sa_handler)
            sigaction(signal, &before, nullptr);
    }
}

void PerlRuntime::noteSignals() {
    for (int signal = 1; signal < static_cast<int>(m_signalActions.size()); ++signal)
        sigaction(signal, nullptr, &m_signalActions[static_cast<std::size_t>(signal)]);
}

QStringList PerlRuntime::libraryFolders() const {
    QStringList folders = m_ownFolders;
    // A folder of the suite in PERL5LIB holds scripts, not a library.
    for (const QString& folder :
         QString::fromLocal8Bit(qgetenv("PERL5LIB")).split(':', Qt::SkipEmptyParts))
        folders.removeAll(folder);
    return folders;
}

void PerlRuntime::setSearchPath(const QStringList& folders) const {
    pTHX = m_perl;
    AV* const path = get_av("INC", GV_ADD);
    av_clear(path);
    QStringList all = folders + m_ownFolders;
    all.removeDuplicates();
    // Names of files are bytes to Perl.
    for (const QString& folder : all) {
        const QByteArray bytes = folder.toUtf8();
        av_push(path, newSVpvn(bytes.constData(), static_cast<STRLEN>(bytes.size())));
    }
}

}  // namespace Tamrix::PerlPlugin
