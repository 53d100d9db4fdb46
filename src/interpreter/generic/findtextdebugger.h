#pragma once

#include <QSharedPointer>
#include <QString>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/internaldebugger.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/generic/searchregionsource.h"
#include "shared/ocr/options.h"

namespace Tamrix {

/// What a search for text is about, as its script has said it and the front end of a debugger may
/// have changed it since. Script thread only.
class TAMRIX_EXPORT FindTextDebugger final : public InternalDebugger {
public:
    /// From the arguments of a search function, of which the last two may be null. Throws a
    /// std::exception whose text is for the script.
    FindTextDebugger(const SharedPtr<ScriptArgument>& searchedText,
                     const SharedPtr<ScriptArgument>& optionMap,
                     const SharedPtr<ScriptArgument>& region);

    /// "FindText".
    QString contextName() const override;
    Json::Value getState() const override;
    /// Takes the members of an object in the order of their names, what is left out stays. Throws a
    /// std::exception at the first that is wrong, which stays as it was; unknown ones are told when
    /// all others have been taken.
    void setState(const Json::Value& state) override;

    /// The options of the call over those of the suite.
    OCR::Options effectiveOptions() const;

    QString text;
    /// Milliseconds.
    int timeout;
    /// Kept for the front end. Meant: the time that a recognition takes is pause enough.
    int interval = 1000;
    /// From 1 on.
    int occurrence = 1;
    /// Those that the call has said.
    OCR::Options options;
    /// Whether each picture that is read goes to the results.
    bool saveScreenshots = false;
    QSharedPointer<Vision::SearchRegionSource> source;
    /// The comment of a verdict.
    QString message;
};

/// Takes "saveScreenshots" out of a map of options. Throws std::runtime_error when it is no
/// boolean.
bool takeSaveScreenshots(ScriptArgument::Map& map);

}  // namespace Tamrix
