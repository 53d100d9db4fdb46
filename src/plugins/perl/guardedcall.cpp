#include "plugins/perl/guardedcall.h"

#include <unistd.h>

#include "interpreter/language/scripterrorset.h"
#include "interpreter/language/scriptoutput.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/departure.h"
#include "plugins/perl/scripterrors.h"

namespace Tamrix::PerlPlugin {

namespace {

/// The end that is on its way through a native function.
CodeEnd& pendingEnd() {
    static auto* const s_end = new CodeEnd;
    return *s_end;
}

/// What is run, for the function that may be jumped into once more. Holds nothing of its own.
struct Work {
    SV* function;
    SV* text;
    SV* const* arguments;
    std::size_t count;
    SV* value;
};

void runWork(pTHX_ Work& work) {
    dSP;
    ENTER;
    SAVETMPS;
    // The script's own error outlasts what a native function calls.
    save_scalar(PL_errgv);
    I32 count = 0;
    if (work.text) {
        count = eval_sv(work.text, G_SCALAR);
    } else {
        PUSHMARK(SP);
        EXTEND(SP, static_cast<SSize_t>(work.count));
        for (std::size_t index = 0; index < work.count; ++index)
            PUSHs(work.arguments[index]);
        PUTBACK;
        count = call_sv(work.function, G_SCALAR | G_EVAL);
    }
    SPAGAIN;
    SV* const result = count > 0 ? POPs : &PL_sv_undef;
    PUTBACK;
    SV* const error = ERRSV;
    const bool hasDied = SvROK(error) || (SvPOK(error) && SvCUR(error) > 0);
    work.value = newSVsv(hasDied ? error : result);
    // Told by the flag: an exception is never null, a result may be anything.
    work.function = hasDied ? nullptr : &PL_sv_yes;
    FREETMPS;
    LEAVE;
}

/// Without objects of C++: what leaves the script jumps here.
Ending guard(pTHX_ Work& work) {
    dJMPENV;
    int jumped = 0;
    volatile Ending ending = Ending::Left;
    const I32 scope = PL_scopestack_ix;
    const bool isOutermost = PL_top_env->je_prev == nullptr;
    JMPENV_PUSH(jumped);
    if (jumped == 0) {
        // What C++ has let go since the last time.
        if (isOutermost)
            FREETMPS;
        runWork(aTHX_ work);
        ending = work.function ? Ending::Returned : Ending::Died;
    } else if (isOutermost) {
        while (PL_scopestack_ix > scope)
            LEAVE;
        FREETMPS;
    }
    JMPENV_POP;
    return ending;
}

/// A process that the script has forked ends where its code does.
void endChild(pTHX_ Ending ending, SV* value) {
    int status = 0;
    if (ending == Ending::Left)
        status = static_cast<int>(STATUS_EXIT);
    else if (ending == Ending::Died) {
        status = 255;
        ScriptOutput::writeToProcess(ScriptOutput::Stderr,
                                     ScriptErrors::messageOf(aTHX_ value) + '\n');
    }
    PerlIO_flush(nullptr);
    _exit(status);
}

CodeEnd guarded(pTHX_ Work work) {
    const bool isOutermost = PL_top_env->je_prev == nullptr;
    const Ending ending = guard(aTHX_ work);
    const CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    if (isOutermost && interpreter && interpreter->isInChild())
        endChild(aTHX_ ending, work.value);
    return {ending, SvRef::steal(work.value)};
}

}  // namespace

CodeEnd callCode(pTHX_ SV* function, const std::vector<SvRef>& arguments) {
    std::vector<SV*> values;
    values.reserve(arguments.size());
    for (const SvRef& argument : arguments)
        values.push_back(argument.get());
    return guarded(aTHX_{function, nullptr, values.data(), values.size(), nullptr});
}

CodeEnd callOwn(pTHX_ const char* name, const std::vector<SvRef>& arguments) {
    return callCode(aTHX_ reinterpret_cast<SV*>(get_cv(name, 0)), arguments);
}

CodeEnd evaluateCode(pTHX_ SV* text) {
    return guarded(aTHX_{nullptr, text, nullptr, 0, nullptr});
}

SvRef valueOrThrow(CodeEnd end) {
    if (end.ending != Ending::Returned)
        throwEnd(end);
    return std::move(end.value);
}

void throwEnd(const CodeEnd& end) {
    // A copy: GCC 12 takes it that what always throws leaves its arguments as they are.
    pendingEnd() = end;
    throw ScriptErrorSet();
}

Ending pendingEnding() {
    return pendingEnd().ending;
}

CodeEnd takePendingEnd() {
    return std::exchange(pendingEnd(), CodeEnd());
}

NativeEnd endOfCall(pTHX) {
    CodeEnd end = takePendingEnd();
    return end.ending == Ending::Died ? dying(aTHX_ std::move(end.value)) : leaving();
}

NativeEnd returning(pTHX_ SvRef value) {
    return {Ending::Returned, value ? sv_2mortal(value.release()) : &PL_sv_undef};
}

NativeEnd dying(pTHX_ SvRef exception) {
    return {Ending::Died, sv_2mortal(exception.release())};
}

NativeEnd leaving() {
    return {Ending::Left, nullptr};
}

void fetchArguments(pTHX_ SV** arguments, int count) {
    for (int index = 0; index < count; ++index) {
        if (!SvGMAGICAL(arguments[index]))
            continue;
        // Fetching may move the stack.
        const SSize_t place = arguments - PL_stack_base;
        SV* const plain = sv_mortalcopy(arguments[index]);
        arguments = PL_stack_base + place;
        arguments[index] = plain;
    }
}

void carryOut(pTHX_ const NativeEnd& end) {
    if (end.ending == Ending::Died)
        croak_sv(end.value);
    leaveScript(aTHX);
}

}  // namespace Tamrix::PerlPlugin
