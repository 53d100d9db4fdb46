#include "shared/ocr/tesseract/languagedata.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <cstdio>
#include <stdexcept>

#include "base/environment.h"
#include "shared/ocr/tesseract/handles.h"
#include "shared/ocr/typedexception.h"

namespace Tamrix::Tesseract {

using OCR::Language;
using OCR::TesseractOptions;

namespace {

QString settingsGroup() {
    return QStringLiteral("Tesseract");
}
QString installPathKey() {
    return QStringLiteral("InstallPath/40");
}

[[noreturn]] void giveUp(const QString& text) {
    throw InitializationError(text);
}

void readLanguages(QXmlStreamReader& xml, QList<Language>& languages) {
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("language")) {
            const QXmlStreamAttributes attributes = xml.attributes();
            const auto attribute = [&](const char* name, const QString& otherwise) {
                const QLatin1String key(name);
                return attributes.hasAttribute(key) ? attributes.value(key).toString() : otherwise;
            };
            const QString code = attribute("code", QString());
            const QString recordedName = attribute("recordedName", code);
            if (!code.isEmpty())
                languages.append(
                    Language(code, recordedName, attribute("displayName", recordedName)));
        }
        xml.skipCurrentElement();
    }
}

void readEngineModes(QXmlStreamReader& xml, QList<TesseractOptions::Mode>& modes) {
    const QStringList names =
        xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed().split(',');
    const bool hasLstm = names.contains(QLatin1String("LSTM"));
    const bool hasLegacy = names.contains(QLatin1String("legacy"));
    if (hasLstm)
        modes.append(TesseractOptions::LstmOnly);
    if (hasLegacy)
        modes.append(TesseractOptions::TesseractOnly);
    if (hasLstm && hasLegacy)
        modes.append(TesseractOptions::Combined);
}

/// What the data files themselves tell: their names.
LanguageData listDataFiles(const QString& dir) {
    const ApiHandle api = owned(tesseract->TessBaseAPICreate());
    if (tesseract->TessBaseAPIInit3(api.get(), tessdataOf(dir).toUtf8().constData(), nullptr) != 0)
        throw std::runtime_error("Failed to initialize the Tesseract engine");
    const TextArrayHandle codes(tesseract->TessBaseAPIGetAvailableLanguagesAsVector(api.get()));
    LanguageData data;
    data.second = {TesseractOptions::TesseractOnly, TesseractOptions::LstmOnly,
                   TesseractOptions::Combined, TesseractOptions::DefaultMode};
    for (int i = 0; codes && codes[i]; ++i) {
        const Language language(QString::fromUtf8(codes[i]));
        if (language.code == QLatin1String("eng"))
            data.first.prepend(language);
        else
            data.first.append(language);
    }
    return data;
}

}  // namespace

QString defaultInstallPath() {
    if (Environment::getVariable(QLatin1String(prefixVariable)).isEmpty())
        return {};
    const QString path = expandPrefix(QStringLiteral("@(TAMRIX_PREFIX)/lib/tesseract"));
    return QFileInfo(path).isDir() ? path : QString();
}

QString installPathOf(const Settings& settings) {
    return settings.readEntry(settingsGroup(), installPathKey(), defaultInstallPath());
}

QString tesseractFlavorDir(const Settings& settings, const QString& flavor) {
    const QString dir = flavor.isEmpty()
                            ? installPathOf(settings)
                            : settings.readEntry(settingsGroup(), QStringLiteral("%1/%2").arg(
                                                                      installPathKey(), flavor));
    if (dir.isEmpty())
        throw InvalidInputs(QStringLiteral("Unknown tesseract engine data flavor: ") + flavor);
    return dir;
}

QString tessdataOf(const QString& dir) {
    return QStringLiteral("%1/tessdata").arg(dir);
}

LanguageData loadLanguagesFile(const QString& dir) {
    // 1. The file.
    const QString path = dir + QStringLiteral("/languageNames.xml");
    QFile file(path);
    if (!file.exists())
        giveUp(QStringLiteral("Language map file '%1' does not exist").arg(path));
    if (!file.open(QIODevice::ReadOnly))
        giveUp(QStringLiteral("Language map file '%1' cannot be open: %2")
                   .arg(path, file.errorString()));
    // 2. Its root.
    QXmlStreamReader xml(&file);
    const auto failParsing = [&path](const QString& problem) {
        giveUp(QStringLiteral("Language map file '%1' parsing failed: %2").arg(path, problem));
    };
    if (!xml.readNextStartElement())
        failParsing(xml.hasError() ? xml.errorString()
                                   : QStringLiteral("The root element missing"));
    if (xml.name() != QLatin1String("languageMap"))
        failParsing(QStringLiteral("root element must be languageMap"));
    // 3. What it holds. The mode that leaves the choice to the engine is always there.
    LanguageData data;
    data.second.append(TesseractOptions::DefaultMode);
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("languages"))
            readLanguages(xml, data.first);
        else if (xml.name() == QLatin1String("engineModes"))
            readEngineModes(xml, data.second);
        else
            xml.skipCurrentElement();
    }
    if (xml.hasError())
        failParsing(xml.errorString());
    return data;
}

LanguageData loadLanguages(const QString& dir) {
    try {
        return loadLanguagesFile(dir);
    } catch (const InitializationError& error) {
        std::fprintf(stderr, "%s\nUsing plain character codes\n", error.what());
    }
    return listDataFiles(dir);
}

}  // namespace Tamrix::Tesseract
