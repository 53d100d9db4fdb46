// The program that objectlookup_bench looks into: a window with 10,000 objects, and the plain loop
// that a look-up is compared with.

#include <QApplication>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>
#include <QToolButton>
#include <QVector>
#include <QWindow>
#include <algorithm>
#include <cstdlib>
#include <ctime>

/// Qt lets a class of this name, which it has for its own tests, make events as if of a person.
class QSpontaneKeyEvent {
public:
    static void mark(QEvent* event) { event->spont = true; }
};

namespace {

constexpr int usualGroupCount = 100;
/// Each with a layout beside these: 100 objects a group.
constexpr int rowsInGroup = 49;

class LookupTarget : public QScrollArea {
    Q_OBJECT
public:
    explicit LookupTarget(int groupCount) {
        setWindowTitle("Lookup target");
        setObjectName("target");
        auto* page = new QWidget;
        auto* pageLayout = new QGridLayout(page);
        for (int group = 0; group < groupCount; ++group)
            pageLayout->addWidget(makeGroup(group), group / 10, group % 10);
        // Something to type into.
        pageLayout->addWidget(new QLineEdit, 0, 10);
        setWidget(page);
        setWidgetResizable(true);
        resize(1000, 700);
    }

    /// The time in microseconds that findChildren and two comparisons take, as the median.
    Q_INVOKABLE double plainLoop(const QString& type, const QString& text) const {
        QVector<double> times;
        const QByteArray className = type.toLatin1();
        for (int round = 0; round < 101; ++round) {
            QElapsedTimer timer;
            timer.start();
            int matches = 0;
            const QList<QObject*> objects = findChildren<QObject*>();
            for (const QObject* object : objects) {
                if (className == object->metaObject()->className() &&
                    object->property("text").toString() == text)
                    ++matches;
            }
            times.append(static_cast<double>(timer.nsecsElapsed()) / 1000);
            if (matches != 1)
                return -1;
        }
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }

    /// Measures, once the call is answered, which one that runs the event loop is too early.
    Q_INVOKABLE void measureEvents(const QString& kind, int count, int pause) {
        m_eventTime = -1;
        QTimer::singleShot(
            50, this, [this, kind, count, pause] { m_eventTime = eventTime(kind, count, pause); });
    }
    /// What was measured; negative as long as it is not.
    Q_INVOKABLE double measuredTime() const { return m_eventTime; }

    /// The time in microseconds for which one event, which comes to the native window as if from a
    /// person, keeps this thread busy, as the mean of many: "move", "key" for a press and a release
    /// in a field, "field", "button" and "twin" for clicks. Before each there is a pause, in ms,
    /// which does not count.
    double eventTime(const QString& kind, int count, int pause) {
        QWidget* const used = usedFor(kind);
        used->setFocus();
        if (auto* const field = qobject_cast<QLineEdit*>(used))
            field->clear();
        ensureWidgetVisible(used);
        rest(pause);
        const QPoint inWindow = used->mapTo(this, used->rect().center());
        m_sent = 0;
        m_time = 0;
        for (int i = 0; i < count; ++i) {
            if (kind == QLatin1String("move")) {
                sendMouse(QEvent::MouseMove, inWindow + QPoint(i % 3, 0), Qt::NoButton);
            } else if (kind == QLatin1String("key")) {
                rest(pause);
                sendKey(QEvent::ShortcutOverride);
                sendKey(QEvent::KeyPress);
                sendKey(QEvent::KeyRelease);
            } else {
                sendMouse(QEvent::MouseMove, inWindow + QPoint(i % 3, 0), Qt::NoButton);
                rest(pause);
                sendMouse(QEvent::MouseButtonPress, inWindow, Qt::LeftButton);
                sendMouse(QEvent::MouseButtonRelease, inWindow, Qt::LeftButton);
            }
        }
        return m_time / m_sent;
    }

    Q_INVOKABLE int objectCount() const { return findChildren<QObject*>().size(); }

private:
    QWidget* usedFor(const QString& kind) {
        if (kind == QLatin1String("button"))
            return findChild<QPushButton*>();
        if (kind != QLatin1String("twin"))
            return findChild<QLineEdit*>();
        // Beside its like in other groups, only its own tells it.
        while (m_twins.size() < 3) {
            QGroupBox* const group = findChildren<QGroupBox*>().at(m_twins.size());
            m_twins.append(new QToolButton);
            group->layout()->addWidget(m_twins.last());
        }
        return m_twins.first();
    }
    /// Lets the program do what it does when nobody acts.
    static void rest(int milliseconds) {
        QElapsedTimer timer;
        timer.start();
        do
            QCoreApplication::processEvents(QEventLoop::AllEvents, milliseconds);
        while (!timer.hasExpired(milliseconds));
    }
    /// That of the thread, in microseconds: other programs don't count.
    static double busyTime() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
    }
    void send(QEvent& event) {
        const double before = busyTime();
        // sendEvent() would take the mark away.
        QSpontaneKeyEvent::mark(&event);
        QCoreApplication::instance()->notify(windowHandle(), &event);
        // What becomes of it is told from the event loop.
        QCoreApplication::processEvents();
        m_time += busyTime() - before;
        ++m_sent;
    }
    void sendMouse(QEvent::Type type, const QPoint& place, Qt::MouseButton button) {
        const bool isDown = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, place, mapToGlobal(place), button, isDown ? button : Qt::NoButton,
                          Qt::NoModifier);
        event.setTimestamp(++m_timestamp);
        send(event);
    }
    void sendKey(QEvent::Type type) {
        QKeyEvent event(type, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        event.setTimestamp(++m_timestamp);
        send(event);
    }
    ulong m_timestamp = 0;
    double m_time = 0;
    int m_sent = 0;
    double m_eventTime = -1;
    QVector<QToolButton*> m_twins;

    static QGroupBox* makeGroup(int number) {
        auto* group = new QGroupBox(QString("Group %1").arg(number));
        auto* layout = new QGridLayout(group);
        for (int row = 0; row < rowsInGroup; ++row) {
            const QString suffix = QString("%1.%2").arg(number).arg(row);
            layout->addWidget(new QLabel("Label " + suffix), row, 0);
            layout->addWidget(new QPushButton("Button " + suffix), row, 1);
        }
        return group;
    }
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    LookupTarget target(argc > 1 ? std::atoi(argv[1]) : usualGroupCount);
    target.show();
    return QApplication::exec();
}

#include "lookup_target.moc"
