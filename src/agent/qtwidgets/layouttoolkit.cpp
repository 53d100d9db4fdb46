#include "agent/qtwidgets/layouttoolkit.h"

#include <QLayout>
#include <QStyle>

namespace Tamrix::Agent {

bool LayoutToolkit::knows(const QObject* object) const {
    return qobject_cast<const QLayout*>(object) || qobject_cast<const QStyle*>(object);
}

}  // namespace Tamrix::Agent
