#include "plugins/perl/ownfunctions.h"

#include "interpreter/language/scripterrorset.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/scripterrors.h"

namespace Tamrix::PerlPlugin {

namespace {

NativeEnd callOwnFunction(pTHX_ CV* function, SV** arguments, int count) {
    const auto& own = *static_cast<const OwnFunction*>(CvXSUBANY(function).any_ptr);
    const QString name = QLatin1String(own.name);
    CaseInterpreter* const active = CaseInterpreter::onScriptThread();
    if (!active)
        return failing(aTHX_ refusedCall(name, CaseInterpreter::active() != nullptr));
    if (count < own.wanted)
        return failing(aTHX_ badArgument("Too few arguments for " + name));
    try {
        return returning(aTHX_ own.body(aTHX_{*active, function, arguments, count}));
    } catch (const ScriptErrorSet&) {
        return endOfCall(aTHX);
    } catch (const std::exception& exception) {
        return failing(aTHX_ thrownIn(name, QString::fromUtf8(exception.what())));
    }
}

}  // namespace

void defineOwn(pTHX_ const OwnFunction& function) {
    CV* const made = defineBody(aTHX_ function.name, nativeFunction<callOwnFunction>);
    CvXSUBANY(made).any_ptr = const_cast<OwnFunction*>(&function);
}

}  // namespace Tamrix::PerlPlugin
