#include "plugins/tcl/tclrecorder.h"

#include <QRegularExpression>

#include "plugins/tcl/literal.h"

namespace Tamrix::TclPlugin {

namespace {

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
    return isInBraces(name) ? name : tclWord(name);
}

QString remark(const QString& text) {
    static const QRegularExpression s_special(QStringLiteral("([{}\\\\])"));
    return QString(text).replace(s_special, QStringLiteral("\\\\1"));
}

}  // namespace

constexpr RecordingNotation recordingNotation{
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
    .text = tclWord,
    .name = nameWord,
    .remark = remark,
    .importingHeader = "source [findFile scripts %1.tcl]\n\nproc main {} {\n",
    .variable = "$%1::%2",
};

}  // namespace Tamrix::TclPlugin
