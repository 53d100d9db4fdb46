#pragma once

#include <QString>

class QAction;
class QWidget;

namespace Tamrix::Agent {

// Why a widget or an action is not seen that a person brings up by a click: "its menu 'File' is
// closed". Empty where there is nothing to tell.

QString reasonForHiding(const QWidget* widget);
QString reasonForHiding(const QAction* action);

}  // namespace Tamrix::Agent
