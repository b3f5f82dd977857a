// The host object and the application class that keeps exceptions inside the event loop.
#include "platform/application.h"
#include "platform/exceptions.h"

#include <QPushButton>
#include <QtTest>

using namespace Kesh;

namespace {
// Raises from inside an event handler, as a control's slot would.
class Thrower : public QObject
{
public:
    std::function<void()> Action;
    bool event(QEvent* E) override
    {
        if (E->type() == QEvent::User) {
            Action();
            return true;
        }
        return QObject::event(E);
    }
};
} // namespace

class TestApplication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void biDiModeDrivesTheLayoutDirection_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("direction");
        QTest::newRow("left to right") << int(bdLeftToRight) << int(Qt::LeftToRight);
        QTest::newRow("right to left") << int(bdRightToLeft) << int(Qt::RightToLeft);
        QTest::newRow("no align") << int(bdRightToLeftNoAlign) << int(Qt::LeftToRight);
        QTest::newRow("reading only") << int(bdRightToLeftReadingOnly) << int(Qt::LeftToRight);
    }
    void biDiModeDrivesTheLayoutDirection()
    {
        QFETCH(int, mode);
        QFETCH(int, direction);
        QPushButton Button;
        QSignalSpy Spy(Application(), &THostApplication::BiDiModeChanged);
        Application()->SetBiDiMode(TBiDiMode(mode));
        QCOMPARE(int(QGuiApplication::layoutDirection()), direction);
        QCOMPARE(int(Button.layoutDirection()), direction);
        QCOMPARE(Spy.count(), mode == bdLeftToRight ? 0 : 1);
        Application()->SetBiDiMode(TBiDiMode(mode)); // no change, no signal
        QCOMPARE(Spy.count(), mode == bdLeftToRight ? 0 : 1);
        Application()->SetBiDiMode(bdLeftToRight);
        QCOMPARE(QGuiApplication::layoutDirection(), Qt::LeftToRight);
    }

    void exeNameDefaultsToTheExecutable()
    {
        QCOMPARE(Application()->ExeName(), QCoreApplication::applicationFilePath());
        Application()->SetExeName(QStringLiteral("/tmp/x.exe"));
        QCOMPARE(Application()->ExeName(), QStringLiteral("/tmp/x.exe"));
        Application()->SetExeName(QString());
        QCOMPARE(Application()->ExeName(), QCoreApplication::applicationFilePath());
    }

    void notifySwallowsAbortAndShowsOtherErrors_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("abort is silent") << 0 << QStringList();
        QTest::newRow("library error is shown") << 1 << QStringList{QStringLiteral("Field 'X' not found")};
        QTest::newRow("convert error is shown") << 2 << QStringList{QStringLiteral("'x' is not a valid floating point value")};
    }
    void notifySwallowsAbortAndShowsOtherErrors()
    {
        QFETCH(int, kind);
        QFETCH(QStringList, shown);
        QVERIFY(qobject_cast<TQxApplication*>(QCoreApplication::instance()));
        QStringList Shown;
        const auto Saved = Application()->ShowException;
        Application()->ShowException = [&](const QString& Msg) { Shown << Msg; };
        Thrower T;
        T.Action = [kind] {
            if (kind == 0)
                Abort();
            if (kind == 1)
                throw EDatabaseError(QStringLiteral("Field 'X' not found"));
            throw EConvertError(QStringLiteral("'x' is not a valid floating point value"));
        };
        QEvent E(QEvent::User);
        QCOMPARE(QCoreApplication::sendEvent(&T, &E), false);
        Application()->ShowException = Saved;
        QCOMPARE(Shown, shown);
    }

    void abortCarriesThePlatformText()
    {
        try {
            Abort();
            QFAIL("Abort returned");
        } catch (const Exception& E) {
            QCOMPARE(E.Message, QStringLiteral("Operation aborted"));
            QCOMPARE(QString::fromUtf8(E.what()), QStringLiteral("Operation aborted"));
        }
    }
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    TestApplication Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_application.moc"
