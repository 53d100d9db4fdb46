#include "plugins/tcl/tclrecorder.h"

#include <QRegularExpression>

namespace Tamrix::TclPlugin {

namespace {

/// In a body, braces of all words and comments count, but for those behind a backslash.
constexpr LiteralStyle quoting{.furtherEscaped = "$[{}"};

/// A text as one word of a command: bare, in braces, or in quotes.
QString word(const QString& text) {
    static const QRegularExpression s_bare(QStringLiteral("\\A[A-Za-z0-9_.:/+-]+\\z"));
    static const QRegularExpression s_braced(QStringLiteral("\\A[^{}\\\\]*\\z"));
    if (s_bare.match(text).hasMatch())
        return text;
    if (isPlainText(text) && s_braced.match(text).hasMatch())
        return u'{' + text + u'}';
    return literalOf(text, quoting);
}

/// Whether the text is one pair of braces with what is in it, as Tcl reads it.
bool isInBraces(const QString& text) {
    if (!text.startsWith(u'{') || !isPlainText(text) || text.contains(u'\\'))
        return false;
    int depth = 0;
    for (int index = 0; index < text.size(); ++index) {
        depth += text.at(index) == u'{' ? 1 : text.at(index) == u'}' ? -1 : 0;
        if (depth == 0)
            return index == text.size() - 1;
    }
    return false;
}

/// The braces of a real name serve as Tcl's.
QString nameWord(const QString& name) {
    return isInBraces(name) ? name : word(name);
}

QString remark(const QString& text) {
    static const QRegularExpression s_special(QStringLiteral("([{}\\\\])"));
    return QString(text).replace(s_special, QStringLiteral("\\\\1"));
}

constexpr RecordingNotation notation{
    .header = "proc main {} {\n",
    .footer = "}\n",
    .call = "%1 %2",
    .betweenArguments = " ",
    .named = "-%1 %2",
    .dashMark = "--",
    .list = "[list %1]",
    .betweenItems = " ",
    .password = "[testSettings getPassword %1]",
    .launchedContext = "[waitForApplicationLaunch]",
    .namedContext = "[applicationContext %1]",
    .assignment = "[waitForObject %1] configure -%2 %3",
    .expectation = "test expect %1 [dict create %2]",
    .property = "%1 %2",
    .quotedProperty = "%1 %2",
    .betweenProperties = " ",
    .text = word,
    .name = nameWord,
    .remark = remark,
    .importingHeader = "source [findFile scripts %1.tcl]\n\nproc main {} {\n",
    .variable = "$%1::%2",
};

}  // namespace

TclRecorder::TclRecorder(const QString& namesModule) : NotatedRecorder(notation, namesModule) {}

}  // namespace Tamrix::TclPlugin
