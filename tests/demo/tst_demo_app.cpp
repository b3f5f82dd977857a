// The sales application on live windows: its sample database on SQLite and PostgreSQL, the
// start panel's figures, the language switch with forms open, the refusal to close over
// unsaved changes, the settings form and the remembered placement and language.
#include "db_test_helper.h"
#include "dialog_helper.h"
#include "main_window.h"
#include "sample_db.h"
#include "screenshots.h"
#include "settings_form.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>

#include <QDate>
#include <QMenuBar>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

using namespace Kesh;
using KeshTest::DialogDriver;

namespace {

// Fewer lines than the application's hundred thousand keep the windows' tests quick; the
// sample test below makes the full database.
const int QuickLines = 2000;

// A new, empty database: an SQLite file in a temporary folder, or a PostgreSQL database
// made on the test server under a name of its own and dropped at the end.
class TFreshDatabase
{
public:
    ~TFreshDatabase()
    {
        Conn.Close();
        if (!m_pgName.isEmpty()) {
            TQxAdoConnection Admin;
            Admin.SetConnectionString(m_pgAdmin);
            Admin.Open();
            Admin.Exec(QStringLiteral("DROP DATABASE IF EXISTS ") + m_pgName);
        }
    }

    bool Open(const QString& Driver, QString& Reason)
    {
        try {
            if (Driver == QLatin1String("sqlite")) {
                Conn.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + m_dir.filePath(QStringLiteral("sales.db")));
            } else {
                m_pgAdmin = qEnvironmentVariable("KESH_TEST_PG");
                if (m_pgAdmin.isEmpty()) {
                    Reason = QStringLiteral("KESH_TEST_PG names no PostgreSQL server");
                    return false;
                }
                TQxAdoConnection Admin;
                Admin.SetConnectionString(m_pgAdmin);
                Admin.Open();
                const QString Name = QStringLiteral("kesh_demo_%1_%2").arg(QCoreApplication::applicationPid()).arg(QRandomGenerator::global()->bounded(1000000));
                if (!Admin.Exec(QStringLiteral("CREATE DATABASE ") + Name)) {
                    Reason = Admin.ErrorMessage();
                    return false;
                }
                m_pgName = Name;
                QString Target = m_pgAdmin;
                Target.replace(QRegularExpression(QStringLiteral("Database=[^;]*")), QStringLiteral("Database=") + Name);
                Conn.SetConnectionString(Target);
            }
            Conn.Open();
        } catch (const Exception& E) {
            Reason = E.Message;
            return false;
        }
        return true;
    }

    TQxAdoConnection Conn;

private:
    QTemporaryDir m_dir;
    QString m_pgAdmin;
    QString m_pgName;
};

QVariant Scalar(TQxAdoConnection& Conn, const QString& Sql)
{
    QVector<QVariant> Values(1);
    if (!Conn.DLookup(Sql, Values))
        return QVariant();
    return Values[0];
}

TQxForm* ManagerOf(QWidget* Window)
{
    return Window->findChild<TQxForm*>(QString(), Qt::FindDirectChildrenOnly);
}

// Types Text key by key; QTest::keyClicks knows Latin-1 only.
void Type(QWidget* Widget, const QString& Text)
{
    for (const QChar C : Text) {
        QTest::sendKeyEvent(QTest::Press, Widget, Qt::Key_unknown, QString(C), Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, Widget, Qt::Key_unknown, QString(C), Qt::NoModifier);
    }
}

QString TitleOf(QMenu* Menu)
{
    return Menu->menuAction()->text();
}

} // namespace

class TestDemoApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        ConfigFile = m_dir.filePath(QStringLiteral("demo.ini"));
        QString Reason;
        QVERIFY2(m_db.Open(QStringLiteral("sqlite"), Reason), qPrintable(Reason));
        Demo::EnsureSampleDatabase(&m_db.Conn, QuickLines);
        m_context.Conn = &m_db.Conn;
    }

    void init()
    {
        QFile::remove(ConfigFile);
        Application()->SetBiDiMode(bdLeftToRight);
    }

    void cleanup()
    {
        m_window.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Application()->SetBiDiMode(bdLeftToRight);
    }

    // The application's own database, made in full on each server: the promised numbers of
    // rows, and every invoice's total the sum of its lines.
    void sampleDatabase_data() { KeshTest::AddDriverRows(); }
    void sampleDatabase()
    {
        QFETCH(QString, driver);
        TFreshDatabase Db;
        QString Reason;
        if (!Db.Open(driver, Reason)) {
            if (driver == QLatin1String("postgres") && !KeshTest::PostgresRequired())
                QSKIP(qPrintable(Reason));
            QFAIL(qPrintable(Reason));
        }
        QElapsedTimer Clock;
        Clock.start();
        Demo::EnsureSampleDatabase(&Db.Conn);
        qInfo("%s: sample database made in %lld ms", qPrintable(driver), static_cast<long long>(Clock.elapsed()));
        QCOMPARE(Db.Conn.DCount(QStringLiteral("Customers"), QString()), 300);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("Items"), QString()), 200);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("Invoices"), QString()), 20000);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("InvoiceLines"), QString()), 100000);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("Invoices"),
                                QStringLiteral("ABS(Total - (SELECT SUM(L.Line_total) FROM InvoiceLines L "
                                               "WHERE L.Inv_id = Invoices.Inv_id)) > 0.005")),
                 0);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("Invoices"),
                                QStringLiteral("NOT EXISTS (SELECT 1 FROM InvoiceLines L WHERE L.Inv_id = Invoices.Inv_id)")),
                 0);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("InvoiceLines"), QStringLiteral("ABS(Line_total - ROUND(Qty * Price, 2)) > 0.005")), 0);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("Invoices"), QStringLiteral("Inv_date < 20240101 OR Inv_date > 20261231")), 0);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("Customers"), QStringLiteral("Name_a = '' OR Name_e = ''")), 0);
        QVERIFY(!Db.Conn.ReadSetting(Demo::SetCompanyA, QString()).toString().isEmpty());
        QVERIFY(!Db.Conn.ReadSetting(Demo::SetCompanyE, QString()).toString().isEmpty());
        // A second start finds the database made and adds nothing.
        Demo::EnsureSampleDatabase(&Db.Conn);
        QCOMPARE(Db.Conn.DCount(QStringLiteral("InvoiceLines"), QString()), 100000);
    }

    // The start panel counts with the database's aggregates; this month's sales take the
    // invoices dated in this month, whether the date was entered Gregorian or Hijri.
    void monthSales_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<bool>("counted");
        const QDate Today = QDate::currentDate();
        const int Gregorian = DateEncode(Today.year(), Today.month(), Today.day());
        const QDate LastMonth = Today.addMonths(-1);
        const int Earlier = DateEncode(LastMonth.year(), LastMonth.month(), 15);
        QTest::newRow("today, Gregorian") << Gregorian << true;
        QTest::newRow("today, Hijri") << ConvertDate(Gregorian) << true;
        QTest::newRow("first of the month") << DateEncode(Today.year(), Today.month(), 1) << true;
        QTest::newRow("last month, Gregorian") << Earlier << false;
        QTest::newRow("last month, Hijri") << ConvertDate(Earlier) << false;
    }
    void monthSales()
    {
        QFETCH(int, date);
        QFETCH(bool, counted);
        OpenWindow();
        const Demo::TStartFigures Before = m_window->Figures();
        QCOMPARE(Before.Customers, 300);
        QCOMPARE(Before.Items, 200);
        QCOMPARE(Before.Invoices, m_db.Conn.DCount(QStringLiteral("Invoices"), QString()));
        const int Id = m_db.Conn.GetNextID(QStringLiteral("Invoices"), QStringLiteral("Inv_id"), QString()).toInt();
        QVERIFY(m_db.Conn.Exec(QStringLiteral("INSERT INTO Invoices (Inv_id, Inv_date, Cust_id, Payment, Posted, Total) "
                                              "VALUES (%1, %2, 1, 'C', %3, 1234.5)")
                                   .arg(Id)
                                   .arg(date)
                                   .arg(QStringLiteral("FALSE"))));
        m_window->RefreshStart();
        m_db.Conn.Exec(QStringLiteral("DELETE FROM Invoices WHERE Inv_id = %1").arg(Id));
        const Demo::TStartFigures After = m_window->Figures();
        QCOMPARE(After.Invoices, Before.Invoices + 1);
        QCOMPARE(After.MonthSales - Before.MonthSales, counted ? 1234.5 : 0.0);
    }

    // With forms open, the language menu's hot key switches every window and the
    // application; the forms stay on the screen.
    void languageSwitch_data()
    {
        QTest::addColumn<bool>("toArabic");
        QTest::newRow("English to Arabic") << true;
        QTest::newRow("Arabic to English") << false;
    }
    void languageSwitch()
    {
        QFETCH(bool, toArabic);
        Application()->SetBiDiMode(toArabic ? bdLeftToRight : bdRightToLeft);
        OpenWindow();
        QWidget* Settings = m_window->OpenForm(QStringLiteral("Settings"));
        QWidget* Tools = m_window->OpenForm(QStringLiteral("Tools"));
        QVERIFY(Settings && Tools);
        QCOMPARE(Settings->windowTitle(), toArabic ? QStringLiteral("Settings") : QStringLiteral("الإعدادات"));
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(m_window.get(), toArabic ? Qt::Key_A : Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);

        const Qt::LayoutDirection Want = toArabic ? Qt::RightToLeft : Qt::LeftToRight;
        QCOMPARE(QApplication::layoutDirection(), Want);
        QCOMPARE(Application()->BiDiMode(), toArabic ? bdRightToLeft : bdLeftToRight);
        for (QWidget* Window : {static_cast<QWidget*>(m_window.get()), Settings, Tools}) {
            QVERIFY2(Window->isVisible(), qPrintable(Window->objectName()));
            QCOMPARE(Window->layoutDirection(), Want);
            QCOMPARE(ManagerOf(Window)->GetLanguage(), toArabic ? bdRightToLeft : bdLeftToRight);
        }
        QCOMPARE(Settings->windowTitle(), toArabic ? QStringLiteral("الإعدادات") : QStringLiteral("Settings"));
        QCOMPARE(Tools->windowTitle(), toArabic ? QStringLiteral("التواريخ والمبالغ والتقريب") : QStringLiteral("Dates, amounts and rounding"));
        QVERIFY(m_window->windowTitle().startsWith(toArabic ? QStringLiteral("مبيعات كيش - ") : QStringLiteral("Kesh Sales - ")));
        QCOMPARE(TitleOf(m_window->Menu(QStringLiteral("File"))), toArabic ? QStringLiteral("ملف") : QStringLiteral("&File"));
        QCOMPARE(m_window->Forms().first()->Action->text(), toArabic ? QStringLiteral("الإعدادات…") : QStringLiteral("&Settings…"));
        // A label of a form made in Designer follows its window.
        auto* Label = Settings->findChild<TQxLabel*>(QStringLiteral("lblCompanyE"));
        QVERIFY(Label);
        QCOMPARE(Label->GetCaption(), toArabic ? QStringLiteral("اسم الشركة بالإنجليزية:") : QStringLiteral("Company name in English:"));
        // The language is remembered for the next start.
        QCOMPARE(ReadSetting(QStringLiteral("MainWindow"), QStringLiteral("Language"), QString()).toString(),
                 toArabic ? QStringLiteral("ar") : QStringLiteral("en"));
    }

    // Closing the main window asks every open form; one holding a change refuses with a
    // message, and the application stays open until the change is saved or cancelled.
    void closeRefused_data()
    {
        QTest::addColumn<bool>("typed");
        QTest::addColumn<bool>("arabic");
        QTest::newRow("changed, English") << true << false;
        QTest::newRow("changed, Arabic") << true << true;
        QTest::newRow("untouched") << false << false;
    }
    void closeRefused()
    {
        QFETCH(bool, typed);
        QFETCH(bool, arabic);
        Application()->SetBiDiMode(arabic ? bdRightToLeft : bdLeftToRight);
        OpenWindow();
        QPointer<QWidget> Tools = m_window->OpenForm(QStringLiteral("Tools"));
        QPointer<Demo::TSettingsForm> Settings = qobject_cast<Demo::TSettingsForm*>(m_window->OpenForm(QStringLiteral("Settings")));
        QVERIFY(Tools && Settings);
        auto* Edit = Settings->findChild<TQxEdit*>(QStringLiteral("edtCurrencyE"));
        QVERIFY(Edit);
        if (typed) {
            Edit->setFocus();
            QTest::keyClicks(Edit, QStringLiteral("s"));
            QVERIFY(Settings->Modified());
        }
        {
            DialogDriver Driver;
            if (typed)
                Driver.Click(QStringLiteral("btnOk"));
            QTest::keyClick(m_window.get(), Qt::Key_Q, Qt::ControlModifier);
            QCOMPARE(Driver.Seen.size(), typed ? 1 : 0);
            if (typed)
                QCOMPARE(Driver.Seen[0].Text, arabic ? QStringLiteral("من فضلك قم بحفظ أو إهمال التعديلات أولاً.")
                                                     : QStringLiteral("Please save or cancel changes first."));
            QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
        }
        QCOMPARE(m_window->isVisible(), typed);
        QCOMPARE(Settings && Settings->isVisible(), typed);
        if (!typed) {
            QVERIFY(!Tools || !Tools->isVisible());
            return;
        }
        QTest::mouseClick(Settings->findChild<TQxBitBtn*>(QStringLiteral("bbnCancel")), Qt::LeftButton);
        QTRY_VERIFY(!Settings->isVisible());
        QVERIFY(m_window->close());
        QVERIFY(!m_window->isVisible());
    }

    // The settings form stores the names in the Settings table, and the main window's
    // caption and start panel show the company at once; a missing name is refused.
    void settingsSaved_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("saved");
        QTest::newRow("company, English") << "edtCompanyE" << "Acme Trading" << true;
        QTest::newRow("company, Arabic") << "edtCompanyA" << "شركة أكمي" << true;
        QTest::newRow("quote in the name") << "edtCompanyE" << "O'Brien & Sons" << true;
        QTest::newRow("currency emptied") << "edtCurrencyE" << "" << false;
        QTest::newRow("company emptied") << "edtCompanyA" << "" << false;
        QTest::newRow("sub-unit emptied") << "edtSubUnitE" << "" << true;
    }
    void settingsSaved()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(bool, saved);
        const bool Arabic = field.endsWith(QLatin1Char('A'));
        Application()->SetBiDiMode(Arabic ? bdRightToLeft : bdLeftToRight);
        OpenWindow();
        auto* Settings = qobject_cast<Demo::TSettingsForm*>(m_window->OpenForm(QStringLiteral("Settings")));
        QVERIFY(Settings);
        auto* Edit = Settings->findChild<TQxEdit*>(field);
        QVERIFY(Edit);
        Settings->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(Settings));
        const QString Before = Edit->text();
        Edit->setFocus();
        Edit->selectAll();
        QTest::keyClick(Edit, Qt::Key_Delete);
        Type(Edit, typed);
        {
            DialogDriver Driver;
            if (!saved)
                Driver.Click(QStringLiteral("btnOk"));
            QTest::keyClick(Settings, Qt::Key_S, Qt::ControlModifier);
            QCOMPARE(Driver.Seen.size(), saved ? 0 : 1);
            QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
        }
        QCOMPARE(Settings->isVisible(), !saved);
        // Read back through a connection of its own, past any cache of this one.
        TQxAdoConnection Reader;
        Reader.SetConnectionString(m_db.Conn.ConnectionString());
        Reader.Open();
        const int Id = field == QLatin1String("edtCompanyE") ? Demo::SetCompanyE
                     : field == QLatin1String("edtCompanyA") ? Demo::SetCompanyA
                     : field == QLatin1String("edtCurrencyE") ? Demo::SetCurrencyE : Demo::SetSubUnitE;
        const QString Stored = Scalar(Reader, QStringLiteral("SELECT Setting_value FROM Settings WHERE Setting_id = %1").arg(Id)).toString();
        QCOMPARE(Stored, saved ? typed : Before);
        if (saved && field.startsWith(QLatin1String("edtCompany"))) {
            QCOMPARE(m_window->CompanyName(), typed);
            QVERIFY2(m_window->windowTitle().endsWith(QStringLiteral(" - ") + typed), qPrintable(m_window->windowTitle()));
        }
        if (!saved) {
            QVERIFY(Settings->Modified());
            Settings->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(Settings));
            QTest::keyClick(Settings, Qt::Key_Escape);
            QTRY_VERIFY(!Settings->isVisible());
        }
        // Put the stored value back for the next rows.
        m_db.Conn.SaveSetting(Id, QString(), Before);
    }

    // Where the user left the main window and which language was chosen come back with the
    // next start.
    void placementRemembered()
    {
        OpenWindow();
        m_window->setGeometry(QRect(QPoint(70, 60), QSize(900, 600)));
        QTest::keyClick(m_window.get(), Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
        const QRect Left = m_window->geometry();
        m_window.reset();
        Application()->SetBiDiMode(bdLeftToRight);
        QCOMPARE(ReadSetting(QStringLiteral("MainWindow"), QStringLiteral("Language"), QString()).toString(), QStringLiteral("ar"));
        OpenWindow();
        QCOMPARE(m_window->geometry().size(), Left.size());
        QCOMPARE(m_window->geometry().topLeft(), Left.topLeft());
    }

    // The screenshot run opens every registered form and dialog in both languages, writes
    // one picture of each and leaves no window open behind it.
    void screenshotRun()
    {
        OpenWindow();
        QTemporaryDir Shots;
        QVERIFY(Shots.isValid());
        QCOMPARE(Demo::WriteScreenshots(*m_window, Shots.path()), 0);
        QStringList Names = {QStringLiteral("main"), QStringLiteral("dialog-info"), QStringLiteral("dialog-error"),
                             QStringLiteral("dialog-question"), QStringLiteral("calendar"), QStringLiteral("calendar-hijri")};
        for (const Demo::TFormEntry* Entry : m_window->Forms())
            Names << Entry->Name.toLower();
        for (const QString& Name : Names) {
            for (const char* Lang : {"ar", "en"}) {
                const QString File = Shots.filePath(Name + QLatin1Char('-') + QLatin1String(Lang) + QStringLiteral(".png"));
                const QImage Image(File);
                QVERIFY2(!Image.isNull(), qPrintable(File));
                QVERIFY2(Image.width() >= 200 && Image.height() >= 100, qPrintable(File));
            }
        }
        QCOMPARE(m_window->OpenForms().size(), 0);
        QVERIFY(!QApplication::activeModalWidget());
        // Both languages were shown; the run ends in Arabic.
        QCOMPARE(m_window->layoutDirection(), Qt::RightToLeft);
    }

private:
    void OpenWindow()
    {
        m_window = std::make_unique<Demo::TMainWindow>(m_context);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    QTemporaryDir m_dir;
    TFreshDatabase m_db;
    Demo::TDemoContext m_context;
    std::unique_ptr<Demo::TMainWindow> m_window;
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestDemoApp Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_demo_app.moc"
