#include "platform/objectmodel/inspector.h"

namespace Tamrix {

Inspector* Inspector::self() {
    static Inspector inspector;
    return &inspector;
}

void Inspector::addExtensionScript(const QString& text, const QString& suffix) {
    m_extensionScripts.append({text, suffix});
}

void Inspector::setUniqueProperty(const QString& className, const QString& property) {
    m_classSettings[className].uniqueProperty = property;
}

void Inspector::setAllowKeyEventCompression(const QString& className, bool on) {
    m_classSettings[className].allowKeyEventCompression = on;
}

void Inspector::enableEventCompression(const QString& className, bool on) {
    m_classSettings[className].eventCompression = on;
}

void Inspector::addPropertyDelegate(const QString& className, const QStringList& delegates) {
    m_classSettings[className].propertyDelegates += delegates;
}

void Inspector::setMouseTracking(const QString& className, bool on) {
    m_classSettings[className].mouseTracking = on;
}

void Inspector::setRecorderFilter(const QString& type, const QString& name) {
    m_recorderFilters.insert(type, name);
}

void Inspector::setRecordMouseDrag(const QString& className, bool on) {
    m_classSettings[className].recordMouseDrag = on;
}

Inspector::ClassSettings Inspector::classSettings(const QString& className) const {
    return m_classSettings.value(className);
}

void Inspector::reset() {
    *this = Inspector();
}

}  // namespace Tamrix
