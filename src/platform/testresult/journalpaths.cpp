#include "platform/testresult/journalpaths.h"

#include <QDir>

#include "base/overloaded.h"
#include "platform/testresult/resulttext.h"

namespace Tamrix::Journal {

namespace {

/// The file that an event names; empty for none.
QString pathOf(const ReportEvent& event) {
    return std::visit(Overloaded{
                          [](const FileAttached& file) { return file.path; },
                          [](const VideoStarted& video) { return video.path; },
                          [](const VideoEnded& video) { return video.path; },
                          [](const EnvironmentFact& fact) {
                              return fact.name == QLatin1String(traceFactName) ? fact.fact
                                                                               : QString();
                          },
                          // Most results have no picture, and need no copy.
                          [](const ResultAdded& result) {
                              if (!result.message.endsWith(QLatin1String("')")))
                                  return QString();
                              QString message = result.message;
                              return takeScreenshotNote(&message);
                          },
                          [](const auto&) { return QString(); },
                      },
                      event);
}

void setPath(ReportEvent& event, const QString& path) {
    std::visit(Overloaded{
                   [&](FileAttached& file) { file.path = path; },
                   [&](VideoStarted& video) { video.path = path; },
                   [&](VideoEnded& video) { video.path = path; },
                   [&](EnvironmentFact& fact) { fact.fact = path; },
                   [&](ResultAdded& result) {
                       takeScreenshotNote(&result.message);
                       result.message += screenshotNote(path);
                   },
                   [](auto&) {},
               },
               event);
}

}  // namespace

bool hasPathBelow(const ReportEvent& event, const QString& folder) {
    return pathOf(event).startsWith(folder + QLatin1Char('/'));
}

bool hasRelativePath(const ReportEvent& event) {
    const QString path = pathOf(event);
    return !path.isEmpty() && QDir::isRelativePath(path);
}

ReportEvent withRelativePath(ReportEvent event, const QString& folder) {
    setPath(event, pathOf(event).mid(folder.size() + 1));
    return event;
}

ReportEvent withAbsolutePath(ReportEvent event, const QString& folder) {
    setPath(event, folder + QLatin1Char('/') + pathOf(event));
    return event;
}

}  // namespace Tamrix::Journal
