#include "runner/suites/suiteconfig.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QXmlStreamReader>
#include <functional>
#include <vector>

namespace Tamrix {

namespace {

/// One reading of one file. The first error ends it: it is raised in the XML reader, so that every
/// loop over the document comes to its end.
class SuiteConfigReader {
public:
    SuiteConfigReader(const QByteArray& text, const QString& fileName) : m_xml(text) {
        m_config.fileName = fileName;
    }

    Outcome<SuiteConfig> read();

private:
    struct Child {
        const char* name;
        std::function<void()> read;
    };

    void giveUp(const QString& message);
    void readDocument();
    void readChildren(const std::vector<Child>& children);
    QString attribute(const char* name);
    void checkAttributes(const QStringList& known);
    void checkUnique(QSet<QString>& names, const QString& name, const char* what);
    QString readText();

    void readCase();
    void readSetting();
    void readApplication();

    QXmlStreamReader m_xml;
    SuiteConfig m_config;
    QSet<QString> m_caseNames;
    QSet<QString> m_settingNames;
    QSet<QString> m_applicationNames;
    QString m_error;
};

Outcome<SuiteConfig> SuiteConfigReader::read() {
    readDocument();
    // What follows the root element is checked as well: a second root is an error.
    while (!m_xml.atEnd() && m_error.isEmpty())
        m_xml.readNext();
    if (m_error.isEmpty() && m_xml.hasError())
        giveUp(m_xml.errorString());
    if (!m_error.isEmpty())
        return fail(FailureKind::BadArgument, m_error);
    return m_config;
}

void SuiteConfigReader::giveUp(const QString& message) {
    if (!m_error.isEmpty())
        return;
    m_error =
        QStringLiteral("%1:%2: %3")
            .arg(m_config.fileName, QString::number(m_xml.lineNumber()), message.simplified());
    m_xml.raiseError(message);
}

void SuiteConfigReader::readDocument() {
    while (!m_xml.atEnd()) {
        m_xml.readNext();
        if (m_xml.isDTD()) {
            // Nothing here needs one, and entities are a way to blow up a small file.
            giveUp(QStringLiteral("a document type declaration is not allowed"));
        } else if (m_xml.isStartElement()) {
            if (m_xml.name() != QLatin1String("suite")) {
                giveUp(QStringLiteral("the root element is <%1>, not <suite>").arg(m_xml.name()));
                return;
            }
            checkAttributes({});
            readChildren({
                {"cases",
                 [this] {
                     readChildren({{"case", [this] { readCase(); }}});
                 }},
                {"settings",
                 [this] {
                     readChildren({{"setting", [this] { readSetting(); }}});
                 }},
                {"applications",
                 [this] {
                     readChildren({{"application", [this] { readApplication(); }}});
                 }},
            });
            return;
        }
    }
}

/// Reads up to the end of the current element; each child is read by its entry of the table.
void SuiteConfigReader::readChildren(const std::vector<Child>& children) {
    const QString parent = m_xml.name().toString();
    while (!m_xml.atEnd()) {
        m_xml.readNext();
        if (m_xml.isEndElement())
            return;
        if (m_xml.isCharacters() && !m_xml.isWhitespace()) {
            giveUp(QStringLiteral("unexpected text in <%1>").arg(parent));
        } else if (m_xml.isStartElement()) {
            const Child* known = nullptr;
            for (const Child& child : children) {
                if (m_xml.name() == QLatin1String(child.name))
                    known = &child;
            }
            if (known)
                known->read();
            else
                giveUp(QStringLiteral("unknown element <%1> in <%2>").arg(m_xml.name(), parent));
        }
    }
}

/// The value of an attribute that must be there and not be empty.
QString SuiteConfigReader::attribute(const char* name) {
    const QString value = m_xml.attributes().value(QLatin1String(name)).toString();
    if (value.isEmpty()) {
        giveUp(QStringLiteral("<%1> needs the attribute \"%2\"")
                   .arg(m_xml.name(), QLatin1String(name)));
    }
    return value;
}

void SuiteConfigReader::checkAttributes(const QStringList& known) {
    for (const QXmlStreamAttribute& attribute : m_xml.attributes()) {
        if (!known.contains(attribute.qualifiedName().toString())) {
            giveUp(QStringLiteral("unknown attribute \"%1\" of <%2>")
                       .arg(attribute.qualifiedName(), m_xml.name()));
        }
    }
}

void SuiteConfigReader::checkUnique(QSet<QString>& names, const QString& name, const char* what) {
    if (names.contains(name))
        giveUp(QStringLiteral("%1 '%2' is listed twice").arg(QLatin1String(what), name));
    names.insert(name);
}

/// The text of an element without children.
QString SuiteConfigReader::readText() {
    checkAttributes({});
    const QString element = m_xml.name().toString();
    QString text;
    while (!m_xml.atEnd()) {
        m_xml.readNext();
        if (m_xml.isEndElement())
            return text;
        if (m_xml.isStartElement())
            giveUp(QStringLiteral("unknown element <%1> in <%2>").arg(m_xml.name(), element));
        else if (m_xml.isCharacters())
            text += m_xml.text();
    }
    return text;
}

void SuiteConfigReader::readCase() {
    checkAttributes({QStringLiteral("name")});
    SuiteConfig::ListedCase listed;
    listed.name = attribute("name");
    listed.line = static_cast<int>(m_xml.lineNumber());
    checkUnique(m_caseNames, listed.name, "case");
    m_config.cases.append(listed);
    readChildren({});
}

void SuiteConfigReader::readSetting() {
    checkAttributes({QStringLiteral("name"), QStringLiteral("value")});
    SuiteConfig::Setting setting;
    setting.name = attribute("name");
    if (!m_xml.attributes().hasAttribute(QLatin1String("value")))
        giveUp(QStringLiteral("<setting> needs the attribute \"value\""));
    setting.value = m_xml.attributes().value(QLatin1String("value")).toString();
    checkUnique(m_settingNames, setting.name, "setting");
    m_config.settings.append(setting);
    readChildren({});
}

void SuiteConfigReader::readApplication() {
    checkAttributes({QStringLiteral("name"), QStringLiteral("path"), QStringLiteral("hook")});
    ConfiguredApplication application;
    application.name = attribute("name");
    application.path = attribute("path");
    const QString hook = m_xml.attributes().value(QLatin1String("hook")).toString();
    if (const Launcher* const launcher = Launcher::find(hook))
        application.launcher = launcher;
    else if (!hook.isEmpty())
        giveUp(QStringLiteral("hook is %1, not '%2'").arg(Launcher::namesText(), hook));
    checkUnique(m_applicationNames, application.name, "application");

    QSet<QString> variableNames;
    readChildren({
        {"argument", [&] { application.arguments.append(readText()); }},
        {"workingDirectory",
         [&] {
             if (!application.workingDirectory.isEmpty())
                 giveUp(QStringLiteral("a second <workingDirectory>"));
             application.workingDirectory = readText();
             if (application.workingDirectory.isEmpty())
                 giveUp(QStringLiteral("<workingDirectory> is empty"));
         }},
        {"variable",
         [&] {
             checkAttributes({QStringLiteral("name"), QStringLiteral("value")});
             const QString name = attribute("name");
             if (name.contains(QLatin1Char('=')))
                 giveUp(QStringLiteral("a variable's name can't hold \"=\": '%1'").arg(name));
             checkUnique(variableNames, name, "variable");
             application.environment.append(
                 {name, m_xml.attributes().value(QLatin1String("value")).toString()});
             readChildren({});
         }},
    });
    m_config.applications.append(application);
}

}  // namespace

Outcome<SuiteConfig> parseSuiteConfig(const QByteArray& text, const QString& fileName) {
    return SuiteConfigReader(text, fileName).read();
}

Outcome<SuiteConfig> readSuiteConfig(const QString& suiteDirectory) {
    const QString fileName = suiteDirectory + QLatin1String("/config.xml");
    QFile file(fileName);
    if (!QFileInfo::exists(fileName) && !QFileInfo(fileName).isSymLink())
        return SuiteConfig();
    const auto readFailure = [&] {
        return fail(FailureKind::Failed,
                    QStringLiteral("%1 can't be read: %2").arg(fileName, file.errorString()));
    };
    if (!file.open(QIODevice::ReadOnly))
        return readFailure();
    // One byte more than allowed tells a file that is too large, also one without a size.
    const QByteArray text = file.read(maximalSuiteConfigSize + 1);
    if (file.error() != QFileDevice::NoError)
        return readFailure();
    if (text.size() > maximalSuiteConfigSize) {
        return fail(FailureKind::Refused,
                    QStringLiteral("%1 is larger than %2 bytes")
                        .arg(fileName, QString::number(maximalSuiteConfigSize)));
    }
    return parseSuiteConfig(text, fileName);
}

}  // namespace Tamrix
