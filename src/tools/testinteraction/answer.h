#pragma once

namespace Tamrix {

/// What the program exits with: the button that ended the dialog, or why there was none.
enum class Answer {
    WrongUsage = 2,
    Failed = 3,  ///< as when the image can't be read
    Ok = 21,
    Cancel = 22,  ///< also of a question that was closed without an answer
    Yes = 24,
    No = 28
};

}  // namespace Tamrix
