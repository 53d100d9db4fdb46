#include "comparison/xmlcompareoptions.h"

#include <algorithm>

namespace Tamrix {

const std::vector<XmlOptionDescription>& xmlCompareOptionDescriptions() {
    using Options = XmlCompareOptions;
    static const std::vector<XmlOptionDescription> table = {
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
    return table;
}

bool readWhitespaceHandling(const QString& value, bool* normalize, bool* trim) {
    struct Row {
        QLatin1String value;
        bool normalize;
        bool trim;
    };
    static constexpr Row table[] = {{QLatin1String("normalize"), true, false},
                                    {QLatin1String("trim"), false, true},
                                    {QLatin1String("preserve"), false, false}};
    const Row* const row = std::find_if(std::begin(table), std::end(table),
                                        [&value](const Row& each) { return each.value == value; });
    if (row == std::end(table))
        return false;
    *normalize = row->normalize;
    *trim = row->trim;
    return true;
}

}  // namespace Tamrix
