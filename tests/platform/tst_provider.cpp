// Tests of TDataSetProvider in-process on SQLite and PostgreSQL: packets, paging, event
// order, Applied, MaxErrors, conflicts under each update mode, savepoints, typed parameters.
#include "db_test_helper.h"
#include "platform/data.h"
#include "platform/remote/provider.h"
#include <QJsonDocument>
#include <QSqlQuery>
#include <QtTest>
#include <cmath>

using namespace Kesh;

namespace {

// A table Id/Name/Qty/Note with the rows (i, 'n<i>', 10 * i, NULL) for i = 1..Count.
QString MakeItems(KeshTest::TTestDatabase& Db, int Count)
{
    const QString T = Db.NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, Name VARCHAR(40) UNIQUE, Qty INTEGER, Note VARCHAR(40)"));
    Db.Connection()->BeginTrans();
    for (int i = 1; i <= Count; ++i)
        Db.Exec(QStringLiteral("INSERT INTO %1 (Id, Name, Qty) VALUES (%2, 'n%2', %3)").arg(T).arg(i).arg(i * 10));
    Db.Connection()->CommitTrans();
    return T;
}

// A module with the provider "Items" on "SELECT Id, Name, Qty, Note FROM T".
struct TFixture
{
    TRemoteDataModule Module;
    TADOQuery* Query;
    TDataSetProvider* Provider;
    TFixture(TADOConnection* C, const QString& T, const QString& Where = QString())
    {
        Query = new TADOQuery(&Module);
        Query->SetConnection(C);
        Query->SetSQL({QStringLiteral("SELECT Id, Name, Qty, Note FROM %1 %2 ORDER BY Id").arg(T, Where)});
        Provider = new TDataSetProvider(&Module);
        Provider->setObjectName(QStringLiteral("Items"));
        Provider->SetDataSet(Query);
    }
    TDataPacket All()
    {
        QJsonValue Owner;
        return Provider->GetRecords(-1, QString(), {}, Owner);
    }
    TApplyResult Apply(const TDataPacket& P, QList<TDeltaRecord> Delta, int MaxErrors = -1)
    {
        QJsonValue Owner;
        return Provider->ApplyUpdates(P.Fields, Delta, MaxErrors, Owner);
    }
};

int QtyOf(KeshTest::TTestDatabase& Db, const QString& T, int Id)
{
    return Db.Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = %2").arg(T).arg(Id)).toInt();
}

TDeltaRecord Modify(const TDataPacket& P, int Row, const QString& Field, const QVariant& Value)
{
    TDeltaRecord R;
    R.UpdateKind = ukModify;
    R.Fields = &P.Fields;
    R.OldValues = R.NewValues = P.Rows[Row];
    R.SetNewValue(Field, Value);
    return R;
}

// An insert of (Id, Name) when Name is given, else a delete of the packet's row Id.
TDeltaRecord Insert(const TDataPacket& P, int Id, const QString& Name)
{
    TDeltaRecord R;
    R.Fields = &P.Fields;
    if (Name.isNull()) {
        R.UpdateKind = ukDelete;
        R.OldValues = P.Rows[Id];
        return R;
    }
    R.UpdateKind = ukInsert;
    R.NewValues.resize(P.Fields.Count());
    R.SetNewValue(QStringLiteral("Id"), Id);
    R.SetNewValue(QStringLiteral("Name"), Name);
    return R;
}
TDeltaRecord Remove(const TDataPacket& P, int Row) { return Insert(P, Row, QString()); }

} // namespace

