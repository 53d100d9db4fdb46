#include "interpreter/language/valuetexts.h"

#include <QStringList>
#include <algorithm>
#include <limits>
#include <utility>

#include "interpreter/language/timelimit.h"
#include "interpreter/language/valuepath.h"

namespace Tamrix {

namespace {

/// For the script code of one value.
constexpr std::chrono::milliseconds timeForOne{100};

const QString more = QStringLiteral("...");

}  // namespace

QString ValueTexts::cut(const QString& text) {
    return text.size() <= longest ? text : text.left(longest) + more;
}

ValueTexts::Parts ValueTexts::partsFrom(std::vector<Part> parts) {
    const auto count = static_cast<int>(parts.size());
    return {count, [parts = std::move(parts)](int number) {
                return parts.at(static_cast<std::size_t>(number));
            }};
}

QString ValueTexts::partsText(const Value& value, int depth) {
    // Each part takes two characters at least.
    const int most = depth < m_limits.depth ? m_limits.length / 2 : 0;
    const Parts parts = partsOf(value, most, depth);
    QStringList texts;
    int length = 0;
    while (texts.size() < std::min(parts.count, most) && length <= m_limits.length) {
        const Part part = parts.at(texts.size());
        const QString written = part.label + text(part.value, depth + 1);
        length += written.size() + 2;
        texts.append(written);
    }
    if (texts.size() < parts.count)
        texts.append(more);
    return texts.join(", ");
}

ValueTexts::Value ValueTexts::partNamed(const Value& value, const QString& name) {
    // The elements of a list have numbers.
    constexpr int largest = std::numeric_limits<int>::max();
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    if (isNumber && number >= 0 && number < largest) {
        const Parts parts = partsOf(value, number + 1);
        if (number < parts.count && parts.at(number).name == name)
            return parts.at(number).value;
    }
    const Parts parts = partsOf(value, largest);
    for (int each = 0; each < parts.count; ++each) {
        const Part part = parts.at(each);
        if (part.name == name)
            return part.value;
    }
    return {};
}

QString ValueTexts::keyName(const QString& text, const QByteArray& marks) {
    return '[' + pathPart(text, marks) + ']';
}

QString ValueTexts::keyName(const QString& text, bool isCode) {
    if (!isCode || isCut(text))
        return keyName(text, QByteArrayLiteral("[]()'\""));
    // Blanks behind one another would not come back.
    return '[' + QString(text).replace("  ", " \\x20") + ']';
}

QString ValueTexts::scriptText(void (*expired)(),
                               const std::function<std::optional<Outcome<QString>>()>& write) {
    const std::chrono::milliseconds time = std::min(m_left, timeForOne);
    if (time <= std::chrono::milliseconds::zero())
        return QStringLiteral("<no representation: others took too long>");
    const auto start = std::chrono::steady_clock::now();
    std::optional<Outcome<QString>> text;
    {
        const TimeLimit limit(time, expired);
        text = write();
    }
    m_left -= std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    if (text && *text)
        return **text;
    return QStringLiteral("<no representation: %1>")
        .arg(text ? text->error().text : QStringLiteral("not in time"));
}

}  // namespace Tamrix
