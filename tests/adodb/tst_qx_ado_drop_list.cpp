// Drop lists filled from a table, on SQLite and PostgreSQL: the SQL text, one entry per
// key, the language switch keeping the key, and the data-aware list reading and writing
// its field.
#include <Kesh_AdoDB.h>

#include "db_test_helper.h"
#include "dialog_helper.h"

#include <QtTest>

using namespace Kesh;

namespace {

// Units: key 5 twice (the first row, "Box", wins), keys 1 and 7, one inactive row.
QString MakeUnits(KeshTest::TTestDatabase& Db)
{
    const QString T = Db.NewTable(QStringLiteral("Code INTEGER, Name_a VARCHAR(30), Name_e VARCHAR(30), Active INTEGER"));
    Db.Exec(QStringLiteral("INSERT INTO %1 VALUES (5, 'صندوق', 'Box', 1), (1, 'قطعة', 'Piece', 1), (5, 'كرتون', 'Carton', 1), "
                           "(7, 'متر', 'Metre', 0)").arg(T));
    return T;
}

template <class List>
void Configure(List& L, TADOConnection* Conn, const QString& Table)
{
    L.SetConnection(Conn);
    L.SetListKey(QStringLiteral("Code"));
    L.SetListField_a(QStringLiteral("Name_a"));
    L.SetListField_e(QStringLiteral("Name_e"));
    L.SetListTable(Table);
}

QStringList Texts(const QComboBox& C)
{
    QStringList R;
    for (int i = 0; i < C.count(); ++i)
        R << C.itemText(i);
    return R;
}

} // namespace

