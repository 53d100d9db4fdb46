#pragma once

#include "agent/core/contract/items.h"
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
/// selectItem() in a menu or menu bar.
void selectInMenu(const Call& call, const Element& element, const std::shared_ptr<const Menu>& menu,
                  const ItemPath& path);

}  // namespace Tamrix::Agent