class TestProvider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void packetsAndPaging_data() { KeshTest::AddDriverRows(); }
    void packetsAndPaging()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 5);
        TFixture F(Db->Connection(), T);
        QJsonValue Owner;
        const TDataPacket Meta = F.Provider->GetRecords(0, QString(), {}, Owner);
        QCOMPARE(Meta.Rows.size(), 0);
        QCOMPARE(Meta.Fields.Count(), 4);
        QCOMPARE(Meta.KeyFields.size(), 1);
        QCOMPARE(Meta.KeyFields[0].toLower(), QStringLiteral("id"));
        // Pages of two rows follow each other through the token; the last has none.
        QList<int> Ids;
        QString Token;
        int Pages = 0;
        do {
            const TDataPacket P = F.Provider->GetRecords(2, Token, {}, Owner);
            for (const TRecordValues& R : P.Rows)
                Ids << R[0].toInt();
            Token = P.NextToken;
            ++Pages;
        } while (!Token.isEmpty() && Pages < 10);
        QCOMPARE(Ids, (QList<int>{1, 2, 3, 4, 5}));
        QCOMPARE(Pages, 3);
        QVERIFY(!F.Query->Active());  // closed again after each call
        QVERIFY_THROWS_EXCEPTION(EProviderRequestError, F.Provider->GetRecords(2, QStringLiteral("x"), {}, Owner));
        // Through JSON and back the packet is the same.
        const TDataPacket All = F.All();
        TDataPacket Back;
        QString Error;
        QVERIFY2(DataPacket::DecodePacket(DataPacket::EncodePacket(All), Back, Error), qPrintable(Error));
        QCOMPARE(Back.Rows, All.Rows);
        QCOMPARE(Back.KeyFields, All.KeyFields);
    }

    // Every page of every command, joined, is the full read; the full read holds the
    // command's rows in its order (the order column's values as a plain query gives them).
    void pagesEqualFullRead_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("orderColumn");
        QTest::addColumn<bool>("keyset");
        const QList<std::tuple<const char*, QString, QString, bool>> Rows = {
            {"no order: the key's", QStringLiteral("SELECT * FROM %1"), QString(), true},
            {"ties and NULLs ascending", QStringLiteral("SELECT * FROM %1 ORDER BY Grp"), QStringLiteral("Grp"), true},
            {"descending, then text with NULLs", QStringLiteral("SELECT * FROM %1 ORDER BY Grp DESC, Name"), QStringLiteral("Grp"), true},
            {"NULLS FIRST said, by position", QStringLiteral("SELECT Id, Name, Grp FROM %1 ORDER BY 2 DESC NULLS FIRST"), QStringLiteral("Name"), true},
            {"qualified name, parameter", QStringLiteral("SELECT * FROM %1 t WHERE Id > :Low ORDER BY t.Grp"), QStringLiteral("Grp"), true},
            {"keywords in a literal and a comment", QStringLiteral("SELECT Id, Name, 'ORDER BY (' AS Tag FROM %1 /* ORDER BY ) */ ORDER BY Name DESC"), QStringLiteral("Name"), true},
            {"expression order: offset", QStringLiteral("SELECT Id, Grp FROM %1 ORDER BY Id * -1"), QStringLiteral("Id"), false},
            {"column not in the result: offset", QStringLiteral("SELECT Name FROM %1 ORDER BY Id"), QStringLiteral("Name"), false},
        };
        for (const char* Driver : {"sqlite", "postgres"})
            for (const auto& [Name, Command, Order, Keyset] : Rows)
                QTest::addRow("%s: %s", Driver, Name) << QString::fromLatin1(Driver) << Command << Order << Keyset;
    }
    void pagesEqualFullRead()
    {
        KESH_OPEN_TEST_DB(Db);
        QFETCH(QString, command);
        QFETCH(QString, orderColumn);
        QFETCH(bool, keyset);
        const QString T = Db->NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, Name VARCHAR(40), Grp INTEGER"));
        Db->Connection()->BeginTrans();
        for (int i = 1; i <= 23; ++i)  // Grp: ties of three and NULLs; Name: ties, NULLs, Arabic
            Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (%2, %3, %4)").arg(T).arg(i)
                         .arg(i % 4 == 0 ? QStringLiteral("NULL") : QStringLiteral("'%1'").arg(i % 3 ? QStringLiteral("س%1").arg(i % 5) : QStringLiteral("b")))
                         .arg(i % 5 == 0 ? QStringLiteral("NULL") : QString::number(i / 3)));
        Db->Connection()->CommitTrans();
        TRemoteDataModule Module;
        auto* Query = new TADOQuery(&Module);
        Query->SetConnection(Db->Connection());
        Query->SetSQL({command.arg(T)});
        QList<TPacketParam> Params;
        if (Query->Parameters()->Count())
            Params << TPacketParam{QStringLiteral("Low"), ftInteger, 2};
        auto* Provider = new TDataSetProvider(&Module);
        Provider->SetDataSet(Query);
        QJsonValue Owner;
        const TDataPacket Full = Provider->GetRecords(-1, QString(), Params, Owner);
        QCOMPARE(Full.Rows.size(), Params.isEmpty() ? 23 : 21);
        for (int PageSize : {1, 4, 7, 21, 50}) {
            QList<TRecordValues> Joined;
            QString Token;
            for (int Pages = 0; Pages < 30; ++Pages) {
                const TDataPacket P = Provider->GetRecords(PageSize, Token, Params, Owner);
                QVERIFY(P.Rows.size() <= PageSize);
                Joined += P.Rows;
                Token = P.NextToken;
                if (Token.isEmpty())
                    break;
                QCOMPARE(Token.startsWith(QLatin1Char('k')), keyset);
            }
            QVERIFY(Token.isEmpty());
            QCOMPARE(Joined, Full.Rows);
        }
        // The command's own order holds in the full read.
        const int Column = Full.Fields.IndexOf(orderColumn);
        if (Column < 0)
            return;
        QSqlQuery Plain(Db->Connection()->Database());
        QVERIFY(Plain.prepare(command.arg(T)));
        if (!Params.isEmpty())
            Plain.bindValue(QStringLiteral(":Low"), 2);
        QVERIFY(Plain.exec());
        QVariantList Expected, Got;
        while (Plain.next())
            Expected << (Plain.isNull(Column) ? QVariant() : QVariant(Plain.value(Column).toString()));
        for (const TRecordValues& R : Full.Rows)
            Got << (R[Column].isNull() ? QVariant() : QVariant(R[Column].toString()));
        if (orderColumn == QLatin1String("Name") && !keyset) {  // no order of its own: the same rows
            std::sort(Expected.begin(), Expected.end(), [](auto& A, auto& B) { return A.toString() < B.toString(); });
            std::sort(Got.begin(), Got.end(), [](auto& A, auto& B) { return A.toString() < B.toString(); });
        }
        QCOMPARE(Got, Expected);
    }

    // A token the server did not write is refused as a bad request, before any SQL runs.
    void badTokens_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("token");
        auto Keyset = [](const QByteArray& Json) {
            return QStringLiteral("k") + QString::fromLatin1(Json.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
        };
        const QList<std::pair<const char*, QString>> Rows = {
            {"negative offset", QStringLiteral("-4")},
            {"not base64", QStringLiteral("k!!")},
            {"empty keyset", Keyset("[]")},
            {"nested", Keyset("[[[[1]]]]")},
            {"two values for one key", Keyset("[1,2]")},
            {"text for an integer key", Keyset("[\"1; DROP TABLE x\"]")},
            {"object", Keyset("{\"a\":1}")},
            {"truncated JSON", Keyset("[1")},
        };
        for (const char* Driver : {"sqlite", "postgres"})
            for (const auto& [Name, Token] : Rows)
                QTest::addRow("%s: %s", Driver, Name) << QString::fromLatin1(Driver) << Token;
    }
    void badTokens()
    {
        KESH_OPEN_TEST_DB(Db);
        QFETCH(QString, token);
        const QString T = MakeItems(*Db, 5);
        TFixture F(Db->Connection(), T);
        QJsonValue Owner;
        QVERIFY_THROWS_EXCEPTION(EProviderRequestError, F.Provider->GetRecords(2, token, {}, Owner));
        QCOMPARE(F.All().Rows.size(), 5);  // and the provider serves on
        // A keyset token for a command that cannot be wrapped is refused too.
        TDataPacket First = F.Provider->GetRecords(2, QString(), {}, Owner);
        QVERIFY(First.NextToken.startsWith(QLatin1Char('k')));
        F.Query->SetSQL({QStringLiteral("SELECT Id, Name FROM %1 ORDER BY Id LIMIT 3").arg(T)});
        QVERIFY_THROWS_EXCEPTION(EProviderRequestError, F.Provider->GetRecords(2, First.NextToken, {}, Owner));
    }

    void eventOrder_data() { KeshTest::AddDriverRows(); }
    void eventOrder()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 3);
        TFixture F(Db->Connection(), T);
        QStringList Log;
        TDataSetProvider* P = F.Provider;
        auto Note = [&Log](const char* Name) { return [&Log, Name](QObject*, QJsonValue&) { Log << QLatin1String(Name); }; };
        for (auto [Event, Name] : {std::pair{&P->BeforeGetRecords, "BeforeGetRecords"}, {&P->AfterGetRecords, "AfterGetRecords"},
                                   {&P->BeforeApplyUpdates, "BeforeApplyUpdates"}, {&P->AfterApplyUpdates, "AfterApplyUpdates"},
                                   {&P->BeforeExecute, "BeforeExecute"}, {&P->AfterExecute, "AfterExecute"},
                                   {&P->BeforeGetParams, "BeforeGetParams"}, {&P->AfterGetParams, "AfterGetParams"},
                                   {&P->BeforeRowRequest, "BeforeRowRequest"}, {&P->AfterRowRequest, "AfterRowRequest"}})
            *Event = Note(Name);
        P->OnGetData = [&](QObject*, TDataPacket&) { Log << QStringLiteral("OnGetData"); };
        P->OnUpdateData = [&](QObject*, QList<TDeltaRecord>&) { Log << QStringLiteral("OnUpdateData"); };
        P->BeforeUpdateRecord = [&](QObject*, TDataSet*, TDeltaRecord&, TUpdateKind K, bool&) { Log << QStringLiteral("BeforeUpdateRecord%1").arg(K); };
        P->AfterUpdateRecord = [&](QObject*, TDataSet*, TDeltaRecord&, TUpdateKind K) { Log << QStringLiteral("AfterUpdateRecord%1").arg(K); };
        P->OnUpdateError = [&](QObject*, TDeltaRecord&, EUpdateError&, TUpdateKind K, TResolverResponse&) { Log << QStringLiteral("OnUpdateError%1").arg(K); };
        P->OnDataRequest = [&](QObject* Sender, const QJsonValue& In) {
            Log << QStringLiteral("OnDataRequest");
            return QJsonValue(Sender->objectName() + In.toString());
        };

        const TDataPacket All = F.All();
        QCOMPARE(Log, (QStringList{"BeforeGetRecords", "OnGetData", "AfterGetRecords"}));
        Log.clear();
        QList<TDeltaRecord> Delta{Modify(All, 0, QStringLiteral("Qty"), 11), Insert(All, 1, QStringLiteral("dup")), Remove(All, 2)};
        QJsonValue Owner;
        const TApplyResult R = P->ApplyUpdates(All.Fields, Delta, -1, Owner);
        QCOMPARE(R.ErrorCount(), 1);
        QCOMPARE(Log, (QStringList{"BeforeApplyUpdates", "OnUpdateData", "BeforeUpdateRecord0", "AfterUpdateRecord0",
                                   "BeforeUpdateRecord1", "OnUpdateError1", "BeforeUpdateRecord2", "AfterUpdateRecord2",
                                   "AfterApplyUpdates"}));
        Log.clear();
        P->GetParams(Owner);
        TRecordValues Current;
        QVERIFY(P->RowRequest(All.Fields, All.Rows[0], Current, Owner));
        QCOMPARE(Current[2].toInt(), 11);
        P->Execute({}, Owner);  // the SELECT runs as a command
        QCOMPARE(P->DataRequest(QJsonValue(QStringLiteral("!"))).toString(), QStringLiteral("Items!"));
        QCOMPARE(Log, (QStringList{"BeforeGetParams", "AfterGetParams", "BeforeRowRequest", "AfterRowRequest",
                                   "BeforeExecute", "AfterExecute", "OnDataRequest"}));
    }

    // Applied set by BeforeUpdateRecord: the handler wrote the row itself.
    void applied_data() { KeshTest::AddDriverRows(); }
    void applied()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 2);
        TFixture F(Db->Connection(), T);
        const TDataPacket All = F.All();
        F.Provider->BeforeUpdateRecord = [&](QObject*, TDataSet*, TDeltaRecord& Row, TUpdateKind, bool& Applied) {
            Applied = Row.OldValue(QStringLiteral("Id")).toInt() == 1;
        };
        QCOMPARE(F.Apply(All, {Modify(All, 0, QStringLiteral("Qty"), 99), Modify(All, 1, QStringLiteral("Qty"), 98)}, 0).ErrorCount(), 0);
        QCOMPARE(QtyOf(*Db, T, 1), 10);
        QCOMPARE(QtyOf(*Db, T, 2), 98);
    }

    // Rows 2 and 4 of five fail (a duplicate name); what is committed depends on MaxErrors.
    void maxErrors_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<int>("maxErrors");
        QTest::addColumn<int>("errors");
        QTest::addColumn<bool>("committed");
        QTest::addColumn<int>("sum");  // of Qty afterwards
        const int Untouched = 10 + 20 + 30 + 40 + 50;
        const int Good = 1 + 20 + 3 + 40 + 5;
        for (const char* Driver : {"sqlite", "postgres"}) {
            QTest::addRow("%s: 0 rolls back at the first error", Driver) << QString::fromLatin1(Driver) << 0 << 1 << false << Untouched;
            QTest::addRow("%s: 1 rolls back at the second", Driver) << QString::fromLatin1(Driver) << 1 << 2 << false << Untouched;
            QTest::addRow("%s: 2 allows both", Driver) << QString::fromLatin1(Driver) << 2 << 2 << true << Good;
            QTest::addRow("%s: -1 applies what it can", Driver) << QString::fromLatin1(Driver) << -1 << 2 << true << Good;
        }
    }
    void maxErrors()
    {
        QFETCH(int, maxErrors);
        QFETCH(int, errors);
        QFETCH(bool, committed);
        QFETCH(int, sum);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 5);
        TFixture F(Db->Connection(), T);
        const TDataPacket All = F.All();
        QList<TDeltaRecord> Delta;
        for (int i = 0; i < 5; ++i) {
            TDeltaRecord R = Modify(All, i, QStringLiteral("Qty"), i + 1);
            if (i == 1 || i == 3)
                R.SetNewValue(QStringLiteral("Name"), QStringLiteral("n1"));  // violates UNIQUE
            Delta << R;
        }
        const TApplyResult R = F.Apply(All, Delta, maxErrors);
        QCOMPARE(R.ErrorCount(), errors);
        QCOMPARE(R.Committed, committed);
        QCOMPARE(R.Errors[0].Index, 1);
        QVERIFY(!R.Errors[0].Message.isEmpty());
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT SUM(Qty) FROM %1").arg(T)).toInt(), sum);
        QVERIFY(!Db->Connection()->InTransaction());
    }

    // Another user changed the row meanwhile: which edits conflict under each mode.
    void updateModes_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("otherColumn");  // what the other user changed
        QTest::addColumn<QString>("ourColumn");
        QTest::addColumn<bool>("conflict");
        for (const char* Driver : {"sqlite", "postgres"}) {
            const QString D = QString::fromLatin1(Driver);
            QTest::addRow("%s: where-all, other column", Driver) << D << int(upWhereAll) << "Note" << "Qty" << true;
            QTest::addRow("%s: where-changed, other column", Driver) << D << int(upWhereChanged) << "Note" << "Qty" << false;
            QTest::addRow("%s: where-changed, same column", Driver) << D << int(upWhereChanged) << "Qty" << "Qty" << true;
            QTest::addRow("%s: where-key-only, same column", Driver) << D << int(upWhereKeyOnly) << "Qty" << "Qty" << false;
            QTest::addRow("%s: where-key-only, key changed", Driver) << D << int(upWhereKeyOnly) << "Id" << "Qty" << true;
        }
    }
    void updateModes()
    {
        QFETCH(int, mode);
        QFETCH(QString, otherColumn);
        QFETCH(QString, ourColumn);
        QFETCH(bool, conflict);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 2);
        TFixture F(Db->Connection(), T);
        F.Provider->SetUpdateMode(TUpdateMode(mode));
        const TDataPacket All = F.All();
        const QString Other = otherColumn == QLatin1String("Note") ? QStringLiteral("'theirs'")
                              : otherColumn == QLatin1String("Id") ? QStringLiteral("7") : QStringLiteral("77");
        Db->Exec(QStringLiteral("UPDATE %1 SET %2 = %3 WHERE Id = 1").arg(T, otherColumn, Other));
        const TApplyResult R = F.Apply(All, {Modify(All, 0, ourColumn, 5)});
        QCOMPARE(R.ErrorCount(), conflict ? 1 : 0);
        if (!conflict)
            return;
        QCOMPARE(R.Errors[0].Message, QStringLiteral("Record not found or changed by another user"));
        // The error carries the row as the database holds it now (none when the key moved).
        QCOMPARE(R.Errors[0].HasCurrentValues, otherColumn != QLatin1String("Id"));
        if (otherColumn == QLatin1String("Note"))
            QCOMPARE(R.Errors[0].CurrentValues[3].toString(), QStringLiteral("theirs"));
        else if (otherColumn == QLatin1String("Qty"))
            QCOMPARE(R.Errors[0].CurrentValues[2].toInt(), 77);
    }

    // A null original matches with IS NULL, not "= NULL".
    void nullOriginals_data() { KeshTest::AddDriverRows(); }
    void nullOriginals()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 1);
        TFixture F(Db->Connection(), T);
        const TDataPacket All = F.All();
        QVERIFY(All.Rows[0][3].isNull());
        QList<TDeltaRecord> Delta{Modify(All, 0, QStringLiteral("Note"), QStringLiteral("set")), Remove(All, 0)};
        Delta[1].OldValues = Delta[0].NewValues;
        QCOMPARE(F.Apply(All, Delta, 0).ErrorCount(), 0);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), 0);
    }

    // The error handler's responses: ignore, abort, apply corrected values, merge.
    void updateErrorResponse_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<int>("response");
        QTest::addColumn<int>("errors");
        QTest::addColumn<bool>("committed");
        QTest::addColumn<int>("qty1");
        for (const char* Driver : {"sqlite", "postgres"}) {
            const QString D = QString::fromLatin1(Driver);
            QTest::addRow("%s: skip", Driver) << D << int(rrSkip) << 1 << true << 77;
            QTest::addRow("%s: ignore", Driver) << D << int(rrIgnore) << 0 << true << 77;
            QTest::addRow("%s: abort", Driver) << D << int(rrAbort) << 1 << false << 77;
            QTest::addRow("%s: merge", Driver) << D << int(rrMerge) << 0 << true << 5;
            QTest::addRow("%s: apply", Driver) << D << int(rrApply) << 0 << true << 6;
        }
    }
    void updateErrorResponse()
    {
        QFETCH(int, response);
        QFETCH(int, errors);
        QFETCH(bool, committed);
        QFETCH(int, qty1);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 2);
        TFixture F(Db->Connection(), T);
        const TDataPacket All = F.All();
        Db->Exec(QStringLiteral("UPDATE %1 SET Qty = 77 WHERE Id = 1").arg(T));
        F.Provider->OnUpdateError = [&](QObject*, TDeltaRecord& Row, EUpdateError& E, TUpdateKind, TResolverResponse& R) {
            R = TResolverResponse(response);
            if (R == rrApply) {  // take the database's row as the original and write 6
                Row.OldValues = E.CurrentValues;
                Row.SetNewValue(QStringLiteral("Qty"), 6);
            }
        };
        const TApplyResult R = F.Apply(All, {Modify(All, 0, QStringLiteral("Qty"), 5), Modify(All, 1, QStringLiteral("Qty"), 8)});
        QCOMPARE(R.ErrorCount(), errors);
        QCOMPARE(R.Committed, committed);
        QCOMPARE(QtyOf(*Db, T, 1), qty1);
        QCOMPARE(QtyOf(*Db, T, 2), committed ? 8 : 20);
    }

    // Client values reach the database only bound: hostile text is stored and found as is.
    void hostileValues_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("value");
        const QStringList Corpus{QStringLiteral("O'Brien"), QStringLiteral("'; DROP TABLE x; --"), QStringLiteral("a -- b"),
                                 QStringLiteral("/* c */"), QStringLiteral(":P2"), QStringLiteral("back\\slash\\"),
                                 QStringLiteral("nul") + QChar(0) + QStringLiteral("after"),
                                 QStringLiteral("\u200F\u0645\u062D\u0645\u062F\u200E 'x'")};
        for (const char* Driver : {"sqlite", "postgres"})
            for (int i = 0; i < Corpus.size(); ++i)
                QTest::addRow("%s: %d", Driver, i) << QString::fromLatin1(Driver) << Corpus[i];
    }
    void hostileValues()
    {
        QFETCH(QString, value);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 1);
        TFixture F(Db->Connection(), T, QStringLiteral("WHERE Name = :Name OR Note = :Name"));
        TDataPacket All = F.All();
        QCOMPARE(All.Rows.size(), 0);
        QList<TDeltaRecord> Delta{Insert(All, 2, value)};
        Delta[0].SetNewValue(QStringLiteral("Note"), value);
        QJsonValue Owner;
        const TApplyResult R = F.Provider->ApplyUpdates(All.Fields, Delta, 0, Owner);
        if (Db->IsPostgres() && value.contains(QChar(0))) {
            // PostgreSQL text cannot hold NUL: the row is refused with the server's message.
            QCOMPARE(R.ErrorCount(), 1);
            QVERIFY(!R.Errors[0].Message.isEmpty());
            QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), 1);
            return;
        }
        QVERIFY2(R.ErrorCount() == 0, R.ErrorCount() ? qPrintable(R.Errors[0].Message) : "");
        const TDataPacket Found = F.Provider->GetRecords(-1, QString(), {{QStringLiteral("Name"), ftWideString, value}}, Owner);
        QCOMPARE(Found.Rows.size(), 1);
        QCOMPARE(Found.Rows[0][1].toString(), value);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), 2);
        QVERIFY_THROWS_EXCEPTION(EProviderRequestError,
                                 F.Provider->GetRecords(-1, QString(), {{QStringLiteral("Nope"), ftInteger, 1}}, Owner));
    }

    // Delta columns must be the provider's columns, with the provider's types.
    void deltaChecks_data() { KeshTest::AddDriverRows(); }
    void deltaChecks()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 1);
        TFixture F(Db->Connection(), T);
        const TDataPacket All = F.All();
        TFieldDefs Forged = All.Fields;
        Forged[1].Name = QStringLiteral("Secret");
        QList<TDeltaRecord> Delta{Modify(All, 0, QStringLiteral("Qty"), 1)};
        QJsonValue Owner;
        QVERIFY_THROWS_EXCEPTION(EProviderRequestError, F.Provider->ApplyUpdates(Forged, Delta, -1, Owner));
        TFieldDefs Retyped = All.Fields;
        Retyped[2].DataType = ftWideString;
        QVERIFY_THROWS_EXCEPTION(EProviderRequestError, F.Provider->ApplyUpdates(Retyped, Delta, -1, Owner));
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1").arg(T)).toInt(), 10);
    }

    // Values of every kind through JSON and back; bad JSON values are refused.
    void values_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("json");
        QTest::newRow("large integer exact") << int(ftLargeint) << QVariant(qlonglong(9007199254740993LL)) << "\"9007199254740993\"";
        QTest::newRow("decimal as text") << int(ftBCD) << QVariant(1250.5) << "\"1250.5\"";
        QTest::newRow("date ISO") << int(ftDate) << QVariant(QDate(2024, 2, 29)) << "\"2024-02-29\"";
        QTest::newRow("time ISO") << int(ftTime) << QVariant(QTime(23, 59, 58, 7)) << "\"23:59:58.007\"";
        QTest::newRow("date-time ISO") << int(ftDateTime) << QVariant(QDateTime(QDate(2001, 1, 2), QTime(3, 4, 5))) << "\"2001-01-02T03:04:05.000\"";
        QTest::newRow("blob base64") << int(ftBlob) << QVariant(QByteArray("\x00\xff\x01", 3)) << "\"AP8B\"";
        QTest::newRow("boolean") << int(ftBoolean) << QVariant(true) << "true";
        QTest::newRow("integer") << int(ftInteger) << QVariant(-7) << "-7";
        QTest::newRow("null integer") << int(ftInteger) << QVariant(QMetaType::fromType<int>()) << "null";
        QTest::newRow("Arabic text") << int(ftWideString) << QVariant(QStringLiteral("مرحبا")) << "\"مرحبا\"";
        QTest::newRow("quotes, backslash, controls") << int(ftWideString) << QVariant(QStringLiteral("a\"b\\c\n\t\x01"))
                                                     << "\"a\\\"b\\\\c\\n\\t\\u0001\"";
        QTest::newRow("NUL and direction marks") << int(ftWideString) << QVariant(QString(QStringLiteral("x\u200Fس\u202E")) + QChar(0))
                                                 << "\"x\u200Fس\u202E\\u0000\"";
        QTest::newRow("float shortest") << int(ftFloat) << QVariant(0.1) << "0.1";
        QTest::newRow("float large") << int(ftFloat) << QVariant(-1.5e300) << "-1.5e+300";
        QTest::newRow("float NaN as text") << int(ftFloat) << QVariant(std::nan("")) << "\"NaN\"";
        QTest::newRow("null text") << int(ftWideString) << QVariant(QMetaType::fromType<QString>()) << "null";
    }
    void values()
    {
        QFETCH(int, type);
        QFETCH(QVariant, value);
        QFETCH(QString, json);
        const QJsonValue J = DataPacket::EncodeValue(value, TFieldType(type));
        QCOMPARE(QString::fromUtf8(QJsonDocument(QJsonArray{J}).toJson(QJsonDocument::Compact)), QLatin1Char('[') + json + QLatin1Char(']'));
        QVariant Back;
        QVERIFY(DataPacket::DecodeValue(J, TFieldType(type), Back));
        QCOMPARE(Back.isNull(), value.isNull());
        if (!value.isNull() && !(Back.metaType().id() == QMetaType::Double && std::isnan(Back.toDouble())))
            QCOMPARE(Back, value);
        // The server's written packet reads as the one the document gives.
        TDataPacket P;
        TFieldDef F;
        F.Name = QStringLiteral("V\"1");
        F.DataType = TFieldType(type);
        P.Fields.Append(F);
        P.Rows = {{value}, {value}};
        P.NextToken = QStringLiteral("k\"\\");
        QByteArray Written("junk before");
        DataPacket::WritePacket(P, Written);
        QVERIFY(Written.startsWith("junk before"));
        QJsonParseError Error;
        const QJsonDocument Doc = QJsonDocument::fromJson(Written.mid(11), &Error);
        QCOMPARE(Error.error, QJsonParseError::NoError);
        QCOMPARE(Doc.object(), DataPacket::EncodePacket(P));
    }

    void badValues_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("json");
        QTest::newRow("integer overflow") << int(ftInteger) << "4294967296";
        QTest::newRow("fraction for integer") << int(ftInteger) << "1.5";
        QTest::newRow("text for integer") << int(ftInteger) << "\"1; DROP\"";
        QTest::newRow("large integer text") << int(ftLargeint) << "\"12abc\"";
        QTest::newRow("decimal with SQL") << int(ftBCD) << "\"1 OR 1=1\"";
        QTest::newRow("bad date") << int(ftDate) << "\"2023-02-29\"";
        QTest::newRow("bad base64") << int(ftBlob) << "\"@@\"";
        QTest::newRow("number for text") << int(ftWideString) << "5";
        QTest::newRow("text for boolean") << int(ftBoolean) << "\"true\"";
    }
    void badValues()
    {
        QFETCH(int, type);
        QFETCH(QString, json);
        const QJsonValue J = QJsonDocument::fromJson((QLatin1Char('[') + json + QLatin1Char(']')).toUtf8()).array().at(0);
        QVariant Back;
        QVERIFY(!DataPacket::DecodeValue(J, TFieldType(type), Back));
    }

    void parsing_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("ok");
        QTest::newRow("object") << QByteArray("{\"a\":[1,{\"b\":2}]}") << true;
        QTest::newRow("brackets inside strings do not nest") << QByteArray("{\"a\":\"[[[[[[[[[[[[\\\"[[[[\"}") << true;
        QTest::newRow("too deep") << (QByteArray("{\"a\":") + QByteArray(40, '[') + QByteArray(40, ']') + "}") << false;
        QTest::newRow("malformed") << QByteArray("{\"a\":") << false;
        QTest::newRow("array is not an object") << QByteArray("[1]") << false;
    }
    void parsing()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, ok);
        QJsonObject O;
        QString Error;
        QCOMPARE(DataPacket::ParseObject(text, 32, O, Error), ok);
        QCOMPARE(Error.isEmpty(), ok);
    }
};

QTEST_GUILESS_MAIN(TestProvider)
#include "tst_provider.moc"
