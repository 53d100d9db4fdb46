#pragma once

#include <sys/types.h>

#include <QtGlobal>

#include "base/export.h"

namespace Tamrix {

/// The memory of a process that is in use now, in bytes; -1 when it can't be told. Any thread.
TAMRIX_EXPORT qint64 residentMemory(pid_t process);

}  // namespace Tamrix
