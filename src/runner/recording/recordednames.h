#pragma once

#include <QString>

#include "base/outcome.h"
#include "wire/messages.h"

namespace Tamrix {

/// What a recorded script calls objects by: their real names, or in a suite that keeps names in
/// a file, the names of that file, which grows. Uses ObjectMap::self().
class RecordedNames {
public:
    /// Reads the file of names. A suite without one gets none.
    Outcome<> useFileOf(const QString& suiteDirectory);
    /// Empty for a name without criteria.
    QString nameOf(const Wire::Query& query);
    /// Fails when a name could not be written, with the first reason.
    Outcome<> result() const { return m_result; }

private:
    void append(const QString& symbolicName, const QString& realName);

    /// Empty for none.
    QString m_file;
    Outcome<> m_result;
};

}  // namespace Tamrix
