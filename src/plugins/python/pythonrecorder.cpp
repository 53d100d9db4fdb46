#include "plugins/python/pythonrecorder.h"

namespace Tamrix::PythonPlugin {

namespace {

constexpr RecordingNotation notation{
    .header = "def main():\n",
    .footer = "",
    .truths = {"False", "True"},
    .property = "\"%1\": %2",
    .import = "import %1\n\n\n",
};

}  // namespace

PythonRecorder::PythonRecorder(const QString& namesModule)
    : NotatedRecorder(notation, namesModule) {}

}  // namespace Tamrix::PythonPlugin
