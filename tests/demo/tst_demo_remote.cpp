// The customers form of the demo started with a server: its rows come from the
// application server's "Customers" provider (a server in this process, on 127.0.0.1, over a
// fresh sample database), an edit or a new customer is in the database once saved, a new
// customer gets its number from the server, and changes the server refused keep the form
// from closing until the user lets them go.
#include "customers_form.h"
#include "demo_context.h"
#include "demo_module.h"
#include "sample_db.h"

#include "db_test_helper.h"
#include "demo_test_helper.h"
#include "dialog_helper.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_dbControls.h>
#include <Kesh_dbGrid.h>
#include "platform/remote/app_server.h"

#include <QSqlQuery>
#include <QtTest>

using namespace Kesh;
using namespace DemoTest;

namespace {

const QString Token = QStringLiteral("demo-remote-test-token-0001");

// The sample database, a server over it, and the context of a demo started with --server.
struct TRemoteSample
{
    explicit TRemoteSample(const KeshTest::TTestDatabase& Db)
    {
        Conn.SetConnectionString(Db.ConnectionString());
        Conn.Open();
        Demo::EnsureSampleDatabase(&Conn, 300);
        Server.SetPort(0);
        Server.SetWorkers(2);
        Server.AddToken(Token, {QStringLiteral("*")});
        const QString Cs = Db.ConnectionString();
        Server.ModuleFactory = [Cs] { return new Demo::TDemoModule(Cs); };
        Server.Start();
        Context.Conn = &Conn;
        Context.ServerUrl = QStringLiteral("http://127.0.0.1:%1").arg(Server.BoundPort());
        Context.ServerToken = Token;
    }
    QVariant Scalar(const QString& Sql) const { return DemoTest::Scalar(Conn, Sql); }
    TQxAdoConnection Conn;
    TAppServer Server;
    Demo::TDemoContext Context;
};

int Key(Demo::TListForm& Form) { return Form.DataSet()->FieldByName(QStringLiteral("Cust_id"))->AsInteger(); }

} // namespace

class TestDemoRemote : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Application()->SetBiDiMode(bdLeftToRight); }

    void editAndInsert_data() { KeshTest::AddDriverRows(); }
    void editAndInsert()
    {
        KESH_OPEN_PRIVATE_TEST_DB(Db);
        TRemoteSample S(*Db);
        Demo::TCustomersForm Form(S.Context);
        ShowForm(Form);
        QVERIFY(qobject_cast<TClientDataSet*>(Form.DataSet()));
        const int Count = S.Scalar(QStringLiteral("SELECT COUNT(*) FROM Customers")).toInt();
        QCOMPARE(Form.DataSet()->RecordCount(), Count);

        // An edit in the card, saved with Ctrl+S, is in the database at once.
        QVERIFY(Form.DataSet()->Locate(QStringLiteral("Cust_id"), 5));
        const QString English = QStringLiteral("O'Neil & Sons; --");
        Retype(W<QWidget>(Form, "xName_e"), English);
        QTest::keyClick(W<QWidget>(Form, "xName_e"), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
        QCOMPARE(S.Scalar(QStringLiteral("SELECT Name_e FROM Customers WHERE Cust_id = 5")).toString(), English);

        // A new customer: the server gives the number, and the form shows it.
        const int Next = S.Scalar(QStringLiteral("SELECT MAX(Cust_id) FROM Customers")).toInt() + 1;
        QTest::mouseClick(W<QWidget>(Form, "btnAdd"), Qt::LeftButton);
        QCOMPARE(Form.DataSet()->State(), dsInsert);
        QVERIFY(Form.DataSet()->FieldByName(QStringLiteral("Cust_id"))->IsNull());
        Retype(W<QWidget>(Form, "xName_a"), QStringLiteral("عميل بعيد"));
        Retype(W<QWidget>(Form, "xName_e"), QStringLiteral("Remote customer"));
        Retype(W<QWidget>(Form, "xCredit_limit"), QStringLiteral("1500.25"));
        QTest::mouseClick(W<QWidget>(Form, "btnSave"), Qt::LeftButton);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
        QCOMPARE(S.Scalar(QStringLiteral("SELECT Name_a FROM Customers WHERE Cust_id = %1").arg(Next)).toString(),
                 QStringLiteral("عميل بعيد"));
        QCOMPARE(S.Scalar(QStringLiteral("SELECT Credit_limit FROM Customers WHERE Cust_id = %1").arg(Next)).toDouble(), 1500.25);
        QCOMPARE(Key(Form), Next);
        QCOMPARE(qobject_cast<TClientDataSet*>(Form.DataSet())->ChangeCount(), 0);
        QCOMPARE(S.Scalar(QStringLiteral("SELECT COUNT(*) FROM Customers")).toInt(), Count + 1);
        QVERIFY(Form.close());  // nothing unsaved: no question
    }

    void refusedChangeKeepsFormOpen_data() { KeshTest::AddDriverRows(); }
    // Another user changed the customer meanwhile: the server refuses the edit and says why;
    // closing asks whether to lose it, No keeps the form open, Yes closes it.
    void refusedChangeKeepsFormOpen()
    {
        KESH_OPEN_PRIVATE_TEST_DB(Db);
        TRemoteSample S(*Db);
        Demo::TCustomersForm Form(S.Context);
        ShowForm(Form);
        auto* Customers = qobject_cast<TClientDataSet*>(Form.DataSet());
        QVERIFY(Customers);
        QVERIFY(Customers->Locate(QStringLiteral("Cust_id"), 7));
        QVERIFY(S.Conn.Exec(QStringLiteral("UPDATE Customers SET Phone = '999' WHERE Cust_id = 7")));
        Retype(W<QWidget>(Form, "xName_e"), QStringLiteral("Mine"));
        {
            KeshTest::DialogDriver Driver;
            Driver.Press(Qt::Key_Return);
            QTest::keyClick(W<QWidget>(Form, "xName_e"), Qt::Key_S, Qt::ControlModifier);
            QCOMPARE(Driver.Seen.size(), 1);
            QVERIFY2(Driver.Seen[0].Text.contains(QStringLiteral("changed by another user")), qPrintable(Driver.Seen[0].Text));
        }
        QCOMPARE(Customers->State(), dsBrowse);
        QCOMPARE(Customers->ChangeCount(), 1);
        QCOMPARE(S.Scalar(QStringLiteral("SELECT Name_e FROM Customers WHERE Cust_id = 7")).toString() == QLatin1String("Mine"), false);
        for (const char* Answer : {"btnNo", "btnYes"}) {
            ShowForm(Form);
            KeshTest::DialogDriver Driver;
            Driver.Press(Qt::Key_Return);  // the server's reason, once more
            Driver.Click(QLatin1String(Answer));
            const bool Closed = Form.close();
            QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
            QCOMPARE(Driver.Seen.size(), 2);
            QVERIFY2(Driver.Seen[1].Text.contains(QStringLiteral("1 changes")), qPrintable(Driver.Seen[1].Text));
            QCOMPARE(Closed, qstrcmp(Answer, "btnYes") == 0);
        }
    }
};

QTEST_MAIN(TestDemoRemote)
#include "tst_demo_remote.moc"