class TestQxAdoDropList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void fills_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("criteria");
        QTest::addColumn<QString>("orderBy");
        QTest::addColumn<bool>("showKey");
        QTest::addColumn<QString>("sqlTail");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QStringList>("keys");
        for (const char* D : {"sqlite", "postgres"}) {
            const QString Driver = QLatin1String(D);
            QTest::addRow("%s by key", D) << Driver << QString() << QString() << true << " Order By Code"
                                          << QStringList{"1: Piece", "5: Box", "7: Metre"} << QStringList{"1", "5", "7"};
            QTest::addRow("%s criteria", D) << Driver << "  Active = 1 " << QString() << true
                                            << " Where Active = 1 Order By Code"
                                            << QStringList{"1: Piece", "5: Box"} << QStringList{"1", "5"};
            QTest::addRow("%s blank criteria", D) << Driver << "   " << QString() << false << " Order By Code"
                                                  << QStringList{"Piece", "Box", "Metre"} << QStringList{"1", "5", "7"};
            QTest::addRow("%s order by name", D) << Driver << QString() << "Name_e DESC" << false
                                                 << " Order By Name_e DESC"
                                                 << QStringList{"Piece", "Metre", "Carton"} << QStringList{"1", "7", "5"};
        }
    }
    void fills()
    {
        QFETCH(QString, criteria);
        QFETCH(QString, orderBy);
        QFETCH(bool, showKey);
        QFETCH(QString, sqlTail);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeUnits(*Db);
        TQxAdoDropList L;
        Configure(L, Db->Connection(), T);
        L.SetCriteria(criteria);
        L.SetOrderBy(orderBy);
        L.SetShowKey(showKey);
        L.FillDataList();
        QCOMPARE(L.Query()->SQL().join(QString()),
                 QStringLiteral("Select Code, Name_a, Name_e From ") + T + sqlTail);
        QCOMPARE(L.GetCriteria(), criteria.trimmed());
        QTEST(Texts(L), "texts");
        QTEST(L.GetValues(), "keys");
        QVERIFY(!L.Query()->Active());
        L.SetData(QStringLiteral("5"));
        QCOMPARE(L.Data(), QStringLiteral("5"));
    }

    void incompleteConfigurationLeavesEmpty()
    {
        TQxAdoDropList L;
        Configure(L, nullptr, QStringLiteral("Units"));
        L.FillDataList();  // no connection: nothing, no message
        QCOMPARE(L.count(), 0);
    }

    void languageSwitchKeepsKey_data() { KeshTest::AddDriverRows(); }
    void languageSwitchKeepsKey()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeUnits(*Db);
        QWidget Form;
        auto* Plain = new TQxAdoDropList(&Form);
        auto* Lookup = new TQxAdoLookupDropList(&Form);
        Configure(*Plain, Db->Connection(), T);
        Configure(*Lookup, Db->Connection(), T);
        Plain->FillDataList();
        Lookup->FillDataList();
        Plain->SetData(QStringLiteral("5"));
        Lookup->SetData(QStringLiteral("7"));
        // A row renamed meanwhile shows the new name after the switch: the list was read again.
        Db->Exec(QStringLiteral("UPDATE %1 SET Name_a = 'متر مربع' WHERE Code = 7").arg(T));
        Application()->SetBiDiMode(bdRightToLeft);
        QCOMPARE(Plain->Data(), QStringLiteral("5"));
        QCOMPARE(Plain->currentText(), QStringLiteral("5: صندوق"));
        QCOMPARE(Lookup->Data(), QStringLiteral("7"));
        QCOMPARE(Lookup->currentText(), QStringLiteral("7: متر مربع"));
        Application()->SetBiDiMode(bdLeftToRight);
        QCOMPARE(Plain->currentText(), QStringLiteral("5: Box"));
        QCOMPARE(Lookup->currentText(), QStringLiteral("7: Metre"));
    }

    void lookupListFollowsAndWritesField_data() { KeshTest::AddDriverRows(); }
    void lookupListFollowsAndWritesField()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString Units = MakeUnits(*Db);
        const QString Lines = Db->NewTable(QStringLiteral("Line_id INTEGER PRIMARY KEY, Unit INTEGER, Boxed BOOLEAN"));
        Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (1, 5, TRUE), (2, 1, FALSE)").arg(Lines));
        TADOQuery Q;
        Q.SetConnection(Db->Connection());
        Q.SetSQL({QStringLiteral("SELECT Line_id, Unit, Boxed FROM %1 ORDER BY Line_id").arg(Lines)});
        Q.Open();
        TDataSource Source;
        Source.SetDataSet(&Q);
        TQxAdoLookupDropList L;
        Configure(L, Db->Connection(), Units);
        L.SetDataSource(&Source);
        L.SetDataField(QStringLiteral("Unit"));
        // The first show fills the list and selects the field's key.
        QCOMPARE(L.Data(), QStringLiteral("5"));
        Q.Next();
        QCOMPARE(L.Data(), QStringLiteral("1"));
        QCOMPARE(Q.State(), dsBrowse);  // showing a value is no edit
        // The user picks an entry: the field gets its key.
        L.setCurrentIndex(2);
        QCOMPARE(Q.State(), dsEdit);
        QCOMPARE(Q.FieldByName(QStringLiteral("Unit"))->AsInteger(), 7);
        Q.Post();
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Unit FROM %1 WHERE Line_id = 2").arg(Lines)).toInt(), 7);

        // A Boolean field shows as -1/0 and takes the key read as a Boolean.
        const QString Flags = Db->NewTable(QStringLiteral("Code INTEGER, Name_a VARCHAR(9), Name_e VARCHAR(9), X INTEGER"));
        Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (-1, 'نعم', 'Yes', 0), (0, 'لا', 'No', 0)").arg(Flags));
        TQxAdoLookupDropList B;
        Configure(B, Db->Connection(), Flags);
        B.SetDataSource(&Source);
        B.SetDataField(QStringLiteral("Boxed"));
        QCOMPARE(B.Data(), QStringLiteral("0"));
        B.SetData(QStringLiteral("-1"));
        QCOMPARE(Q.FieldByName(QStringLiteral("Boxed"))->AsBoolean(), true);
        Q.Cancel();

        // A data source that goes away is let go.
        Q.First();
        {
            TDataSource Gone;
            Gone.SetDataSet(&Q);
            L.SetDataSource(&Gone);
        }
        QCOMPARE(L.GetDataSource(), nullptr);
        QCOMPARE(L.Field(), nullptr);
    }

    void requeryWithoutConnectionRefuses()
    {
        TQxAdoLookupDropList L;
        L.setObjectName(QStringLiteral("cbUnit"));
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        QVERIFY_THROWS_EXCEPTION(EAbort, L.Requery());
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, QStringLiteral("cbUnit: No connection assigned."));
    }
};

QTEST_MAIN(TestQxAdoDropList)
#include "tst_qx_ado_drop_list.moc"
