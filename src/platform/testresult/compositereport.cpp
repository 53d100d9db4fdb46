#include "platform/testresult/compositereport.h"

#include <QStringList>

namespace Tamrix {

void CompositeReport::append(std::unique_ptr<ReportGenerator> generator) {
    if (generator)
        m_generators.push_back(std::move(generator));
}

void CompositeReport::add(const ReportEntry& entry) {
    for (const auto& generator : m_generators)
        generator->add(entry);
}

void CompositeReport::finish() {
    for (const auto& generator : m_generators)
        generator->finish();
}

QString CompositeReport::errorText() const {
    QStringList texts;
    for (const auto& generator : m_generators)
        texts += generator->errorText();
    texts.removeAll(QString());
    return texts.join(QLatin1Char('\n'));
}

QIODevice* CompositeReport::openVideo(const QString& targetPath, QString* error) {
    return m_generators.empty() ? ReportGenerator::openVideo(targetPath, error)
                                : m_generators.front()->openVideo(targetPath, error);
}

}  // namespace Tamrix
