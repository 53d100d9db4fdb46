#include "plugins/perl/scriptstreams.h"

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"

namespace Tamrix::PerlPlugin {

namespace {

/// What a script prints are characters or bytes, and Perl does not say which. Bytes that are UTF-8
/// are nothing else.
QString printedText(pTHX_ SV* value) {
    if (SvUTF8(value) || !SvPOK(value))
        return textOf(aTHX_ value);
    STRLEN size = 0;
    const char* const bytes = SvPV_nomg_const(value, size);
    const bool isUtf8 = is_utf8_string(reinterpret_cast<const U8*>(bytes), size);
    return textOfBytes(aTHX_ bytes, size, isUtf8);
}

/// Perl's warning that a script has a function of its own by a name of the library, which it may.
bool isAboutOwnNames(CaseInterpreter& interpreter, const QString& text) {
    const QString start = QStringLiteral("Subroutine ");
    const QString rest = text.startsWith(start) ? text.mid(start.size()) : QString();
    return rest.section(' ', 1, 1) == "redefined" &&
           interpreter.functions().hasGlobalName(rest.section(' ', 0, 0));
}

NativeEnd print(pTHX_ CV*, SV** arguments, int count) {
    if (count != 2)
        return returning(aTHX_ SvRef());
    const auto stream = SvTRUE_nomg(arguments[0]) ? ScriptOutput::Stderr : ScriptOutput::Stdout;
    const QString text = printedText(aTHX_ arguments[1]);
    CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    if (!interpreter || interpreter->isInChild())
        ScriptOutput::writeToProcess(stream, text);
    else if (stream == ScriptOutput::Stdout || !isAboutOwnNames(*interpreter, text))
        interpreter->output().write(stream, text);
    return returning(aTHX_ SvRef());
}

}  // namespace

void defineStreams(pTHX) {
    defineBody(aTHX_ "tamrix::_print", nativeFunction<print>);
}

}  // namespace Tamrix::PerlPlugin
