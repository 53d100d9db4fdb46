#include "plugins/tcl/literal.h"

#include <QRegularExpression>

#include "interpreter/language/literals.h"

namespace Tamrix::TclPlugin {

QString tclWord(const QString& text) {
    static const QRegularExpression s_bare(QStringLiteral("\\A[A-Za-z0-9_.,:/*~+-]+\\z"));
    static const QRegularExpression s_braced(QStringLiteral("\\A[^{}\\\\]*\\z"));
    if (s_bare.match(text).hasMatch())
        return text;
    if (isPlainText(text) && s_braced.match(text).hasMatch())
        return '{' + text + '}';
    return literalOf(text, {.furtherEscaped = "$[]{}"});
}

}  // namespace Tamrix::TclPlugin
