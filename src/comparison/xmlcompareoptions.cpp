#include "comparison/xmlcompareoptions.h"

#include <algorithm>

namespace Tamrix {

const std::vector<XmlOptionDescription>& xmlCompareOptionDescriptions() {
    using Options = XmlCompareOptions;
    static const std::vector<XmlOptionDescription> s_table = {
        {.name = "ignoreNodeOrder", .flag = &Options::ignoreNodeOrder},
        {.name = "ignoreAttributeOrder", .flag = &Options::ignoreAttributeOrder},
        {.name = "ignoreComments", .flag = &Options::ignoreComments},
        {.name = "whitespaceInTextHandling",
         .whitespace = &Options::text,
         .defaultValue = "normalize"},
        {.name = "whitespaceInValuesHandling",
         .whitespace = &Options::values,
         .defaultValue = "preserve"},
        {.name = "ignoreCDATA", .flag = &Options::ignoreCDATA},
        {.name = "matchSpecialTags", .flag = &Options::matchSpecialTags},
        {.name = "filteredAttributes", .names = &Options::filteredAttributes},
        {.name = "filteredElements", .names = &Options::filteredElements},
    };
    return s_table;
}

bool readWhitespaceHandling(const QString& value, bool* normalize, bool* trim) {
    struct Row {
        const char* value;
        bool normalize;
        bool trim;
    };
    static constexpr Row table[] = {
        {"normalize", true, false}, {"trim", false, true}, {"preserve", false, false}};
    const Row* const row =
        std::find_if(std::begin(table), std::end(table),
                     [&value](const Row& each) { return value == QLatin1String(each.value); });
    if (row == std::end(table))
        return false;
    *normalize = row->normalize;
    *trim = row->trim;
    return true;
}

}  // namespace Tamrix
