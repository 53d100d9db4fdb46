#pragma once

#include <QString>

#include "base/outcome.h"
#include "wire/messages.h"

namespace Tamrix {

/// What a recorded script calls objects by: their real names, or in a suite that has a map of
/// names, those of the map, which grows. Uses ObjectMap::self().
class RecordedNames {
public:
    /// Brings the suite's map into use. A suite without one gets none.
    Outcome<> useMapOf(const QString& suiteDirectory);
    /// The module that scripts in a language import for the names, by the suffix of its files;
    /// empty when the map is none of theirs, or its variables stand in no module: they are written
    /// as texts, and so are those beside the module.
    QString moduleFor(const QString& suffix) const;
    /// Empty for a name without criteria.
    QString nameOf(const Wire::Query& query);
    /// Fails when a name could not be written, with the first reason.
    Outcome<> result() const { return m_result; }

private:
    /// The map's file; empty for none.
    QString m_file;
    Outcome<> m_result;
};

}  // namespace Tamrix
