#include "shared/uiabstraction/uielement.h"

#include <QDataStream>
#include <QUuid>
#include <algorithm>
#include <limits>
#include <utility>

#include "shared/uiabstraction/elementreader.h"

namespace Tamrix::UIAbstraction {

namespace {

/// The version whose encodings the stream form has.
constexpr int streamVersion = QDataStream::Qt_4_6;
static_assert(streamVersion == 12);

void registerMetaTypes() {
    static const bool s_registered = [] {
        qRegisterMetaType<UIElement*>("Tamrix::UIAbstraction::UIElement*");
        qRegisterMetaType<const UIElement*>("const Tamrix::UIAbstraction::UIElement*");
        return true;
    }();
    Q_UNUSED(s_registered)
}

/// As QHash writes itself, but in the order of the names, so that equal trees give equal bytes.
void write(QDataStream& stream, const QHash<QString, QString>& properties) {
    QStringList names = properties.keys();
    names.sort();
    stream << qint32(names.size());
    for (const QString& name : std::as_const(names))
        stream << name << properties.value(name);
}

}  // namespace

UIElement::UIElement(const QString& concreteType, const StandardType& standardType,
                     const QString& text)
    : m_id(QUuid::createUuid().toString()),
      m_standardType(standardType),
      m_concreteType(concreteType),
      m_text(text) {
    registerMetaTypes();
}

UIElement::~UIElement() {
    if (m_parent)
        m_parent->m_children.removeOne(this);
    const QList<UIElement*> children = std::exchange(m_children, {});
    for (UIElement* child : children) {
        // The list is gone already, so the child need not look for itself in it.
        if (child->m_parent == this)
            child->m_parent = nullptr;
        delete child;
    }
}

QString UIElement::unknownConcreteType() {
    return QStringLiteral("unknown");
}

void UIElement::setConcreteProperty(const QString& name, const QString& value) {
    m_concreteProperties.insert(name, value);
}

void UIElement::setIdentifyingProperty(const QString& name, const QString& value) {
    m_identifyingProperties.insert(name, value);
}

void UIElement::setText(const QString& text) {
    m_text = text;
    Q_EMIT textChanged(this, m_text);
}

void UIElement::setStandardType(const StandardType& type) {
    m_standardType = type;
    Q_EMIT standardTypeChanged(this, m_standardType);
}

void UIElement::setGeometry(const ElementGeometry& geometry) {
    m_geometry = geometry;
    Q_EMIT geometryChanged(this, m_geometry);
}

void UIElement::setImage(const QImage& image) {
    m_image = image;
    Q_EMIT imageChanged(this, m_image);
}

void UIElement::setWindowNode(bool on) {
    m_windowNode = on;
    Q_EMIT windowNodeChanged(this, on);
}

void UIElement::setTransparentNode(bool on) {
    m_transparentNode = on;
    Q_EMIT transparentNodeChanged(this, on);
}

void UIElement::setSubgraphTransparent(bool on) {
    m_subgraphTransparent = on;
    Q_EMIT subgraphTransparentChanged(this, on);
}

void UIElement::addChild(UIElement* child) {
    // What is in the list has a parent, so a child without one need not be looked for.
    if (!child || (child->m_parent && m_children.contains(child)))
        return;
    m_children.append(child);
    child->setParent(this);
    Q_EMIT childAdded(this, child);
}

void UIElement::setParent(UIElement* parent) {
    if (!m_parent)
        m_parent = parent;
}

UIElement* UIElement::takeFirstChild() {
    if (m_children.isEmpty())
        return nullptr;
    UIElement* child = m_children.takeFirst();
    child->m_parent = nullptr;
    return child;
}

UIElement* UIElement::childByText(const QString& text, const StandardType& type) const {
    for (UIElement* child : m_children) {
        if (child->m_text == text && (!type.isKnown() || child->m_standardType == type))
            return child;
    }
    return nullptr;
}

UIElement* UIElement::siblingElement(const QString& concreteType) const {
    if (!m_parent)
        return nullptr;
    for (UIElement* sibling : std::as_const(m_parent->m_children)) {
        if (sibling->m_concreteType == concreteType)
            return sibling;
    }
    return nullptr;
}

bool UIElement::isSimilarTo(const UIElement* other, bool recursive) const {
    if (other == this)
        return true;
    if (!other || m_standardType != other->m_standardType ||
        m_concreteType != other->m_concreteType || m_simplifiedType != other->m_simplifiedType ||
        m_nameSpace != other->m_nameSpace || m_transparentNode != other->m_transparentNode ||
        m_subgraphTransparent != other->m_subgraphTransparent ||
        m_windowNode != other->m_windowNode || m_text != other->m_text ||
        !(m_geometry == other->m_geometry))
        return false;
    return !recursive ||
           std::equal(m_children.begin(), m_children.end(), other->m_children.begin(),
                      other->m_children.end(), [](const UIElement* mine, const UIElement* theirs) {
                          return mine->isSimilarTo(theirs, true);
                      });
}

void UIElement::registerEvent(const UIEvent& event) {
    if (m_usage.contains(event))
        return;
    m_usage.insert(event, 0);
    Q_EMIT eventRegistered(this, event);
}

void UIElement::setUsage(const UIEvent& event, int count) {
    const bool isNew = !m_usage.contains(event);
    if (isNew) {
        qWarning(
            "Unregistered event occured on { standardType='%s', concreteType='%s', text='%s' }: "
            "'%s'",
            qUtf8Printable(m_standardType.toString()), qUtf8Printable(m_concreteType),
            qUtf8Printable(m_text), qUtf8Printable(event.name()));
    }
    int& stored = m_usage[event];
    const bool isIncreased = isNew || count > stored;
    stored = count;
    if (isIncreased)
        Q_EMIT usageIncreased(this, event, count);
}

void UIElement::addUsage(const UIEvent& event) {
    const int before = m_usage[event];
    // The count may have come from a stream.
    setUsage(event, before < std::numeric_limits<int>::max() ? before + 1 : before);
}

void UIElement::addUsageForChildElements(const UIEvent& event) {
    for (UIElement* child : std::as_const(m_children))
        child->addUsage(event);
}

void UIElement::addUsageForChildAt(const UIEvent& event, const QPoint& point) {
    if (m_geometry.rect().contains(point))
        addUsage(event);
    for (UIElement* child : std::as_const(m_children))
        child->addUsageForChildAt(event, point);
}

void UIElement::serialize(QDataStream* stream) const {
    *stream << m_id;
    m_standardType.serialize(stream);
    *stream << m_concreteType << m_simplifiedType << m_nameSpace << m_superTypes
            << m_transparentNode << m_subgraphTransparent << m_windowNode << m_text << m_geometry
            << m_image << m_realName << m_symbolicName;
    write(*stream, m_concreteProperties);
    write(*stream, m_identifyingProperties);
    *stream << qint32(m_usage.size());
    for (auto it = m_usage.begin(); it != m_usage.end(); ++it) {
        it.key().serialize(stream);
        *stream << qint32(it.value());
    }
    *stream << qint32(m_children.size());
    for (const UIElement* child : m_children)
        child->serialize(stream);
}

void UIElement::readFields(ElementReader& reader, int depth) {
    reader.read(&m_id);
    reader.read(&m_standardType);
    reader.read(&m_concreteType);
    reader.read(&m_simplifiedType);
    reader.read(&m_nameSpace);
    reader.read(&m_superTypes);
    reader.read(&m_transparentNode);
    reader.read(&m_subgraphTransparent);
    reader.read(&m_windowNode);
    reader.read(&m_text);
    reader.read(&m_geometry);
    reader.read(&m_image);
    reader.read(&m_realName);
    reader.read(&m_symbolicName);
    reader.read(&m_concreteProperties);
    reader.read(&m_identifyingProperties);
    reader.read(&m_usage);
    const int count = reader.readCount();
    for (int i = 0; i < count && reader.beginElement(depth + 1); ++i) {
        auto* child = new UIElement;
        child->readFields(reader, depth + 1);
        addChild(child);
    }
}

UIElement* UIElement::deserialize(QDataStream* stream) {
    ElementReader reader(stream);
    auto* element = new UIElement;
    if (reader.beginElement(1))
        element->readFields(reader, 1);
    return element;
}

QByteArray UIElement::elementsToByteArray(const QList<const UIElement*>& elements) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << qint32(elements.size());
    for (const UIElement* element : elements)
        element->serialize(&stream);
    return bytes;
}

QList<UIElement*> UIElement::elementsFromByteArray(const QByteArray& bytes) {
    QDataStream stream(bytes);
    stream.setVersion(streamVersion);
    ElementReader reader(&stream);
    const int count = reader.readCount();
    QList<UIElement*> elements;
    for (int i = 0; i < count && reader.beginElement(1); ++i) {
        elements.append(new UIElement);
        elements.last()->readFields(reader, 1);
    }
    return elements;
}

}  // namespace Tamrix::UIAbstraction
