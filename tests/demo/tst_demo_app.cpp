// The sales application on live windows: the start panel's figures on SQLite and PostgreSQL,
// the language switch with forms open, the refusal to close over unsaved changes, the
// settings form, the remembered placement and language, and the screenshot run.
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
#include <QTemporaryDir>
#include <QtTest>
#include <map>
#include <memory>

using namespace Kesh;
using KeshTest::DialogDriver;

namespace {

// Few invoice lines keep the windows' tests quick; tst_sample_db checks the full database.
const int QuickLines = 2000;

// The sample database on a database of its own (a file, or a PostgreSQL database dropped at
// the end), with the application's connection to it.
struct TSalesDatabase
{
    std::unique_ptr<KeshTest::TTestDatabase> Server;
    TQxAdoConnection Conn;
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
        QVERIFY(Database(QStringLiteral("sqlite")));
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

    // The start panel counts with the database's aggregates; this month's sales take the
    // invoices dated in this month, whether the date was entered Gregorian or Hijri.
    void monthSales_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<int>("date");
        QTest::addColumn<bool>("counted");
        const QDate Today = QDate::currentDate();
        const int Gregorian = DateEncode(Today.year(), Today.month(), Today.day());
        const QDate LastMonth = Today.addMonths(-1);
        const int Earlier = DateEncode(LastMonth.year(), LastMonth.month(), 15);
        const struct {
            const char* Name;
            int Date;
            bool Counted;
        } Rows[] = {{"today, Gregorian", Gregorian, true},
                    {"today, Hijri", ConvertDate(Gregorian), true},
                    {"first of the month", DateEncode(Today.year(), Today.month(), 1), true},
                    {"last month, Gregorian", Earlier, false},
                    {"last month, Hijri", ConvertDate(Earlier), false}};
        for (const char* Driver : {"sqlite", "postgres"})
            for (const auto& Row : Rows)
                QTest::addRow("%s, %s", Driver, Row.Name) << QString::fromLatin1(Driver) << Row.Date << Row.Counted;
    }
    void monthSales()
    {
        QFETCH(QString, driver);
        QFETCH(int, date);
        QFETCH(bool, counted);
        TQxAdoConnection* Conn = Database(driver);
        if (!Conn)
            return;
        QVERIFY(OpenWindow(driver));
        const Demo::TStartFigures Before = m_window->Figures();
        QCOMPARE(Before.Customers, 300);
        QCOMPARE(Before.Items, 200);
        QCOMPARE(Before.Invoices, Conn->DCount(QStringLiteral("Invoices"), QString()));
        const int Id = Demo::NextId(Conn, QStringLiteral("Invoices"), QStringLiteral("Inv_id"));
        QVERIFY(Conn->Exec(QStringLiteral("INSERT INTO Invoices (Inv_id, Inv_date, Cust_id, Payment, Posted, Total) "
                                              "VALUES (%1, %2, 1, 'C', FALSE, 1234.5)")
                                   .arg(Id)
                                   .arg(date)));
        m_window->RefreshStart();
        Conn->Exec(QStringLiteral("DELETE FROM Invoices WHERE Inv_id = %1").arg(Id));
        const Demo::TStartFigures After = m_window->Figures();
        QCOMPARE(After.Invoices, Before.Invoices + 1);
        QCOMPARE(After.MonthSales - Before.MonthSales, counted ? 1234.5 : 0.0);
    }

    // With every form open, the language menu's hot key switches every window and the
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
        const TBiDiMode Mode = toArabic ? bdRightToLeft : bdLeftToRight;
        Application()->SetBiDiMode(toArabic ? bdLeftToRight : bdRightToLeft);
        QVERIFY(OpenWindow());
        QList<QWidget*> Windows{m_window.get()};
        for (const Demo::TFormEntry* Entry : m_window->Forms()) {
            QWidget* Form = m_window->OpenForm(Entry->Name);
            QVERIFY2(Form && ManagerOf(Form), qPrintable(Entry->Name));
            Windows << Form;
        }
        QCOMPARE(Windows.size(), m_window->OpenForms().size() + 1);
        QWidget* Settings = m_window->OpenForm(QStringLiteral("Settings"));
        QCOMPARE(Settings->windowTitle(), toArabic ? QStringLiteral("Settings") : QStringLiteral("الإعدادات"));
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(m_window.get(), toArabic ? Qt::Key_A : Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);

