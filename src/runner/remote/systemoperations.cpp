#include "runner/remote/systemoperations.h"

#include <QTextCodec>
#include <memory>

#include "base/nativebytes.h"
#include "runner/remote/fileerrors.h"

namespace Tamrix {

namespace {

/// A path that no program takes for an option.
QString argumentOf(const QString& path) {
    return path.startsWith(QLatin1Char('/')) ? path : QStringLiteral("./") + path;
}

/// The path without "/" at its end.
QString withoutEnd(QString path) {
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

/// Runs a program of the system that works on files; its last words are the failure.
Outcome<> runTool(System& system, const QStringList& words) {
    const Outcome<CommandResult> result = system.execute({words});
    if (!result)
        return fail(result.error());
    if (result->exitCode == 0)
        return {};
    const QString told = fromNativeBytes(result->standardError).trimmed();
    return fail(FailureKind::Failed,
                told.isEmpty() ? QStringLiteral("'%1' ended with code %2")
                                     .arg(words.constFirst(), QString::number(result->exitCode))
                               : told.section(QLatin1Char('\n'), -1));
}

QTextCodec* codecFor(const QString& encoding) {
    return QTextCodec::codecForName(encoding.toLatin1());
}

Failure unknownEncoding(const QString& encoding) {
    return {FailureKind::BadArgument,
            QStringLiteral("the encoding '%1' is not known").arg(encoding)};
}

// Properties of paths

QString permissionText(quint32 permissions) {
    QString text;
    for (int bit = 8; bit >= 0; --bit) {
        const bool isSet = (permissions >> bit & 1U) != 0;
        text += isSet ? QLatin1Char("xwr"[bit % 3]) : QLatin1Char('-');
    }
    return text;
}

struct PropertyRow {
    const char* name;
    QVariant (*value)(const PathFacts& facts);
};

bool isKind(const PathFacts& facts, PathFacts::Kind kind) {
    return facts.kind == kind;
}

// Those that follow from the facts; "linkTarget" is asked for.
const PropertyRow propertyRows[] = {
    {"groupId", [](const PathFacts& facts) { return QVariant(static_cast<int>(facts.groupId)); }},
    {"isDirectory",
     [](const PathFacts& facts) { return QVariant(isKind(facts, PathFacts::Kind::Directory)); }},
    {"isFile",
     [](const PathFacts& facts) { return QVariant(isKind(facts, PathFacts::Kind::File)); }},
    {"isLink", [](const PathFacts& facts) { return QVariant(facts.isLink); }},
    {"lastAccessed", [](const PathFacts& facts) { return QVariant(facts.lastAccessed); }},
    {"lastModified", [](const PathFacts& facts) { return QVariant(facts.lastModified); }},
    {"ownerId", [](const PathFacts& facts) { return QVariant(static_cast<int>(facts.ownerId)); }},
    {"permissions",
     [](const PathFacts& facts) { return QVariant(permissionText(facts.permissions)); }},
    {"size", [](const PathFacts& facts) { return QVariant(facts.size); }},
};
const QString linkTargetProperty = QStringLiteral("linkTarget");

}  // namespace

// Paths

Outcome<bool> pathExists(System& system, const QString& path) {
    const Outcome<PathFacts> facts = system.facts(path);
    if (facts)
        return true;
    // Below what is no folder there is nothing either.
    if (facts.error().kind == FailureKind::NotFound ||
        facts.error().text == fileFailure(FileProblem::NoDirectory, path).text)
        return false;
    return fail(facts.error());
}

Outcome<> createPath(System& system, const QString& path, Recursion recursion) {
    if (recursion == Recursion::No)
        return system.makeDirectory(path);
    const QString wanted = withoutEnd(path);
    const Outcome<PathFacts> facts = system.facts(wanted);
    if (facts && facts->kind == PathFacts::Kind::Directory)
        return {};
    if (facts)
        return fail(fileFailure(FileProblem::ExistsAlready, path));
    if (facts.error().kind != FailureKind::NotFound)
        return fail(facts.error());
    const int slash = wanted.lastIndexOf(QLatin1Char('/'));
    if (slash > 0) {
        if (Outcome<> made = createPath(system, wanted.left(slash), recursion); !made)
            return made;
    }
    return system.makeDirectory(wanted);
}

Outcome<> deletePath(System& system, const QString& path, Recursion recursion) {
    const QString wanted = withoutEnd(path);
    const Outcome<PathFacts> facts = system.facts(wanted);
    if (!facts)
        return fail(facts.error());
    if (facts->isLink || facts->kind != PathFacts::Kind::Directory)
        return system.removeFile(wanted);
    if (recursion == Recursion::No)
        return system.removeDirectory(wanted);
    return runTool(system, {QStringLiteral("rm"), QStringLiteral("-rf"), argumentOf(wanted)});
}

Outcome<> copyPath(System& system, const QString& from, const QString& to) {
    const QString source = withoutEnd(from);
    const QString target = withoutEnd(to);
    if (const Outcome<PathFacts> facts = system.facts(source); !facts)
        return fail(facts.error());
    const Outcome<bool> isThere = pathExists(system, target);
    if (!isThere)
        return fail(isThere.error());
    if (*isThere)
        return fail(fileFailure(FileProblem::ExistsAlready, to));
    const QString part = partPath(target);
    Outcome<> done = runTool(system, {QStringLiteral("cp"), QStringLiteral("-pPR"),
                                      argumentOf(source), argumentOf(part)});
    if (done)
        done = system.rename(part, target);
    if (!done && done.error().kind != FailureKind::Ended)
        static_cast<void>(
            runTool(system, {QStringLiteral("rm"), QStringLiteral("-rf"), argumentOf(part)}));
    if (done)
        return {};
    Failure why = done.error();
    why.text.replace(argumentOf(part), to);
    return fail(why);
}

// Properties

QStringList pathPropertyNames() {
    QStringList names;
    for (const PropertyRow& row : propertyRows)
        names.append(QLatin1String(row.name));
    names.append(linkTargetProperty);
    names.sort();
    return names;
}

Outcome<QVariant> pathProperty(System& system, const QString& path, const QString& name) {
    if (name == linkTargetProperty) {
        const Outcome<QString> target = system.linkTarget(path);
        if (!target)
            return fail(target.error());
        return QVariant(*target);
    }
    for (const PropertyRow& row : propertyRows) {
        if (name != QLatin1String(row.name))
            continue;
        const Outcome<PathFacts> facts = system.facts(path);
        if (!facts)
            return fail(facts.error());
        return row.value(*facts);
    }
    return fail(FailureKind::BadArgument,
                QStringLiteral("there is no property '%1'; there are %2")
                    .arg(name, pathPropertyNames().join(QLatin1String(", "))));
}

// The system

Outcome<QString> environmentVariable(System& system, const QString& name) {
    if (name.isEmpty() || name.contains(QLatin1Char('=')) || name.contains(QChar(0)))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is no name of an environment variable").arg(name));
    const Outcome<CommandResult> result =
        system.execute({{QStringLiteral("printenv"), QStringLiteral("--"), name}});
    if (!result)
        return fail(result.error());
    QByteArray value = result->exitCode == 0 ? result->standardOutput : QByteArray();
    value.chop(1);
    return fromNativeBytes(value);
}

Outcome<QString> osName(System& system) {
    const Outcome<CommandResult> result = system.execute({{QStringLiteral("uname")}});
    if (!result)
        return fail(result.error());
    return QString::fromLatin1(result->standardOutput).trimmed();
}

// Texts

Outcome<QByteArray> encoded(const QString& text, const QString& encoding) {
    const QTextCodec* const codec = codecFor(encoding);
    if (!codec)
        return fail(unknownEncoding(encoding));
    // No mark of byte order where that is left to the writer.
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QByteArray bytes = codec->fromUnicode(text.constData(), text.size(), &state);
    if (state.invalidChars > 0)
        return fail(
            FailureKind::BadArgument,
            QStringLiteral("the text has characters that the encoding '%1' lacks").arg(encoding));
    return bytes;
}

Outcome<QString> decoded(const QByteArray& bytes, const QString& encoding, LineEnds lineEnds) {
    const QTextCodec* const codec = codecFor(encoding);
    if (!codec)
        return fail(unknownEncoding(encoding));
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString text = codec->toUnicode(bytes.constData(), bytes.size(), &state);
    if (lineEnds == LineEnds::OfThisSystem)
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return text;
}

}  // namespace Tamrix
