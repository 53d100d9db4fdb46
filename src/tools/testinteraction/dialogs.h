#pragma once

#include "tools/testinteraction/answer.h"
#include "tools/testinteraction/request.h"

namespace Tamrix {

// Dialogs in which a person answers. Each blocks until then, in front of other windows, and can be
// used with the keyboard alone. Texts are shown as they are, never as HTML; long ones scroll. A
// text that the person gives is printed to standard output in UTF-8.

Answer showDialog(const QString& title, const TextRequest& request);
Answer showDialog(const QString& title, const InputRequest& request);
Answer showDialog(const QString& title, const ChoiceRequest& request);

}  // namespace Tamrix
