#include "e2e/documentblock.h"

#include "support/files.h"
#include "support/golden.h"

namespace Tamrix::Test {

DocumentBlock::DocumentBlock(const QString& document, const QString& name)
    : m_path(QStringLiteral(TAMRIX_TEST_SOURCE_DIR "/docs/") + document), m_name(name) {
    const QString text = QString::fromUtf8(readFile(m_path));
    const QString start = QStringLiteral("<!-- Recorded by %1 -->\n```\n").arg(name);
    const int begin = text.indexOf(start);
    const int end = begin < 0 ? -1 : text.indexOf("```\n", begin + start.size());
    if (end < 0) {
        ADD_FAILURE() << qPrintable(m_path) << " has no block recorded by " << qPrintable(name);
        return;
    }
    m_before = text.left(begin + start.size());
    const QString block = text.mid(begin + start.size(), end - begin - start.size());
    m_lines = block.split('\n');
    m_lines.removeLast();
    m_behind = text.mid(end);
}

testing::AssertionResult DocumentBlock::compare(const QString& recorded) const {
    if (qEnvironmentVariableIsSet("TAMRIX_UPDATE_GOLDEN") && !m_before.isEmpty()) {
        if (writeFile(m_path, (m_before + recorded + m_behind).toUtf8()))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "can't write " << qPrintable(m_path);
    }
    const QString expected = m_lines.join('\n') + '\n';
    if (recorded == expected)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << qPrintable(m_path) << ", block recorded by " << qPrintable(m_name) << ", differs:\n"
           << qPrintable(lineDifference(expected, recorded));
}

}  // namespace Tamrix::Test
