#include "agent/core/itempath.h"

#include <algorithm>

namespace Tamrix::Agent {

namespace {

/// Of a text with more dots, not every part is tried.
constexpr int mostSteps = 64;

/// The parts of "parent.child", still escaped.
QStringList splitText(const QString& text) {
    QStringList parts{QString()};
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        const bool isEscape = character == u'\\' && i + 1 < text.size() && text.at(i + 1) == u'.';
        if (isEscape) {
            parts.last() += text.mid(i, 2);
            ++i;
        } else if (character == u'.') {
            parts.append(QString());
        } else {
            parts.last() += character;
        }
    }
    return parts;
}

/// Without "..." at the end.
QStringView withoutDots(QStringView text) {
    text = text.trimmed();
    if (text.endsWith(QLatin1String("...")))
        text.chop(3);
    else if (text.endsWith(QChar(0x2026)))
        text.chop(1);
    return text.trimmed();
}

/// Whether two texts differ in "&" and "..." only.
bool meanSame(QStringView left, QStringView right) {
    left = withoutDots(left);
    right = withoutDots(right);
    auto a = left.begin();
    auto b = right.begin();
    while (true) {
        while (a != left.end() && *a == u'&')
            ++a;
        while (b != right.end() && *b == u'&')
            ++b;
        if (a == left.end() || b == right.end())
            return a == left.end() && b == right.end();
        if (*a++ != *b++)
            return false;
    }
}

}  // namespace

ItemPath::ItemPath(const QStringList& parts, bool mayJoin) : m_parts(parts), m_mayJoin(mayJoin) {
    const auto size = static_cast<int>(parts.size());
    if (mayJoin)
        addStep(size);
    for (int length = mayJoin ? std::min(size - 1, mostSteps) : 1; length > 0; --length)
        addStep(length);
}

void ItemPath::addStep(int parts) {
    Step step;
    step.literal = m_parts.mid(0, parts).join(u'.');
    step.text = m_mayJoin ? QString(step.literal).replace(QLatin1String("\\."), QLatin1String("."))
                          : step.literal;
    step.parts = parts;
    m_steps.append(step);
}

ItemPath ItemPath::ofText(const QString& text) {
    return text.isNull() ? ItemPath() : ItemPath(splitText(text), true);
}

ItemPath ItemPath::ofSteps(const QStringList& steps) {
    return {steps, false};
}

QString ItemPath::text() const {
    const QString joined = m_parts.join(m_mayJoin ? QLatin1String(".") : QLatin1String(" > "));
    return m_mayJoin ? QString(joined).replace(QLatin1String("\\."), QLatin1String(".")) : joined;
}

ItemPath::Fit ItemPath::fit(const QString& itemText) const {
    Fit fit;
    for (int index = 0; index < m_steps.size(); ++index) {
        const Step& step = m_steps[index];
        const bool isEqual = itemText == step.literal || itemText == step.text;
        if (!isEqual && !meanSame(itemText, step.text))
            continue;
        fit.rank = 2 * index + (isEqual ? 0 : 1);
        if (step.parts < m_parts.size())
            fit.rest = ItemPath(m_parts.mid(step.parts), m_mayJoin);
        return fit;
    }
    return fit;
}

}  // namespace Tamrix::Agent
