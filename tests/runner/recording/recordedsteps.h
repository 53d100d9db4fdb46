#pragma once

#include <QMap>
#include <QStringList>
#include <vector>

#include "runner/recording/recordedprogram.h"

namespace Tamrix::Test {

/// Something that a person does, and the lines that become of it; coordinates are "PLACE".
struct RecordedStep {
    const char* name;
    void (*act)(RecordedProgram& program);
    QStringList lines;
};

/// Takes the steps in a target of ours, which writes a journal to the file of its first argument,
/// and expects their lines; then runs the script of all, and expects the same journal. Variables
/// are those of that run; the values of passwords are nowhere in the script.
void recordAndReplay(const QString& target, const std::vector<RecordedStep>& steps,
                     const QMap<QString, QString>& variables = {},
                     const QStringList& languages = {"python"});

}  // namespace Tamrix::Test
