#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <string>
#include <vector>

#include "base/export.h"
#include "interpreter/bdd/filterinterface.h"
#include "platform/gherkin/callbacks.h"

namespace Tamrix {

/// Decides which scenarios of a feature file run.
class TAMRIX_EXPORT GherkinFilter final : public Gherkin::Filter {
public:
    explicit GherkinFilter(std::unique_ptr<FilterInterface> root) : m_root(std::move(root)) {}

    bool shouldExecuteScenarioWithTags(const std::vector<std::string>& tags) override {
        return m_root->shouldExecuteWithTags(tags);
    }

private:
    std::unique_ptr<FilterInterface> m_root;
};

/// The filter that a run's tags and scenario numbers ask for; null with `*error` set for a wrong
/// one. Each of `tagArgs` has to hold: alternatives with commas between them, of which each is a
/// tag with or without "@", negated by "~" in front. The reserved word "untagged" holds without
/// tags.
///
/// A number counts, from 0, the scenarios that pass the tags; where several numbers are given,
/// those behind the first one that holds miss that scenario.
TAMRIX_EXPORT std::unique_ptr<FilterInterface> allFilterByArgs(const QStringList& tagArgs,
                                                               const std::vector<unsigned>& indices,
                                                               QString* error);
TAMRIX_EXPORT std::unique_ptr<GherkinFilter> gherkinFilterByArgs(
    const QStringList& tagArgs, const std::vector<unsigned>& indices, QString* error);

}  // namespace Tamrix
