#pragma once

#include <QRegExp>
#include <QString>
#include <list>

#include "base/export.h"

namespace Tamrix {

/// A pattern of names, with a switch for each kind of use that a list of filters can have. A value.
class TAMRIX_EXPORT Filter {
public:
    static constexpr int kinds = 3;

    /// The pattern: a wildcard or else a regular expression. Both tell capital letters from small
    /// ones.
    void setRule(const QString& rule, bool wildcard);
    QString rule() const { return m_rule; }

    /// `kind` is from 0 to 2; the switches are off at first.
    void setKind(int kind, bool on) { m_kinds[kind] = on; }
    /// Whether the filter takes part in a use of that kind: in one from 0 to 2 if the switch is on,
    /// in any other always.
    bool hasKind(int kind) const { return kind < 0 || kind >= kinds || m_kinds[kind]; }
    /// Whether the pattern fits the whole name.
    bool matches(const QString& name) const { return m_pattern.exactMatch(name); }

private:
    QString m_rule;
    bool m_kinds[kinds] = {};
    QRegExp m_pattern;
};

using FilterList = std::list<Filter>;

/// Whether a filter of the list that takes part in this kind of use fits the name.
TAMRIX_EXPORT bool filterListMatch(const FilterList& list, const QString& name, int kind);

/// Appends the filters of a file, one a line: the rule, "true" or "false" for each kind, and
/// optionally "true" for a rule that is a regular expression, all separated by tabs. Other lines
/// are ignored. False when the file can't be opened.
TAMRIX_EXPORT bool loadFiltersFromFile(FilterList& list, const QString& path);

// Filters of the user, from a file in the folder of settings, else built-in ones. A file that is
// there counts even when it is empty.

/// What the list of an application's objects leaves out: "spyfilter".
TAMRIX_EXPORT void loadSpyFilters(FilterList& list);
/// What a search on the screen leaves out: "visionfilter".
TAMRIX_EXPORT void loadVisionFilters(FilterList& list);

}  // namespace Tamrix
