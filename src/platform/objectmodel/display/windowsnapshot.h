#pragma once

#include <QByteArray>
#include <QImage>
#include <functional>

#include "platform/objectmodel/display/windownames.h"

namespace Tamrix::Display {

/// The windows in the stream form of UIAbstraction::UIElement::elementsFromByteArray, with names
/// that find them among all and the pictures that `pictureOf` gives.
QByteArray windowSnapshot(const WindowList& windows, const WindowList& all,
                          const std::function<QImage(const WindowFacts&)>& pictureOf);

}  // namespace Tamrix::Display
