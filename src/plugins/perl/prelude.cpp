#include "plugins/perl/prelude.h"

#include <stdexcept>

#include "interpreter/language/prelude.h"
#include "plugins/perl/guardedcall.h"
#include "plugins/perl/scripterrors.h"

namespace Tamrix::PerlPlugin {

void runPrelude(pTHX_ const char* name) {
    const QByteArray code =
        "#line 1 \"<tamrix>\"\n" + preludeSource(QStringLiteral("perl/%1.pl").arg(name));
    const SvRef text = SvRef::steal(newSVpvn(code.constData(), static_cast<STRLEN>(code.size())));
    const CodeEnd end = evaluateCode(aTHX_ text.get());
    if (end.ending != Ending::Returned)
        throw std::runtime_error(end.value
                                     ? ScriptErrors::messageOf(aTHX_ end.value.get()).toStdString()
                                     : "Perl has left the plug-in's own code");
}

}  // namespace Tamrix::PerlPlugin
