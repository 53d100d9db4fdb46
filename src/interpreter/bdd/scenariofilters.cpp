#include "interpreter/bdd/scenariofilters.h"

#include <algorithm>

namespace Tamrix {

bool SingleTagFilter::shouldExecuteWithTags(std::vector<std::string> tags) {
    return std::find(tags.begin(), tags.end(), m_tag) != tags.end();
}

bool AnyFilter::shouldExecuteWithTags(std::vector<std::string> tags) {
    return std::any_of(m_children.begin(), m_children.end(),
                       [&tags](const std::unique_ptr<FilterInterface>& child) {
                           return child->shouldExecuteWithTags(tags);
                       });
}

bool AllFilter::shouldExecuteWithTags(std::vector<std::string> tags) {
    return std::all_of(m_children.begin(), m_children.end(),
                       [&tags](const std::unique_ptr<FilterInterface>& child) {
                           return child->shouldExecuteWithTags(tags);
                       });
}

}  // namespace Tamrix
