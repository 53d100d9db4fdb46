#include "interpreter/language/valuetexts.h"

#include <QStringList>
#include <algorithm>

#include "interpreter/language/timelimit.h"

namespace Tamrix {

namespace {

/// For the script code of one value.
constexpr std::chrono::milliseconds timeForOne{100};

const QString more = QStringLiteral("...");

}  // namespace

QString ValueTexts::cut(const QString& text) {
    return text.size() <= longest ? text : text.left(longest) + more;
}

QString ValueTexts::itemsText(int depth, qint64 count, const std::function<QString()>& next) {
    // Each item takes two characters at least.
    const qint64 most = depth < deepest ? std::min<qint64>(count, longest / 2) : 0;
    QStringList texts;
    int length = 0;
    while (texts.size() < most && length <= longest) {
        const QString text = next();
        length += text.size() + 2;
        texts.append(text);
    }
    if (texts.size() < count)
        texts.append(more);
    return texts.join(", ");
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
