#include "base/processmemory.h"

#include <unistd.h>

#include <QFile>

namespace Tamrix {

qint64 residentMemory(pid_t process) {
    QFile file(QStringLiteral("/proc/%1/statm").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    // Pages: size, resident, ...
    return file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
}

}  // namespace Tamrix
