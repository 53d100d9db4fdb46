#include "runner/names/unusednames.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include "platform/objectmodel/nameresolver.h"
#include "platform/objectmodel/scriptedobjectmap.h"

namespace Tamrix {

namespace {

/// What is larger is no file that people write names in.
constexpr qint64 largestFile = 4 << 20;

bool isWordCharacter(QChar character) {
    return character.isLetterOrNumber() || character == '_';
}

/// How often the text stands in the other one, with no letter or digit behind it.
int mentions(const QString& text, const QString& key) {
    int count = 0;
    for (int at = text.indexOf(key); at >= 0; at = text.indexOf(key, at + 1)) {
        const int end = at + key.size();
        if (end >= text.size() || !isWordCharacter(text.at(end)) ||
            !isWordCharacter(key.at(key.size() - 1)))
            ++count;
    }
    return count;
}

/// The words of texts, with how often they stand there.
class Words {
public:
    void add(const QString& text) {
        static const QRegularExpression s_word(QStringLiteral(":?[A-Za-z_][A-Za-z0-9_]*"));
        for (auto it = s_word.globalMatch(text); it.hasNext();) {
            const QString word = it.next().captured();
            ++m_counts[word];
            if (word.startsWith(':'))
                ++m_counts[word.mid(1)];
        }
        m_texts.append(text);
    }
    /// Of a key such as ":Save".
    int countOf(const QString& key) const {
        static const QRegularExpression s_plain(QStringLiteral("\\A:[A-Za-z_][A-Za-z0-9_]*\\z"));
        if (s_plain.match(key).hasMatch())
            return m_counts.value(key);
        int count = 0;
        for (const QString& text : m_texts)
            count += mentions(text, key);
        return count;
    }
    int countOfWord(const QString& word) const { return m_counts.value(word); }

private:
    QHash<QString, int> m_counts;
    QStringList m_texts;
};

/// Fails with the reason; an empty text for what is none.
Outcome<QString> readText(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return fail(
            FailureKind::Failed,
            QStringLiteral("The file '%1' can't be read: %2").arg(path, file.errorString()));
    }
    const QByteArray bytes = file.read(largestFile + 1);
    return bytes.size() > largestFile || bytes.contains('\0') ? QString()
                                                              : QString::fromUtf8(bytes);
}

}  // namespace

Outcome<QStringList> unusedNames(const QString& suiteDirectory, ObjectMap& map) {
    const Outcome<QMap<QString, ObjectName>> names = map.names();
    if (!names)
        return fail(names.error());
    const bool isScript = dynamic_cast<ScriptedObjectMap*>(&map) != nullptr;
    // 1. All that is written in the suite, and in the map itself.
    Words words;
    Words ownWords;
    const QString ownPath = QFileInfo(map.path()).canonicalFilePath();
    QDirIterator files(suiteDirectory, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const Outcome<QString> text = readText(path);
        if (!text)
            return fail(text.error());
        (QFileInfo(path).canonicalFilePath() == ownPath ? ownWords : words).add(*text);
    }
    // 2. What the names refer to.
    QHash<QString, QStringList> references;
    QHash<QString, int> referenceCounts;
    for (auto it = names->cbegin(); it != names->cend(); ++it) {
        references.insert(it.key(), referencesOf(*it));
        for (const QString& key : qAsConst(references[it.key()]))
            ++referenceCounts[key];
    }
    // 3. Names that are mentioned, and what these refer to. In its own script a name stands where
    // it is made and where others refer to it; the script uses it where it stands more often.
    QStringList used;
    for (const QString& key : names->keys()) {
        const bool isMentioned =
            words.countOf(key) > 0 ||
            (isScript && (words.countOfWord(key.mid(1)) > 0 ||
                          ownWords.countOfWord(key.mid(1)) > 1 + referenceCounts.value(key)));
        if (isMentioned)
            used.append(key);
    }
    QSet<QString> reached;
    while (!used.isEmpty()) {
        const QString key = used.takeLast();
        if (!reached.contains(key)) {
            reached.insert(key);
            used += references.value(key);
        }
    }
    QStringList unused;
    for (const QString& key : names->keys()) {
        if (!reached.contains(key))
            unused.append(key);
    }
    return unused;
}

}  // namespace Tamrix
