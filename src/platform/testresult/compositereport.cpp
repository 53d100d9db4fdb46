#include "platform/testresult/compositereport.h"

#include <QStringList>

namespace Tamrix {

void CompositeReport::append(std::unique_ptr<ReportGenerator> generator) {
    if (generator)
        m_parts.push_back({std::move(generator), false});
}

void CompositeReport::setErrorHandler(std::function<void(const QString&)> handler) {
    m_errorHandler = std::move(handler);
}

void CompositeReport::add(const ReportEntry& entry) {
    for (Part& part : m_parts) {
        part.generator->add(entry);
        noticeFailure(part);
    }
}

void CompositeReport::finish() {
    for (Part& part : m_parts) {
        part.generator->finish();
        noticeFailure(part);
    }
}

void CompositeReport::noticeFailure(Part& part) {
    if (part.hasFailed)
        return;
    const QString error = part.generator->errorText();
    part.hasFailed = !error.isEmpty();
    if (part.hasFailed && m_errorHandler)
        m_errorHandler(error);
}

QString CompositeReport::errorText() const {
    QStringList texts;
    for (const Part& part : m_parts)
        texts += part.generator->errorText();
    texts.removeAll(QString());
    return texts.join(QLatin1Char('\n'));
}

QIODevice* CompositeReport::openVideo(const QString& targetPath, QString* error) {
    return m_parts.empty() ? ReportGenerator::openVideo(targetPath, error)
                           : m_parts.front().generator->openVideo(targetPath, error);
}

}  // namespace Tamrix
