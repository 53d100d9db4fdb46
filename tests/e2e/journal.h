#pragma once

#include <json/json.h>

#include <QString>
#include <sstream>
#include <string>
#include <vector>

#include "support/files.h"

namespace Tamrix::Test {

/// The entries of a journal, without its header and what it says of the machine, read as plain
/// JSON. A line that is none ends the list.
inline std::vector<Json::Value> readJournal(const QString& path) {
    std::istringstream lines(readFile(path).toStdString());
    std::vector<Json::Value> entries;
    std::string line;
    std::getline(lines, line);
    const Json::CharReaderBuilder builder;
    while (std::getline(lines, line)) {
        std::istringstream text(line);
        Json::Value entry;
        std::string errors;
        if (!Json::parseFromStream(builder, text, &entry, &errors))
            break;
        if (entry["kind"] != "environment")
            entries.push_back(entry);
    }
    return entries;
}

/// The messages of the entries of a kind, in order, each behind a blank but the first.
inline QString messagesOf(const std::vector<Json::Value>& entries, const char* kind) {
    QStringList messages;
    for (const Json::Value& entry : entries) {
        if (entry["kind"].asString() == kind)
            messages.append(QString::fromStdString(entry["message"].asString()));
    }
    return messages.join(' ');
}

}  // namespace Tamrix::Test
