#pragma once

#include <QtGlobal>
#include <cstring>

namespace Tamrix::Wire {

// The global functions that every agent offers. The agent describes them to its runner by this
// table, and scripts know them by it before an application is connected.

struct ApplicationFunction {
    const char* name;
    /// As people write it: parameters in brackets may be left out, all of a bracket together. A
    /// first parameter "object" is an object, or names one.
    const char* parameters;
    /// One sentence of help, without full stop.
    const char* description;
};

inline constexpr ApplicationFunction applicationFunctions[] = {
    {"click", "object[, x, y][, button][, modifiers]",
     "Clicks the object, in its middle without a place"},
    {"doubleClick", "object[, x, y][, button][, modifiers]", "Clicks the object twice"},
    {"drag", "object, x, y, dx, dy[, button][, modifiers]",
     "Drags from a point of the object by a distance"},
    {"hover", "object[, x, y]", "Moves the mouse over the object"},
    {"fill", "object, text", "Sets the whole text of a field"},
    {"typeText", "object, text", "Types a text into the object"},
    {"press", "object, keys", "Presses keys: \"Ctrl+A\", \"Return\""},
    {"selectItem", "object, text",
     "Selects an item of a menu, list, tree, combo box or tab bar by its text or a list of steps"},
    {"check", "object", "Checks a box or button that can be checked"},
    {"uncheck", "object", "Takes the check away"},
    {"closeWindow", "object", "Closes the object's window"},
    {"clipboardText", "", "The text on the clipboard"},
    {"testDataPut", "file, encodedBytes", "Writes a test data file beside the application"},
    {"testDataGet", "file", "The encoded bytes of a test data file beside the application"},
    {"testDataExists", "file", "Whether there is such a test data file beside the application"},
    {"testDataRemove", "file", "Removes a test data file beside the application"},
};

/// What a button may be given as instead of its number, which is Qt::MouseButton's.
struct MouseButtonName {
    int number;
    const char* name;
};

/// The first is meant where none is given.
inline constexpr MouseButtonName mouseButtonNames[] = {
    {1, "left"}, {2, "right"}, {4, "middle"}, {8, "back"}, {16, "forward"}};

}  // namespace Tamrix::Wire
