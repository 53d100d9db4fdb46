#pragma once

#include <QString>
#include <QStringList>

#include "base/export.h"
#include "platform/gherkin/records.h"

namespace Tamrix {

/// What a step definition to paste says, for a language to write it.
struct StepSnippet {
    /// "given", "when", "then", or "step" for any.
    QString keyword;
    /// A Cucumber Expression.
    QString expression;
    /// The words of the step without its parameters, in lower case with "_" between them. Not
    /// empty, and no digit in front.
    QString functionName;
    /// Names for the parameters behind the context, such as "int_1".
    QStringList parameters;
};

/// `type` is what the step's keyword comes to.
TAMRIX_EXPORT StepSnippet stepSnippet(const Gherkin::Step& step, Gherkin::KeywordType type);

}  // namespace Tamrix
