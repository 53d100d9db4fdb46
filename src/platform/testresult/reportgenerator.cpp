#include "platform/testresult/reportgenerator.h"

#include <QFile>
#include <memory>

namespace Tamrix {

ReportGenerator::~ReportGenerator() = default;

QIODevice* ReportGenerator::openVideo(const QString& targetPath, QString* error) {
    auto file = std::make_unique<QFile>(targetPath);
    if (!file->open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("Opening '%1' for writing failed: %2")
                     .arg(targetPath, file->errorString());
        return nullptr;
    }
    error->clear();
    return file.release();
}

}  // namespace Tamrix
