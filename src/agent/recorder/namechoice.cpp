#include "agent/recorder/namechoice.h"

#include <QRegularExpression>

#include "agent/core/lookup.h"
#include "agent/core/survey.h"
#include "agent/core/toolkit.h"
#include "agent/core/vocabulary.h"

namespace Tamrix::Agent {

namespace {

using Words = QList<Wire::Criterion>;

/// A longer text, or one of several lines, makes no good name.
constexpr int longestText = 60;
/// How far up a container with a name is looked for.
constexpr int mostContainers = 4;

Wire::Criterion word(const char* property, const QString& text) {
    return {QString::fromLatin1(property), 0, text, nullptr};
}

Wire::Criterion word(const char* property, const Wire::Query& object) {
    return {QString::fromLatin1(property), 0, {}, std::make_shared<Wire::Query>(object)};
}

Wire::Criterion typeOf(const Element& element) {
    return word("type", element.toolkit->typeName(element));
}

bool isNameable(const QString& text) {
    return !text.isEmpty() && text.size() <= longestText && !text.contains(u'\n');
}

/// The objects that have a name, in the order in which occurrences count.
QVector<Element> found(const Words& words, Survey* survey) {
    return ObjectFinder(Wire::Query{words, 1}, survey).findAll();
}

bool findsOnly(const Words& words, const Element& element, Survey* survey) {
    return ObjectFinder(Wire::Query{words, 1}, survey).findSingle() == element;
}

/// Column and row of an item; a header's sections have one of them.
Words cellOf(const Element& element) {
    Words place;
    for (const char* const property : {"column", "row"}) {
        bool isKnown = false;
        const QVariant value =
            element.isItem()
                ? element.toolkit->property(element, QString::fromLatin1(property), &isKnown)
                : QVariant();
        if (isKnown)
            place.append(word(property, value.toString()));
    }
    return place;
}

/// What an element says of itself, the best first, each with its type.
QVector<Words> ownNames(const Element& element) {
    const Toolkit* const toolkit = element.toolkit;
    QVector<Words> names;
    const auto add = [&](const char* property, const QString& value) {
        names.append({word(property, value), typeOf(element)});
    };
    // 1. Its name.
    const QString name = toolkit->name(element);
    if (!name.isEmpty() && !looksGenerated(name))
        add("name", name);
    // 2. Its text. The title of a window changes, its type does not.
    const bool isWindow = toolkit->window(element) == element;
    if (isWindow)
        names.append({typeOf(element)});
    const QString text = toolkit->text(element);
    const bool hasText = toolkit->isTextLasting(element) && isNameable(text);
    const bool isLate = hasText && mayChange(element, text);
    if (hasText && !isLate)
        add("text", text);
    // 3. The label beside it.
    const Element label = toolkit->related(element, Toolkit::Relation::Label);
    if (!label.isNull() && isNameable(label.toolkit->text(label)))
        add("buddy", label.toolkit->text(label));
    // 4. Its tool tip, or the name of its icon.
    const Toolkit::Hint hint = toolkit->hint(element);
    if (isNameable(hint.value))
        add(hint.name, hint.value);
    // 5. Its place among the cells.
    if (const Words place = cellOf(element); !place.isEmpty())
        names.append(place + Words{typeOf(element)});
    if (isLate)
        add("text", text);
    // 6. Nothing else.
    if (!isWindow)
        names.append({typeOf(element)});
    return names;
}

/// Looks for one of the names that, together with what is added, finds the element only.
Words chosen(const QVector<Words>& names, const Words& added, const Element& element,
             Survey* survey) {
    for (const Words& name : names) {
        const Words words = name + added;
        if (findsOnly(words, element, survey))
            return words;
    }
    return {};
}

/// The name of a container, if it has a plain one.
Words plainName(const Element& container, Survey* survey) {
    QVector<Words> names;
    for (const Words& name : ownNames(container)) {
        // By its type alone no container is known to people.
        if (name.size() > 1)
            names.append(name);
    }
    return chosen(names, {}, container, survey);
}

Words nameInContainer(const QVector<Words>& names, const Element& element, Survey* survey) {
    const Element window = element.toolkit->window(element);
    Element container = containerOf(element);
    for (int level = 0; level < mostContainers && !container.isNull() && container != window;
         ++level, container = containerOf(container)) {
        // The view of an item is its container, however it is called.
        const bool isHolder = element.isItem() && level == 0;
        const Wire::Query name =
            isHolder ? chooseName(container, survey) : Wire::Query{plainName(container, survey), 1};
        if (name.criteria.isEmpty())
            continue;
        const Words words =
            chosen(names, {word(level == 0 ? "container" : "ancestor", name)}, element, survey);
        if (!words.isEmpty())
            return words;
    }
    return {};
}

/// The best of its names, with how many others stand before it.
Wire::Query countedName(const QVector<Words>& names, const Words& added, const Element& element,
                        Survey* survey) {
    for (const Words& name : names) {
        const int place = found(name + added, survey).indexOf(element);
        if (place >= 0)
            return {name + added, place + 1};
    }
    return {};
}

}  // namespace

Wire::Query chooseName(const Element& element, Survey* survey) {
    const QVector<Words> names = ownNames(element);
    // 1. What it says of itself.
    Words words = chosen(names, {}, element, survey);
    if (!words.isEmpty())
        return {words, 1};
    // 2. The nearest container with a name.
    words = nameInContainer(names, element, survey);
    if (!words.isEmpty())
        return {words, 1};
    // 3. Its window.
    const Element window = element.toolkit->window(element);
    Words added;
    if (!window.isNull() && window != element) {
        const Wire::Query name = chooseName(window, survey);
        if (!name.criteria.isEmpty())
            added = {word("window", name)};
        words = chosen(names, added, element, survey);
        if (!words.isEmpty())
            return {words, 1};
    }
    // 4. The occurrence, in the window.
    const Wire::Query counted = countedName(names, added, element, survey);
    return counted.criteria.isEmpty() ? countedName(names, {}, element, survey) : counted;
}

bool mayChange(const Element& element, const QString& text) {
    // 1. Paths are elsewhere on another day.
    if (looksLikePath(text))
        return true;
    // 2. Of items, times, and what stands behind the first column as the value of a row.
    if (element.isItem()) {
        bool isKnown = false;
        const int column =
            element.toolkit->property(element, QStringLiteral("column"), &isKnown).toInt();
        return looksLikeMoment(text) || (isKnown && column > 0 && looksLikeNumber(text));
    }
    // 3. What the program itself writes: not the texts on buttons and entries.
    const bool isFixed = element.toolkit->role(element) == Wire::ObservedRole::MenuEntry ||
                         !element.toolkit->clickedBy(element).isNull();
    return !isFixed && looksChanging(text);
}

bool looksGenerated(const QString& objectName) {
    static const QRegularExpression s_form(QStringLiteral(
        "^qt_|0x[0-9a-fA-F]+|[0-9]{4,}|[0-9a-fA-F]{8}-[0-9a-fA-F]{4}|[\\x00-\\x1f]"));
    return s_form.match(objectName).hasMatch();
}

bool looksLikePath(const QString& text) {
    static const QRegularExpression s_form(QStringLiteral("^(~?/|file:/)\\S"));
    return s_form.match(text).hasMatch();
}

bool looksLikeMoment(const QString& text) {
    static const QRegularExpression s_form(
        QStringLiteral("\\b\\d{1,2}:\\d{2}\\b|\\b\\d{4}-\\d{2}-\\d{2}\\b|"
                       "\\b\\d{1,2}([./])\\d{1,2}\\1(\\d{2}|\\d{4})\\b"));
    return s_form.match(text).hasMatch();
}

bool looksLikeNumber(const QString& text) {
    static const QRegularExpression s_form(QStringLiteral("^[^\\pL]*\\d[^\\pL]*$"));
    return s_form.match(text).hasMatch();
}

bool looksChanging(const QString& text) {
    static const QRegularExpression s_digit(QStringLiteral("\\d"));
    return s_digit.match(text).hasMatch();
}

}  // namespace Tamrix::Agent
