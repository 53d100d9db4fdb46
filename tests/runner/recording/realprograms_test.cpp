// Recordings of real programs of Debian that no test knows: twenty steps by mouse and keyboard with
// whatever each shows, and the script of them runs as it was written. Further programs can be tried
// by their paths, with ":" between them, in the variable TAMRIX_RECORDED_PROGRAMS.

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

#include "e2e/runnerprocess.h"
#include "runner/recording/recordedprogram.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::RecordedProgram;

/// So many lines are recorded, or what so many visits give.
constexpr int lineCount = 20;
constexpr int mostVisits = 40;
/// What is typed into fields.
constexpr char typedText[] = "12";
/// Behind half of the lines, what can be done in this time, in ms: a program may make each visit
/// wait.
constexpr int visitTime = 60'000;

struct Program {
    std::string name;
    QString path;
    QStringList arguments = {};
};

QString example(const char* path) {
    return QStringLiteral("/usr/lib/x86_64-linux-gnu/qt5/examples/") + QString::fromLatin1(path);
}

std::vector<Program> programs() {
    std::vector<Program> list{
        {"calculator", example("widgets/widgets/calculator/calculator")},
        {"validators", example("widgets/widgets/validators/validators")},
        {"spinboxes", example("widgets/widgets/spinboxes/spinboxes")},
        {"tabdialog", example("widgets/dialogs/tabdialog/tabdialog")},
        {"textedit", example("widgets/richtext/textedit/textedit")},
        {"editabletreemodel", example("widgets/itemviews/editabletreemodel/editabletreemodel")},
        {"settingseditor", example("widgets/tools/settingseditor/settingseditor")},
        {"calendar", example("widgets/richtext/calendar/calendar")},
        {"speedcrunch", QStringLiteral("/usr/bin/speedcrunch")},
#ifdef TAMRIX_TEST_QT6
        {"assistant", QStringLiteral("/usr/lib/qt6/bin/assistant")},
        {"linguist", QStringLiteral("/usr/lib/qt6/bin/linguist")},
        {"qt6ct", QStringLiteral("/usr/bin/qt6ct")},
        {"uefitool", QStringLiteral("/usr/bin/UEFITool")},
#endif
    };
    static const QRegularExpression s_other(QStringLiteral("\\W"));
    const QStringList further = qEnvironmentVariable("TAMRIX_RECORDED_PROGRAMS").split(u':');
    for (const QString& path : further) {
        const QString name = path.section(u'/', -1).replace(s_other, QStringLiteral("_"));
        list.push_back({"further_" + name.toStdString(), path});
    }
    list.erase(std::remove_if(list.begin(), list.end(),
                              [](const Program& each) { return !QFileInfo(each.path).isFile(); }),
               list.end());
    return list;
}

/// What is better left alone: it ends the program, prints, or shows what is another thing each
/// time.
bool isLeftAlone(const QString& text) {
    static const char* const s_words[] = {"quit",   "exit",   "ok",   "close",  "cancel",
                                          "print",  "open",   "save", "export", "full",
                                          "recent", "browse", "help", "load",   "import"};
    const QString lower = text.toLower();
    return std::any_of(std::begin(s_words), std::end(s_words),
                       [&lower](const char* word) { return lower.contains(QLatin1String(word)); });
}

/// Uses one thing after another that is there and can be reached.
class Visitor {
public:
    explicit Visitor(RecordedProgram& program) : m_program(program) {}

    void visit() {
        const auto listing =
            m_program.client().request<Wire::ObjectListing>(Wire::MessageType::ListObjects);
        QList<int> candidates;
        for (int index = 0; index < listing.objects.size(); ++index) {
            const Wire::ListedObject& object = listing.objects.at(index);
            const QString type = listing.types.at(object.type);
            const bool isUsable = (object.state & Wire::ListedObject::Visible) != 0 &&
                                  (object.state & Wire::ListedObject::Enabled) != 0;
            if (isUsable && isKnown(type) && !isLeftAlone(object.text) && isReached(object) &&
                !m_used.contains(object.name))
                candidates.append(index);
        }
        if (candidates.isEmpty()) {
            m_used.clear();
            m_program.press("Escape");
            return;
        }
        const Wire::ListedObject& object =
            listing.objects.at(candidates.at((m_step * 5) % candidates.size()));
        ++m_step;
        m_used.append(object.name);
        use(object, listing.types.at(object.type));
    }

private:
    static bool isKnown(const QString& type) {
        static const char* const s_words[] = {"Button",   "CheckBox",   "ComboBox", "SpinBox",
                                              "LineEdit", "TabBarItem", "ViewItem", "Slider",
                                              "Editor",   "TextEdit",   "QAction"};
        return std::any_of(
                   std::begin(s_words), std::end(s_words),
                   [&type](const char* word) { return type.contains(QLatin1String(word)); }) &&
               !type.contains("ComboBoxItem") && !type.contains("ButtonBox");
    }

