// The text and JSON forms of lookup options and search regions. The first byte says which form the
// rest is: 0 options in a line, 1 options in lines, 2 options in JSON, 3 a region, 4 a region in
// JSON.

#include <json/json.h>

#include <QString>
#include <memory>
#include <stdexcept>

#include "fuzz/fuzztarget.h"
#include "vision/search/imagelookupoptions.h"
#include "vision/search/searchregion.h"

using Tamrix::Vision::ImageLookupOptions;
using Tamrix::Vision::SearchRegion;

namespace {

Json::Value parseJson(const std::string& text) {
    Json::CharReaderBuilder builder;
    builder["stackLimit"] = 100;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    bool isParsed = false;
    try {
        isParsed = reader->parse(text.data(), text.data() + text.size(), &value, &errors);
    } catch (const Json::RuntimeError& error) {
        // Values that lie too deep in each other are thrown, whatever else is returned.
        errors = error.what();
    }
    if (!isParsed)
        throw std::runtime_error("no JSON: " + errors);
    return value;
}

void checkOptions(const ImageLookupOptions& options) {
    const QString text = options.description();
    fuzzRequire(ImageLookupOptions::fromDescription(text).description() == text,
                "options are read as they are written");
    const bool isInRange = options.getThreshold() >= 0 && options.getThreshold() <= 100 &&
                           options.getMinScaleFactor() > 0 && options.getMaxScaleFactor() > 0;
    if (isInRange) {
        fuzzRequire(ImageLookupOptions::fromJson(options.toJson()).description() == text,
                    "options stay the same in JSON");
    }
}

void checkRegion(const SearchRegion& region) {
    fuzzRequire(SearchRegion(region.toJson()).rectangles() == region.rectangles(),
                "a region stays the same in JSON");
    for (const QRect& each : region.rectangles()) {
        fuzzRequire(!each.isValid() || region.contains(each), "a region contains its rectangles");
    }
}

void read(int form, const std::string& text) {
    switch (form) {
        case 0:
            checkOptions(ImageLookupOptions::fromDescription(QString::fromStdString(text)));
            break;
        case 1:
            checkOptions(ImageLookupOptions(QString::fromStdString(text)));
            break;
        case 2:
            checkOptions(ImageLookupOptions::fromJson(parseJson(text)));
            break;
        case 3: {
            const SearchRegion region(QString::fromStdString(text));
            checkRegion(region);
            fuzzRequire(SearchRegion(region.description()).rectangles() == region.rectangles(),
                        "a region is read as it is written");
            break;
        }
        default:
            checkRegion(SearchRegion(parseJson(text)));
    }
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    try {
        read(data[0] % 5, std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    } catch (const std::runtime_error& error) {
        fuzzRequire(*error.what() != '\0', "a failure has a text");
    }
    return 0;
}
