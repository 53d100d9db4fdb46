#include "shared/testdata/excelsheetchoice.h"

#include <tinyxml.h>

#include <QDir>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/testdata/excelxmlpart.h"

namespace Tamrix {

namespace {

/// The attribute "id" of another namespace than the element's, whatever its prefix is.
QString relationshipOf(const TiXmlElement& sheet) {
    for (const TiXmlAttribute* attribute = sheet.FirstAttribute(); attribute;
         attribute = attribute->Next()) {
        if (std::string_view(attribute->Name()).ends_with(":id"))
            return QString::fromUtf8(attribute->Value());
    }
    return {};
}

}  // namespace

ExcelSheetChoice chooseExcelSheet(const ExcelXmlPart& workbook, const QString& name) {
    const std::vector<std::pair<ExcelXmlPart::Path, const char*>> needed = {
        {{"workbook"}, "No <workbook>"},
        {{"workbook", "sheets"}, "No <sheets>"},
        {{"workbook", "sheets", "sheet"}, "No <sheet>"},
    };
    for (const auto& [path, problem] : needed) {
        if (!workbook.has(path))
            throw std::runtime_error(problem);
    }
    ExcelSheetChoice choice;
    workbook.forEach({"workbook", "sheets", "sheet"}, [&](const TiXmlElement& sheet) {
        const QString sheetName = QString::fromUtf8(sheet.Attribute("name"));
        if (!choice.part.isEmpty() || (!name.isEmpty() && sheetName != name))
            return;
        const QString id = QString::fromUtf8(sheet.Attribute("sheetId"));
        if (id.isEmpty())
            throw std::runtime_error("a <sheet> has no sheetId");
        choice = {sheetName, QStringLiteral("xl/worksheets/sheet%1.xml").arg(id),
                  relationshipOf(sheet)};
    });
    return choice;
}

QString relatedExcelPart(const ExcelXmlPart& relationships, const QString& relationship) {
    QString target;
    relationships.forEach({"Relationships", "Relationship"}, [&](const TiXmlElement& element) {
        if (QString::fromUtf8(element.Attribute("Id")) == relationship)
            target = QString::fromUtf8(element.Attribute("Target"));
    });
    // Targets count from the workbook's folder, unless they begin at the root.
    if (target.startsWith(QLatin1Char('/')))
        return QDir::cleanPath(target).mid(1);
    return target.isEmpty() ? target : QDir::cleanPath(QStringLiteral("xl/") + target);
}

}  // namespace Tamrix
