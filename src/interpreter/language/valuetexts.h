#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <optional>

#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix {

/// The limits within which a debugger writes values of scripts: long ones are cut before they are
/// written, so that their length costs nothing. What script code of theirs takes, raises or returns
/// does no harm: it has a limited time for each value, and for all values that one object writes. A
/// language's own class derives from it and says how its values are written.
class TAMRIX_EXPORT ValueTexts {
public:
    /// Whether something is left out of the text.
    static bool isCut(const QString& text) { return text.contains("..."); }

    /// Characters of a value.
    static constexpr int longest = 200;
    /// Containers in containers.
    static constexpr int deepest = 4;

    /// The text with at most `longest` characters of it.
    static QString cut(const QString& text);

protected:
    /// The items of a container with ", " between them, as far as they are shown: `next` writes one
    /// after another. `depth` is that of the container, 0 for one that is in no other.
    static QString itemsText(int depth, qint64 count, const std::function<QString()>& next);
    /// What script code writes. `write` gives the text or the name of what was raised; nothing when
    /// `expired`, called in a signal handler, has ended it, as in a TimeLimit.
    QString scriptText(void (*expired)(),
                       const std::function<std::optional<Outcome<QString>>()>& write);

private:
    /// What is left for script code.
    std::chrono::milliseconds m_left{250};
};

}  // namespace Tamrix
