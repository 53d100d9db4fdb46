#include "plugins/perl/scriptstreams.h"

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"

namespace Tamrix::PerlPlugin {

namespace {

/// stream, text: from other threads and processes to the process's own streams.
NativeEnd write(pTHX_ CV*, SV** arguments, int count) {
    if (count != 2)
        return returning(aTHX_ SvRef());
    const auto stream = SvTRUE_nomg(arguments[0]) ? ScriptOutput::Stderr : ScriptOutput::Stdout;
    const QString text = textOf(aTHX_ arguments[1]);
    CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    if (!interpreter || interpreter->isInChild())
        ScriptOutput::writeToProcess(stream, text);
    else
        interpreter->output().write(stream, text);
    return returning(aTHX_ SvRef());
}

}  // namespace

void defineStreams(pTHX) {
    defineBody(aTHX_ "tamrix::_write", nativeFunction<write>);
}

}  // namespace Tamrix::PerlPlugin
