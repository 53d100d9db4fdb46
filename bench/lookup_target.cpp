// The program that objectlookup_bench looks into: a window with 10,000 objects, and the plain loop
// that a look-up is compared with.

#include <QApplication>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVector>
#include <algorithm>

namespace {

constexpr int groupCount = 100;
/// Each with a layout beside these: 100 objects a group.
constexpr int rowsInGroup = 49;

class LookupTarget : public QScrollArea {
    Q_OBJECT
public:
    LookupTarget() {
        setWindowTitle("Lookup target");
        setObjectName("target");
        auto* page = new QWidget;
        auto* pageLayout = new QGridLayout(page);
        for (int group = 0; group < groupCount; ++group)
            pageLayout->addWidget(makeGroup(group), group / 10, group % 10);
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

    Q_INVOKABLE int objectCount() const { return findChildren<QObject*>().size(); }

private:
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
    LookupTarget target;
    target.show();
    return QApplication::exec();
}

#include "lookup_target.moc"
