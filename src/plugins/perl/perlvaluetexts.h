#pragma once

#include <QString>

#include "interpreter/language/valuetexts.h"
#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// Writes values as a person looks at them, as code of Perl where there is such.
class PerlValueTexts : public ValueTexts {
public:
    /// Within the limits. Never raises.
    QString textOf(pTHX_ SV* value) { return cut(bounded(aTHX_ value, 0)); }

    /// A text in double quotes, cut where it is long.
    static QString quoted(const QString& text);

private:
    QString bounded(pTHX_ SV* value, int depth);
    QString referenceText(pTHX_ SV* value, int depth);
    QString arrayText(pTHX_ AV* array, int depth);
    QString hashText(pTHX_ HV* hash, int depth);
    /// Of an object that has an operator for it.
    QString objectText(pTHX_ SV* value);
};

}  // namespace Tamrix::PerlPlugin
