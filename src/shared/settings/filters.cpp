#include "shared/settings/filters.h"

#include <QFile>
#include <QStringList>
#include <QTextStream>
#include <algorithm>

#include "shared/settings/settings.h"

namespace Tamrix {

namespace {

struct BuiltInFilter {
    const char* rule;
    bool isWildcard = true;
};

constexpr BuiltInFilter spyFilters[] = {
    {"*:QGuardedPtrPrivate"},
    {"*:QWhatsThisPrivate"},
    {"*:QSignal*"},
    {"*:Q*Drag"},
    {"*:QTimer"},
    {"*:QToolTipGroup"},
    {"*:QObject"},
    {"*:QApplication"},
    {".*:Q(?!Quick).*Layout", false},
    {"*:QDesktopWidget"},
    {"*:Q*Style"},
    {"*:QImageFormatPlugin"},
    {"*:QClipboard"},
    {"*:QLocalFs"},
    {"*:QNetworkOperation"},
    {"*:QStyleSheet"},
    {"*:QUrlOperator"},
    {"*:QAccel"},
    {"*:QDataPump"},
    {"*:QDataSink"},
    {"*:QStylePlugin"},
    {"*:QObjectCleanupHandler"},
    {"___tamrix_*:*"},
    {"* Qt::*"},
    {"* QWidget::acceptDrops"},
    {"* QWidget::autoMask"},
    {"* QWidget::background*"},
    {"* QWidget::baseSize"},
    {"* QWidget::children*"},
    {"* QWidget::colorGroup"},
    {"* QWidget::customWhatsThis"},
    {"* QWidget::focusPolicy"},
    {"* QWidget::fullScreen"},
    {"* QWidget::inputMethodEnabled"},
    {"* QWidget::icon"},
    {"* QWidget::maximized"},
    {"* QWidget::microFocusHint"},
    {"* QWidget::mouseTracking"},
    {"* QWidget::own*"},
    {"* QWidget::sizePolicy"},
    {"* QWidget::sizeIncrement"},
    {"* QWidget::sizeHint"},
    {"* QWidget::updatesEnabled"},
    {"* QWidget::underMouse"},
    {"* *_QML_*::__*"},
    {"* *_QMLTYPE_*::__*"},
};

constexpr BuiltInFilter visionFilters[] = {{"*:QDesktopWidget"}};

bool strToBool(const QString& text) {
    return text == QLatin1String("true");
}

/// Appends the user's filters, or the built-in ones, which are all of kind 0.
template <std::size_t size>
void loadFilters(FilterList& list, const char* fileName, const BuiltInFilter (&builtIn)[size]) {
    const QString path = Settings::tamrixSettingsDir() + '/' + QLatin1String(fileName);
    if (loadFiltersFromFile(list, path))
        return;
    for (const BuiltInFilter& row : builtIn) {
        Filter& filter = list.emplace_back();
        filter.setRule(QLatin1String(row.rule), row.isWildcard);
        filter.setKind(0, true);
    }
}

}  // namespace

void Filter::setRule(const QString& rule, bool wildcard) {
    m_rule = rule;
    m_pattern = QRegExp(rule, Qt::CaseSensitive, wildcard ? QRegExp::Wildcard : QRegExp::RegExp);
}

bool filterListMatch(const FilterList& list, const QString& name, int kind) {
    return std::any_of(list.begin(), list.end(), [&](const Filter& filter) {
        return filter.hasKind(kind) && filter.matches(name);
    });
}

bool loadFiltersFromFile(FilterList& list, const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    QString line;
    while (stream.readLineInto(&line)) {
        const QStringList fields = line.split('\t', Qt::SkipEmptyParts);
        if (fields.size() < 1 + Filter::kinds)
            continue;
        Filter& filter = list.emplace_back();
        const bool isRegularExpression = strToBool(fields.value(1 + Filter::kinds));
        filter.setRule(fields.at(0), !isRegularExpression);
        for (int kind = 0; kind < Filter::kinds; ++kind)
            filter.setKind(kind, strToBool(fields.at(1 + kind)));
    }
    return true;
}

void loadSpyFilters(FilterList& list) {
    loadFilters(list, "spyfilter", spyFilters);
}

void loadVisionFilters(FilterList& list) {
    loadFilters(list, "visionfilter", visionFilters);
}

}  // namespace Tamrix
