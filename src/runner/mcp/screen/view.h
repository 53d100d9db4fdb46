#pragma once

#include <QHash>
#include <QString>
#include <vector>

#include "wire/messages.h"

namespace Tamrix::Mcp {

/// An object of one of the applications.
struct ObjectKey {
    int application = 0;
    quint64 handle = 0;

    bool operator==(const ObjectKey& other) const = default;
    friend uint qHash(const ObjectKey& key, uint seed) {
        return ::qHash(key.handle, seed) ^ static_cast<uint>(key.application);
    }
};

/// An object as a client sees it.
struct ViewObject {
    ObjectKey key;
    /// By which the client means it: 7 stands for "e7".
    int ref = 0;
    int depth = 0;
    /// Index into the view, -1 at the top.
    int parent = -1;
    QString type;
    Wire::OutlinedObject facts;

    bool is(Wire::OutlinedObject::State state) const { return (facts.state & state) != 0; }
};

/// What is visible: parents first.
using View = std::vector<ViewObject>;

/// How many objects of the view stand below the one at an index.
int countBelow(const View& view, int index);
/// The index of the object with a ref, -1 when it is not visible.
int indexOf(const View& view, int ref);

/// The numbers by which a client means objects. An object keeps its ref as long as it lives; none
/// is given twice.
class Refs {
public:
    int refOf(const ObjectKey& key);
    /// Keeps what the objects are, for when they are gone.
    void note(const View& view);

    /// What was last seen of an object; null for a ref that was never given.
    const ViewObject* known(int ref) const;

private:
    QHash<ObjectKey, int> m_refs;
    /// By ref, which counts from 1.
    std::vector<ViewObject> m_known;
};

/// Appends an application's outline to a view, without objects that are there only to hold others,
/// and without items that tell nothing.
void appendView(int application, const Wire::ObjectOutline& outline, Refs* refs, View* view);

}  // namespace Tamrix::Mcp
