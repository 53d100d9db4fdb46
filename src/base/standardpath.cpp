#include "base/standardpath.h"

#include <QFile>
#include <cstdlib>
#include <memory>

#include "base/environment.h"

namespace Tamrix {

QString StandardPath::prefix() {
    return Environment::getVariable(QLatin1String(prefixVariable));
}

QString realPath(const QString& path) {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    const std::unique_ptr<char, Free> resolved(
        ::realpath(QFile::encodeName(path).constData(), nullptr));
    return resolved ? QFile::decodeName(resolved.get()) : path;
}

}  // namespace Tamrix
