#pragma once

#include <QByteArray>
#include <QString>

#include "base/export.h"

namespace Tamrix {

/// A file of a plug-in that is written in its language, which it carries as a resource:
/// "ruby/steps.rb" for src/plugins/ruby/prelude/steps.rb.
TAMRIX_EXPORT QByteArray preludeSource(const QString& name);

}  // namespace Tamrix