        const Qt::LayoutDirection Want = toArabic ? Qt::RightToLeft : Qt::LeftToRight;
        QCOMPARE(QApplication::layoutDirection(), Want);
        QCOMPARE(Application()->BiDiMode(), Mode);
        for (QWidget* Window : Windows) {
            const TQxForm* Manager = ManagerOf(Window);
            QVERIFY2(Window->isVisible(), qPrintable(Window->objectName()));
            QCOMPARE(Window->layoutDirection(), Want);
            QCOMPARE(Manager->GetLanguage(), Mode);
            const QString Caption = toArabic ? Manager->GetCaptionA() : Manager->GetCaptionE();
            QVERIFY2(!Caption.isEmpty(), qPrintable(Window->objectName()));
            QCOMPARE(Window->windowTitle(), Caption);
        }
        QCOMPARE(Settings->windowTitle(), toArabic ? QStringLiteral("الإعدادات") : QStringLiteral("Settings"));
        QVERIFY(m_window->windowTitle().startsWith(toArabic ? QStringLiteral("مبيعات كيش - ") : QStringLiteral("Kesh Sales - ")));
        QCOMPARE(TitleOf(m_window->Menu(QStringLiteral("File"))), toArabic ? QStringLiteral("ملف") : QStringLiteral("&File"));
        const auto SettingsEntry = std::find_if(m_window->Forms().begin(), m_window->Forms().end(),
                                                [](const Demo::TFormEntry* Entry) { return Entry->Name == QLatin1String("Settings"); });
        QVERIFY(SettingsEntry != m_window->Forms().end());
        QCOMPARE((*SettingsEntry)->Action->text(), toArabic ? QStringLiteral("الإعدادات…") : QStringLiteral("&Settings…"));
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
        QVERIFY(OpenWindow());
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
        QVERIFY(OpenWindow());
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
        Reader.SetConnectionString(Database(QStringLiteral("sqlite"))->ConnectionString());
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
        Database(QStringLiteral("sqlite"))->SaveSetting(Id, QString(), Before);
    }

    // Where the user left the main window and which language was chosen come back with the
    // next start.
    void placementRemembered()
    {
        QVERIFY(OpenWindow());
        m_window->setGeometry(QRect(QPoint(70, 60), QSize(900, 600)));
        QTest::keyClick(m_window.get(), Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
        const QRect Left = m_window->geometry();
        m_window.reset();
        Application()->SetBiDiMode(bdLeftToRight);
        QCOMPARE(ReadSetting(QStringLiteral("MainWindow"), QStringLiteral("Language"), QString()).toString(), QStringLiteral("ar"));
        QVERIFY(OpenWindow());
        QCOMPARE(m_window->geometry().size(), Left.size());
        QCOMPARE(m_window->geometry().topLeft(), Left.topLeft());
    }

    // The screenshot run opens every registered form and dialog in both languages, writes
    // one picture of each and leaves no window open behind it.
    void screenshotRun()
    {
        QVERIFY(OpenWindow());
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
    // The sample database of Driver, made on first use; nullptr (the test skipped or failed)
    // when the server is missing.
    TQxAdoConnection* Database(const QString& Driver)
    {
        std::unique_ptr<TSalesDatabase>& Db = m_databases[Driver];
        if (Db)
            return &Db->Conn;
        QString Reason;
        auto Made = std::make_unique<TSalesDatabase>();
        Made->Server = KeshTest::TTestDatabase::OpenPrivate(Driver, Reason);
        if (!Made->Server) {
            if (Driver == QLatin1String("postgres") && !KeshTest::PostgresRequired() && qEnvironmentVariableIsEmpty("KESH_TEST_PG"))
                QTest::qSkip(qPrintable(Reason), __FILE__, __LINE__);
            else
                QTest::qFail(qPrintable(Reason), __FILE__, __LINE__);
            return nullptr;
        }
        try {
            Made->Conn.SetConnectionString(Made->Server->ConnectionString());
            Made->Conn.Open();
            Demo::EnsureSampleDatabase(&Made->Conn, QuickLines);
        } catch (const Exception& E) {
            QTest::qFail(qPrintable(E.Message), __FILE__, __LINE__);
            return nullptr;
        }
        Db = std::move(Made);
        return &Db->Conn;
    }

    bool OpenWindow(const QString& Driver = QStringLiteral("sqlite"))
    {
        m_context.Conn = Database(Driver);
        if (!m_context.Conn)
            return false;
        m_window = std::make_unique<Demo::TMainWindow>(m_context);
        m_window->show();
        m_window->activateWindow();
        return QTest::qWaitForWindowActive(m_window.get());
    }

    QTemporaryDir m_dir;
    std::map<QString, std::unique_ptr<TSalesDatabase>> m_databases;
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
