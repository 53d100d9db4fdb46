#include "plugins/python/pythonrecorder.h"

namespace Tamrix::PythonPlugin {

namespace {

constexpr RecordingNotation notation{
    .header = "def main():\n",
    .footer = "",
    .truths = {"False", "True"},
    .property = "\"%1\": %2",
    .importingHeader = "import %1\n\n\ndef main():\n",
};

}  // namespace

PythonRecorder::PythonRecorder(const QString& namesModule)
    : NotatedRecorder(notation, namesModule) {}

}  // namespace Tamrix::PythonPlugin
