#pragma once

#include <QSharedPointer>
#include <QString>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/internaldebugger.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/generic/searchregionsource.h"
#include "vision/search/imagelookupoptions.h"

namespace Tamrix {

class RunnerInterface;

/// What an image search is about, as its script has said it and the front end of a debugger may
/// have changed it since. Script thread only.
class TAMRIX_EXPORT FindImageDebugger final : public InternalDebugger {
public:
    /// From the arguments of a search function, of which the last two may be null. Throws a
    /// std::runtime_error whose text is for the script. `runner` is not owned and not null.
    FindImageDebugger(RunnerInterface* runner, const SharedPtr<ScriptArgument>& image,
                      const SharedPtr<ScriptArgument>& options,
                      const SharedPtr<ScriptArgument>& region);

    /// "ImageLookup".
    QString contextName() const override;
    Json::Value getState() const override;
    /// Takes the members of an object in the order of their names, what is left out stays. Throws a
    /// std::runtime_error at the first that is wrong, which stays as it was; unknown ones are told
    /// when all others have been taken.
    void setState(const Json::Value& state) override;

    /// The options of the call over those of the suite.
    Vision::ImageLookupOptions effectiveOptions() const;

    QString imageName;
    /// Milliseconds.
    int timeout;
    int interval = 1000;
    /// From 1 on.
    int occurrence = 1;
    /// Those that the call has fixed.
    Vision::ImageLookupOptions options;
    /// Whether each picture that is searched goes to the results.
    bool saveScreenshots = false;
    QSharedPointer<Vision::SearchRegionSource> source;
    /// The comment of a verdict.
    QString message;

    int fixTarget() const { return m_fixTarget; }
    /// 1 to look for settings that find the image, here and in the searches that follow.
    void setFixTarget(int target);

private:
    RunnerInterface* m_runner;
    int m_fixTarget;
};

}  // namespace Tamrix
