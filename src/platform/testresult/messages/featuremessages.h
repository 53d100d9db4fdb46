#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <map>
#include <vector>

namespace Tamrix {

/// Numbers for what messages refer to, each once in a stream.
class MessageIds {
public:
    QString next() { return QString::number(m_next++); }

private:
    int m_next = 0;
};

/// A scenario, or a row of an outline, as it can run.
struct PickleIds {
    QString id;
    /// Of its steps, those of backgrounds included.
    QStringList steps;
};

/// What the message stream tells of a feature file.
struct FeatureMessages {
    /// Its source, then its tree and its pickles, or what is wrong with it.
    std::vector<QJsonObject> messages;
    /// By the line of the scenario or the row.
    std::map<int, PickleIds> pickles;
};

/// `uri` is how the stream names the file.
FeatureMessages featureMessages(const QString& uri, const QByteArray& content, MessageIds* ids);

}  // namespace Tamrix
