// Tests of TDataSetModel: roles and headers, following the dataset's changes and lazy
// reading, editing through the model; every case runs under QAbstractItemModelTester.
#include "db_test_helper.h"
#include "platform/data.h"
#include "platform/exceptions.h"
#include "platform/rtl/format_settings.h"
#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

using namespace Kesh;

namespace {

std::unique_ptr<TClientDataSet> MakeRows(int Count)
{
    auto Ds = std::make_unique<TClientDataSet>();
    Ds->FieldDefs().Add(QStringLiteral("Id"), ftInteger);
    Ds->FieldDefs().Add(QStringLiteral("Name"), ftString);
    Ds->FieldDefs().Add(QStringLiteral("Price"), ftFloat);
    Ds->CreateDataSet();
    for (int i = 1; i <= Count; ++i) {
        Ds->Append();
        Ds->Fields()[0]->SetAsInteger(i);
        Ds->Fields()[1]->SetAsString(QStringLiteral("r%1").arg(i));
        Ds->Fields()[2]->SetAsFloat(i * 1000.5);
        Ds->Post();
    }
    Ds->First();
    return Ds;
}

QStringList Column(const QAbstractItemModel& M, int C)
{
    QStringList R;
    for (int r = 0; r < M.rowCount(); ++r)
        R << M.data(M.index(r, C)).toString();
    return R;
}

} // namespace

class TestDataSetModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        FormatSettings.ThousandSeparator = QLatin1Char(',');
    }
    void rolesAndHeaders()
    {
        auto Ds = MakeRows(3);
        Ds->FieldByName(QStringLiteral("Price"))->SetDisplayFormat(QStringLiteral("#,##0.00"));
        Ds->FieldByName(QStringLiteral("Name"))->SetDisplayLabel(QStringLiteral("الاسم"));
        Ds->FieldByName(QStringLiteral("Id"))->SetVisible(false);
        TDataSetModel Model;
        QAbstractItemModelTester Tester(&Model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(Model.rowCount(), 0);
        Model.SetDataSet(Ds.get());
        QCOMPARE(Model.rowCount(), 3);
        QCOMPARE(Model.columnCount(), 2);  // the hidden field is no column
        QCOMPARE(Model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("الاسم"));
        QCOMPARE(Model.FieldAt(1), Ds->FieldByName(QStringLiteral("Price")));
        QCOMPARE(Model.data(Model.index(1, 1)).toString(), QStringLiteral("2,001.00"));
        QCOMPARE(Model.data(Model.index(1, 1), Qt::EditRole), QVariant(2001.0));
        QCOMPARE(Model.data(Model.index(2, 0), Qt::EditRole).toString(), QStringLiteral("r3"));
        const auto Align = Model.data(Model.index(0, 1), Qt::TextAlignmentRole).value<Qt::Alignment>();
        QVERIFY(Align & Qt::AlignRight);
        QVERIFY(Model.data(Model.index(0, 0), Qt::TextAlignmentRole).value<Qt::Alignment>() & Qt::AlignLeft);
        QCOMPARE(Ds->RecNo(), 1);  // reading rows never moves the cursor
        QVERIFY(Model.flags(Model.index(0, 0)) & Qt::ItemIsEditable);
    }
    void followsDataSet()
    {
        auto Ds = MakeRows(4);
        TDataSetModel Model;
        QAbstractItemModelTester Tester(&Model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        Model.SetDataSet(Ds.get());
        Ds->Next();
        Ds->Insert();
        QCOMPARE(Model.rowCount(), 5);  // the unposted row shows where it is inserted
        QCOMPARE(Model.CurrentRow(), 1);
        Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("new"));
        QCOMPARE(Column(Model, 1), QStringList({"r1", "new", "r2", "r3", "r4"}));
        Ds->Post();
        QCOMPARE(Model.rowCount(), 5);
        Ds->Last();
        Ds->Delete();
        QCOMPARE(Column(Model, 1), QStringList({"r1", "new", "r2", "r3"}));
        Ds->Append();
        Ds->Cancel();
        QCOMPARE(Model.rowCount(), 4);
        Ds->First();
        Ds->Edit();
        QSignalSpy Changed(&Model, &QAbstractItemModel::dataChanged);
        Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("edited"));
        QVERIFY(!Changed.isEmpty());
        QCOMPARE(Model.data(Model.index(0, 1)).toString(), QStringLiteral("edited"));
        Ds->Cancel();
        QCOMPARE(Model.data(Model.index(0, 1)).toString(), QStringLiteral("r1"));
        Ds->Close();
        QCOMPARE(Model.rowCount(), 0);
        QCOMPARE(Model.columnCount(), 0);
        Ds->CreateDataSet();
        QCOMPARE(Model.columnCount(), 3);
        Ds.reset();
        QCOMPARE(Model.DataSet(), nullptr);
        QCOMPARE(Model.rowCount(), 0);
    }
    void disabledControlsResyncOnEnable()
    {
        auto Ds = MakeRows(6);
        TDataSetModel Model;
        QAbstractItemModelTester Tester(&Model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        Model.SetDataSet(Ds.get());
        QSignalSpy Resets(&Model, &QAbstractItemModel::modelReset);
        Ds->DisableControls();
        Ds->Delete();
        Ds->Delete();
        QCOMPARE(Model.rowCount(), 6);  // the views hear of it only at EnableControls
        QVERIFY(!Model.data(Model.index(5, 1)).isValid());  // a row gone meanwhile reads empty
        QCOMPARE(Resets.count(), 0);
        Ds->EnableControls();
        QCOMPARE(Resets.count(), 1);
        QCOMPARE(Column(Model, 1), QStringList({"r3", "r4", "r5", "r6"}));
    }
    void editThroughModel()
    {
        auto Ds = MakeRows(3);
        TDataSetModel Model;
        QAbstractItemModelTester Tester(&Model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        Model.SetDataSet(Ds.get());
        QVERIFY(Model.setData(Model.index(2, 1), QStringLiteral("typed")));
        QCOMPARE(Ds->RecNo(), 3);
        QCOMPARE(Ds->State(), dsEdit);
        QVERIFY(!Model.setData(Model.index(2, 2), QStringLiteral("abc")));  // refused by the field
        QCOMPARE(Model.ErrorString(), QStringLiteral("'abc' is not a valid floating point value for field 'Price'"));
        QVERIFY(Model.setData(Model.index(0, 2), 7.25));  // moving on posts the edited row
        QCOMPARE(Model.data(Model.index(2, 1)).toString(), QStringLiteral("typed"));
        Ds->Post();
        QCOMPARE(Model.data(Model.index(0, 2), Qt::EditRole), QVariant(7.25));
        Ds->SetReadOnly(true);
        QVERIFY(!(Model.flags(Model.index(0, 0)) & Qt::ItemIsEditable));
    }
    void lazyRows_data() { KeshTest::AddDriverRows(); }
    void lazyRows()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = Db->NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, Name VARCHAR(20)"));
        QVERIFY(Db->Exec(Db->IsPostgres()
                             ? QStringLiteral("INSERT INTO %1 SELECT g, 'r' || g FROM generate_series(1, 1000) g").arg(T)
                             : QStringLiteral("WITH RECURSIVE s(g) AS (SELECT 1 UNION ALL SELECT g + 1 FROM s WHERE g < 1000) "
                                              "INSERT INTO %1 SELECT g, 'r' || g FROM s").arg(T)));
        TADOQuery Q;
        Q.SetConnection(Db->Connection());
        Q.SetSQL({QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T)});
        Q.SetFetchBlockSize(100);
        Q.Open();
        TDataSetModel Model;
        QAbstractItemModelTester Tester(&Model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        Model.SetDataSet(&Q);
        QCOMPARE(Model.rowCount(), 64);
        QVERIFY(Model.canFetchMore(QModelIndex()));
        Model.fetchMore(QModelIndex());
        QCOMPARE(Model.rowCount(), 164);
        QCOMPARE(Q.RecNo(), 1);
        QSignalSpy Inserted(&Model, &QAbstractItemModel::rowsInserted);
        Q.MoveBy(250);  // the cursor reads further: the model grows with it
        QCOMPARE(Model.rowCount(), 264);
        QCOMPARE(Inserted.count(), 1);
        QCOMPARE(Model.data(Model.index(263, 1)).toString(), QStringLiteral("r264"));
        Q.Last();
        QCOMPARE(Model.rowCount(), 1000);
        QVERIFY(!Model.canFetchMore(QModelIndex()));
        QCOMPARE(Model.CurrentRow(), 999);
    }
};

QTEST_MAIN(TestDataSetModel)
#include "tst_dataset_model.moc"
