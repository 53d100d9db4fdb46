#pragma once

#include "agent/functions/call.h"

/// The global functions, each in the file of its family. Each reads its arguments, waits until the
/// object is ready, answers, acts and finishes; throws CallError for what is wrong at once.
namespace Tamrix::Agent {

// mousefunctions.cpp
void click(Call& call);
void doubleClick(Call& call);
void drag(Call& call);
void hover(Call& call);

// textfunctions.cpp
void fill(Call& call);
void typeText(Call& call);
void press(Call& call);
void clipboardText(Call& call);

// itemfunctions.cpp
void selectItem(Call& call);

// checkfunctions.cpp
void check(Call& call);
void uncheck(Call& call);

// windowfunctions.cpp
void closeWindow(Call& call);

// testdatafiles.cpp
void testDataPut(Call& call);
void testDataGet(Call& call);
void testDataExists(Call& call);
void testDataRemove(Call& call);

// menuitems.cpp
/// The part of selectItem() for QMenu and QMenuBar; false for other elements.
bool selectMenuItem(const Call& call, const Element& element, const ItemPath& path);
// quickmenus.cpp
/// The part of selectItem() for the menus and bars of Qt Quick; false for other elements.
bool selectQuickMenuItem(const Call& call, const Element& element, const ItemPath& path);
// comboitems.cpp
/// The part of selectItem() for combo boxes; false for other elements.
bool selectComboItem(const Call& call, const Element& element, const ItemPath& path);

}  // namespace Tamrix::Agent