    bool isReached(const Wire::ListedObject& object) {
        const QPoint middle = object.geometry.center();
        if (!QRect(0, 0, 1280, 1024).contains(middle))
            return false;
        const auto hit = m_program.client().request<Wire::ObjectInfo>(
            Wire::MessageType::ObjectAt, Wire::ScreenPoint{middle.x(), middle.y()});
        const auto name = m_program.client().request<Wire::Text>(Wire::MessageType::RealName,
                                                                 Wire::ObjectHandle{hit.handle});
        return name.text == object.name || name.text.contains(object.name);
    }

    void use(const Wire::ListedObject& object, const QString& type) {
        m_program.click(object.geometry.center());
        if (type.contains("ComboBox")) {
            m_program.press("Down");
            m_program.press("Return");
        } else if (type.contains("SpinBox")) {
            m_program.press("Up");
        } else if (type.contains("Edit")) {
            m_program.type(typedText);
        } else if (type == "QAction") {
            chooseBehind(object.name);
        }
    }

    /// Of what a menu shows one entry, or none: then it is closed again, as it is when a menu below
    /// is open.
    void chooseBehind(const QString& opener) {
        const QList<Wire::ListedObject> entries = openEntries(opener);
        if (!entries.isEmpty() && m_step % 3 != 0)
            m_program.click(entries.at(m_step % entries.size()).geometry.center());
        for (int level = 0; level < 3 && !openEntries(opener).isEmpty(); ++level)
            m_program.press("Escape");
    }

    /// The entries of menus that have popped up.
    QList<Wire::ListedObject> openEntries(const QString& opener) {
        const auto listing =
            m_program.client().request<Wire::ObjectListing>(Wire::MessageType::ListObjects);
        QList<Wire::ListedObject> entries;
        bool isInMenu = false;
        int depth = 0;
        for (const Wire::ListedObject& object : listing.objects) {
            const QString type = listing.types.at(object.type);
            if (type == "QMenu") {
                isInMenu = (object.state & Wire::ListedObject::Visible) != 0;
                depth = object.depth;
            } else if (object.depth <= depth) {
                isInMenu = false;
            }
            const bool isChoosable = type == "QAction" && isInMenu && object.name != opener &&
                                     (object.state & Wire::ListedObject::Enabled) != 0 &&
                                     (object.state & Wire::ListedObject::Visible) != 0;
            if (isChoosable && !object.text.isEmpty() && !isLeftAlone(object.text))
                entries.append(object);
        }
        return entries;
    }

    RecordedProgram& m_program;
    QStringList m_used;
    int m_step = 0;
};

class RealRecordings : public testing::TestWithParam<Program> {};
INSTANTIATE_TEST_SUITE_P(, RealRecordings, testing::ValuesIn(programs()),
                         [](const auto& row) { return row.param.name; });

TEST_P(RealRecordings, RunAsTheyWereWritten) {
    // Both runs start alike: in the same folder, with an empty home at the same path.
    const Tamrix::Test::SuiteFolder suite;
    const QString home = suite.path("home");
    ASSERT_TRUE(QDir().mkpath(home));
    const Tamrix::Test::WorkingDirectory working(home);
    QByteArray script;
    QStringList lines;
    {
        const QMap<QString, QString> homes{
            {"HOME", home}, {"XDG_CONFIG_HOME", home}, {"XDG_DATA_HOME", home}};
        RecordedProgram program(GetParam().path, GetParam().arguments, homes);
        ASSERT_EQ(program.error(), QString());
        Visitor visitor(program);
        const QDeadlineTimer deadline(visitTime);
        for (int visit = 0; visit < mostVisits && lines.size() < lineCount &&
                            (lines.size() <= lineCount / 2 || !deadline.hasExpired()) &&
                            program.client().channel().isOpen();
             ++visit) {
            visitor.visit();
            lines += program.takeLines();
        }
        script = program.script(GetParam().path);
    }
    EXPECT_GT(lines.size(), lineCount / 2) << script.constData();
    ASSERT_TRUE(QDir(home).removeRecursively() && QDir().mkpath(home));
    suite.write("suite/case/test.py", script);
    Tamrix::Test::RunnerProcess runner;
    for (const char* const variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        runner.setVariable(variable, home);
    runner.setWorkingDirectory(home);
    // Passwords are told by who runs a script.
    static const QRegularExpression s_password(QStringLiteral("getPassword\\(\"(\\w+)\"\\)"));
    auto passwords = s_password.globalMatch(QString::fromUtf8(script));
    while (passwords.hasNext())
        runner.setVariable("TAMRIX_PASSWORD_" + passwords.next().captured(1), typedText);
    runner.setVariable("QT_IM_MODULE", "compose");
    runner.run({"run", suite.path("suite"), "--aut-display", "auto", "--result-dir",
                suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output()) << script.constData();
}

}  // namespace
}  // namespace Tamrix
