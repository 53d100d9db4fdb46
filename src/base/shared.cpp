#include "base/shared.h"

namespace Tamrix {

Shared::~Shared() = default;

}  // namespace Tamrix
