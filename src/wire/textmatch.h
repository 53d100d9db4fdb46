#pragma once

#include <QRegularExpression>
#include <QString>

#include "base/export.h"

namespace Tamrix::Wire {

/// A wanted text, compiled once and compared with many: the one rule by which runner and agent
/// match the texts of an object's name.
class TAMRIX_EXPORT TextMatch {
public:
    /// How the text is compared; the numbers are those of Criterion::modifier.
    enum Mode {
        Plain = 0,     ///< as it stands
        Wildcard = 1,  ///< "*" any characters, "?" any one, "[a-z]" one of a set, "[!a-z]" none
        Pattern = 2    ///< a regular expression that matches anywhere
    };

    /// Matches the empty text only.
    TextMatch() = default;
    /// An unknown mode is a fault, as a malformed wildcard or expression is.
    TextMatch(const QString& wanted, int mode);

    /// Empty when the text could be compiled. A faulty one matches nothing.
    QString errorText() const { return m_errorText; }
    bool matches(const QString& text) const;

private:
    QString m_wanted;
    bool m_isPlain = true;
    QRegularExpression m_expression;
    QString m_errorText;
};

/// The marker that stands before "=" in a name for a mode: "", "*" or "~".
QString modeMarker(int mode);

}  // namespace Tamrix::Wire
