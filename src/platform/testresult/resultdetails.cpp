#include "platform/testresult/resultdetails.h"

#include "platform/testresult/testvp.h"

namespace Tamrix {

void attachPictures(TestResult* result, RunnerInterface* runner, const ResultDetails& details) {
    if (!result)
        return;
    for (const ResultDetails::Picture& picture : details.pictures) {
        const QString path = TestVP::storePicture(runner, picture.fileName, picture.image);
        if (!path.isEmpty())
            result->addResultAttachment(TestResult::ImageAttachment, picture.title, path);
    }
}

}  // namespace Tamrix
