#pragma once

#include <QStringList>

namespace Tamrix::Agent {

/// The parts of "parent.child", still escaped: a "." of a text is written "\.".
QStringList splitItemPath(const QString& path);

/// The text that an escaped part stands for.
QString unescapeItemText(const QString& part);

/// The texts of "parent.child", never none.
QStringList itemTexts(const QString& path);

}  // namespace Tamrix::Agent
