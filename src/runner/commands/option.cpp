#include "runner/commands/option.h"

namespace Tamrix {

tl::unexpected<Failure> exclusionFailure(const char* left, const char* right) {
    return wrongUsage(QStringLiteral("--%1 and --%2 exclude each other")
                          .arg(QLatin1String(left), QLatin1String(right)));
}

}  // namespace Tamrix
