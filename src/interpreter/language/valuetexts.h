#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "interpreter/bridge/scriptargument.h"

namespace Tamrix {

/// Writes values of scripts as a person looks at them while the script stands still, and tells what
/// they consist of. A language's own class derives from it.
///
/// Long values are cut before they are written, so that their length costs nothing. What script
/// code of theirs takes, raises or returns does no harm: it has a limited time for each value, and
/// for all values that one object writes.
class TAMRIX_EXPORT ValueTexts {
public:
    using Value = SharedPtr<ScriptArgument>;

    /// An element of a list, an entry of a map, an attribute of an object.
    struct Part {
        /// As it stands in a path: a name as a pathPart(), an entry of a map with its key in
        /// brackets, another element as its number.
        QString name;
        Value value;
        /// What stands in front of it in the text of the whole, as "key => ".
        QString label{};
    };
    /// What a value consists of, as long as the value is there.
    struct Parts {
        int count = 0;
        std::function<Part(int number)> at;
    };

    virtual ~ValueTexts() = default;

    /// The whole within the limits. Never raises.
    QString textOf(const Value& value) { return cut(text(value, 0)); }
    /// Those in front of the one numbered `end` can be asked for; 0 for their count alone. Runs no
    /// code of the script but for texts of keys, which are written for a value in `depth` others.
    virtual Parts partsOf(const Value& value, int end, int depth = 0) = 0;
    /// The part of the value with the name as it stands in paths; null when there is none. By
    /// default it is looked for among all.
    virtual Value partNamed(const Value& value, const QString& name);
    /// Limits of time start anew.
    void startAnew() { m_left = timeForAll; }

    /// Parts that are there already.
    static Parts partsFrom(std::vector<Part> parts);
    /// Whether something is left out of the text.
    static bool isCut(const QString& text) { return text.contains("..."); }

    /// Characters of a value.
    static constexpr int longest = 200;
    /// Containers in containers.
    static constexpr int deepest = 4;
    struct Limits {
        int length = longest;
        int depth = deepest;
    };

    /// The text with at most `longest` characters of it.
    static QString cut(const QString& text);

protected:
    ValueTexts() = default;
    /// For texts of parts with other limits than those of a person who looks.
    explicit ValueTexts(const Limits& limits) : m_limits(limits) {}

    /// For the language: `depth` is the number of containers that the value is in.
    virtual QString text(const Value& value, int depth) = 0;

    /// The texts of the parts with ", " between them, as far as they are shown.
    QString partsText(const Value& value, int depth);
    /// The key of a map as it stands in a path: `marks` are percent-encoded.
    static QString keyName(const QString& text, const QByteArray& marks = QByteArrayLiteral("[]"));
    /// The same of a key whose text is, or is not, code that gives the key.
    static QString keyName(const QString& text, bool isCode);
    /// What script code writes. `write` gives the text or the name of what was raised; nothing when
    /// `expired`, called in a signal handler, has ended it, as in a TimeLimit.
    QString scriptText(void (*expired)(),
                       const std::function<std::optional<Outcome<QString>>()>& write);

private:
    static constexpr std::chrono::milliseconds timeForAll{250};

    Limits m_limits;
    /// What is left for script code.
    std::chrono::milliseconds m_left = timeForAll;
};

}  // namespace Tamrix
