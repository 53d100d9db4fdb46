#include "runner/mcp/screen/viewtext.h"

#include <QStringList>
#include <utility>

namespace Tamrix::Mcp {

namespace {

using Wire::OutlinedObject;

/// Of a longer text the beginning is told.
constexpr int longestQuoted = 80;

/// Whether the toolkit has given the name, which is nothing to a client.
bool isOfToolkit(const QString& name) {
    return name.startsWith(QLatin1String("qt_")) || name.startsWith(QLatin1String("__qt_"));
}

/// Whether a line with the character is not one any more, or is read in another order.
bool breaksLine(QChar character) {
    switch (character.category()) {
        case QChar::Other_Control:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        case QChar::Other_Format:
            return (character >= QChar(0x202a) && character <= QChar(0x202e)) ||
                   (character >= QChar(0x2066) && character <= QChar(0x2069));
        default:
            return false;
    }
}

bool hasWord(const ViewObject& object, const QString& word) {
    for (const QString& text :
         {object.type, object.facts.name, object.facts.text, object.facts.label}) {
        if (text.contains(word, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

}  // namespace

QString quotedText(const QString& text) {
    QString shown = text.left(longestQuoted + 1);
    if (shown.size() > longestQuoted) {
        shown.chop(1);
        if (std::as_const(shown).back().isHighSurrogate())
            shown.chop(1);
        shown += QStringLiteral("...");
    }
    shown.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('"'), QLatin1String("\\\""))
        .replace(QLatin1Char('\n'), QLatin1String("\\n"))
        .replace(QLatin1Char('\t'), QLatin1String("\\t"));
    for (QChar& character : shown) {
        if (breaksLine(character))
            character = QChar::ReplacementCharacter;
    }
    return QLatin1Char('"') + shown + QLatin1Char('"');
}

QString stateText(const ViewObject& object) {
    QStringList words;
    if (object.is(OutlinedObject::PartlyChecked))
        words.append(QStringLiteral("[partly checked]"));
    else if (object.is(OutlinedObject::Checkable))
        words.append(object.is(OutlinedObject::Checked) ? QStringLiteral("[checked]")
                                                        : QStringLiteral("[unchecked]"));
    if (object.is(OutlinedObject::Selected))
        words.append(QStringLiteral("[selected]"));
    if (object.is(OutlinedObject::Focused))
        words.append(QStringLiteral("[focused]"));
    if (object.is(OutlinedObject::Modal))
        words.append(QStringLiteral("[modal]"));
    if (!object.is(OutlinedObject::Enabled))
        words.append(QStringLiteral("[disabled]"));
    return words.join(QLatin1Char(' '));
}

QString objectLine(const ViewObject& object) {
    const OutlinedObject& facts = object.facts;
    QString line = QStringLiteral("e%1 %2").arg(QString::number(object.ref), object.type);
    const bool isEntered = object.is(OutlinedObject::Entered);
    const QString& caption = isEntered || facts.text.isEmpty() ? facts.label : facts.text;
    if (!caption.isEmpty())
        line += QLatin1Char(' ') + quotedText(caption);
    if (!facts.name.isEmpty() && !isOfToolkit(facts.name))
        line += QStringLiteral(" #") + facts.name.simplified();
    if (isEntered)
        line += QStringLiteral(" = ") + quotedText(facts.text);
    const QString state = stateText(object);
    return state.isEmpty() ? line : line + QLatin1Char(' ') + state;
}

QString viewText(const View& view, const ViewPart& part) {
    // 1. The part of the view.
    const int first = part.root == 0 ? 0 : indexOf(view, part.root);
    const int end =
        part.root == 0 ? static_cast<int>(view.size()) : first + 1 + countBelow(view, first);
    const int rootDepth = part.root == 0 ? 0 : view[static_cast<size_t>(first)].depth;
    // 2. Its lines.
    QString text;
    int bytes = 0;
    int found = 0;
    int left = 0;
    for (int index = first; index < end; ++index) {
        const ViewObject& object = view[static_cast<size_t>(index)];
        const int depth = object.depth - rootDepth;
        if (part.depth >= 0 && depth > part.depth)
            continue;
        if (!part.find.isEmpty() && !hasWord(object, part.find))
            continue;
        ++found;
        QString line = objectLine(object);
        if (part.find.isEmpty())
            line.prepend(QString(depth, QLatin1Char(' ')));
        const int below = part.depth >= 0 && depth == part.depth ? countBelow(view, index) : 0;
        if (below > 0)
            line += QStringLiteral(" (+%1 below)").arg(below);
        bytes += line.toUtf8().size() + 1;
        if (bytes > longestViewText)
            ++left;
        else
            text += line + QLatin1Char('\n');
    }
    // 3. What is missing.
    if (left > 0) {
        text += QStringLiteral("... %1 more: ask for less with root, find or depth\n").arg(left);
    } else if (found == 0) {
        text = part.find.isEmpty()
                   ? QStringLiteral("nothing is visible\n")
                   : QStringLiteral("nothing visible has %1 in its type, name or text\n")
                         .arg(quotedText(part.find));
    }
    return text;
}

}  // namespace Tamrix::Mcp
