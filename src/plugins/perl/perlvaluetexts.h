#pragma once

#include <QString>

#include "interpreter/language/valuetexts.h"
#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

/// A variable as a value: an array or a hash as a reference to it.
ValueTexts::Value valueOfVariable(pTHX_ SV* variable);

/// Writes values as a person looks at them, as code of Perl where there is such. Their parts are
/// the elements and entries of what a reference leads to.
class PerlValueTexts final : public ValueTexts {
public:
    using ValueTexts::textOf;
    QString textOf(pTHX_ SV* value) { return cut(bounded(aTHX_ value, 0)); }

    Parts partsOf(const Value& value, int end, int depth = 0) override;

    /// A text in double quotes, cut where it is long.
    static QString quoted(const QString& text);

protected:
    QString text(const Value& value, int depth) override;

private:
    QString bounded(pTHX_ SV* value, int depth);
    QString referenceText(pTHX_ SV* value, int depth);
    QString containerText(pTHX_ SV* value, int depth);
    /// Of an object that has an operator for it.
    QString objectText(pTHX_ SV* value);
};

}  // namespace Tamrix::PerlPlugin
