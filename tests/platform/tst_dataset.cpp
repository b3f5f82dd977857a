// Tests of TDataSet's cursor, states, events, refusals, links and look-ups, on the
// in-memory TClientDataSet and on a generated dataset that counts its fetches.
#include "platform/data.h"
#include "platform/exceptions.h"
#include "platform/rtl/numbers.h"
#include <QtTest>
#include <memory>

using namespace Kesh;

namespace {

// Id, Name, Amount with the rows (i, Names[i-1], i * 1.5).
std::unique_ptr<TClientDataSet> MakeNames(const QStringList& Names)
{
    auto Ds = std::make_unique<TClientDataSet>();
    Ds->FieldDefs().Add(QStringLiteral("Id"), ftInteger);
    Ds->FieldDefs().Add(QStringLiteral("Name"), ftString, 30);
    Ds->FieldDefs().Add(QStringLiteral("Amount"), ftFloat);
    Ds->CreateDataSet();
    for (int i = 0; i < Names.size(); ++i) {
        Ds->Append();
        Ds->FieldByName(QStringLiteral("Id"))->SetAsInteger(i + 1);
        Ds->FieldByName(QStringLiteral("Name"))->SetAsString(Names[i]);
        Ds->FieldByName(QStringLiteral("Amount"))->SetAsFloat((i + 1) * 1.5);
        Ds->Post();
    }
    Ds->MergeChangeLog();
    Ds->First();
    return Ds;
}

std::unique_ptr<TClientDataSet> MakeRows(int Count)
{
    QStringList Names;
    for (int i = 1; i <= Count; ++i)
        Names << QStringLiteral("N%1").arg(i);
    return MakeNames(Names);
}

QString Name(TDataSet* Ds) { return Ds->FieldByName(QStringLiteral("Name"))->AsString(); }

class TCountingLink : public TDataLink
{
public:
    int NActive = 0, NChanged = 0, NScrolled = 0, NEditing = 0, NRecord = 0, NUpdates = 0, NChecks = 0;
    int LastDistance = 0;
    int Total() const { return NActive + NChanged + NScrolled + NEditing + NRecord + NUpdates + NChecks; }

protected:
    void ActiveChanged() override { ++NActive; }
    void DataSetChanged() override { ++NChanged; }
    void DataSetScrolled(int Distance) override
    {
        ++NScrolled;
        LastDistance = Distance;
    }
    void EditingChanged() override { ++NEditing; }
    void RecordChanged(TField*) override { ++NRecord; }
    void UpdateData() override { ++NUpdates; }
    void CheckBrowseMode() override { ++NChecks; }
};

// A dataset refusing what its flags forbid, as the business datasets do.
class TGuardedDataSet : public TClientDataSet
{
public:
    bool AllowInsert = true, AllowEdit = true, AllowDelete = true;

protected:
    void DoBeforeInsert() override
    {
        if (!AllowInsert)
            Abort();
        TClientDataSet::DoBeforeInsert();
    }
    void DoBeforeEdit() override
    {
        if (!AllowEdit)
            Abort();
        TClientDataSet::DoBeforeEdit();
    }
    void DoBeforeDelete() override
    {
        if (!AllowDelete)
            Abort();
        TClientDataSet::DoBeforeDelete();
    }
};

// Rows generated on demand: N = 0..Total-1, counting how often rows are asked for.
class TCountingDataSet : public TDataSet
{
public:
    int Total = 1000;
    int Fetches = 0;
    int Produced = 0;

protected:
    void InternalOpen() override
    {
        FieldDefsRef().Clear();
        FieldDefsRef().Add(QStringLiteral("N"), ftInteger);
        Produced = 0;
    }
    int InternalFetch(int MaxRows) override
    {
        ++Fetches;
        int Got = 0;
        while (Got < MaxRows && Produced < Total) {
            AppendRow()[0] = Produced++;
            ++Got;
        }
        return Got;
    }
};

// One column whose values change type from row to row, as SQLite allows.
class TMixedDataSet : public TDataSet
{
public:
    static QVariant ValueOf(int N)
    {
        switch (N % 7) {
        case 0: return N;
        case 1: return QStringLiteral("t%1").arg(N);
        case 2: return QVariant(QMetaType::fromType<QString>());  // a null
        case 3: return N * 0.5;
        case 4: return QString(QLatin1String(""));  // empty, not null
        case 5: return QVariant::fromValue<qlonglong>(qlonglong(N) << 33);
        default: return QDate(2024, 1, 1).addDays(N);
        }
    }

protected:
    void InternalOpen() override
    {
        FieldDefsRef().Clear();
        FieldDefsRef().Add(QStringLiteral("V"), ftVariant);
        FieldDefsRef().Add(QStringLiteral("S"), ftWideString);
        for (int N = 0; N < 600; ++N) {
            QVariant* Row = AppendRow();
            Row[0] = ValueOf(N);
            Row[1] = N < 300 ? QVariant(QStringLiteral("s%1").arg(N)) : QVariant(N);  // text, then numbers
        }
    }
    bool CanModify() const override { return true; }
};

} // namespace

class TestDataSet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void openCloseEventsAndFields();
    void navigation_data();
    void navigation();
    void editPostCancel();
    void insertAndAppend();
    void editOnEmptyInserts();
    void refusalLeavesDataSetUnchanged_data();
    void refusalLeavesDataSetUnchanged();
    void hookRefusals();
    void writingOutsideEditRaises();
    void fieldLookup();
    void navigationPostsOrCancels();
    void deleteRows();
    void requiredField();
    void bookmarks();
    void locate_data();
    void locate();
    void disableControls();
    void linkNotifications();
    void fieldDataLinkFlushesOnPost();
    void bufferWindow();
    void persistentFields();
    void lazyFetching();
    void changeLog();
    void mixedValuesInOneColumn();
};

void TestDataSet::openCloseEventsAndFields()
{
    TClientDataSet Ds;
    Ds.FieldDefs().Add(QStringLiteral("Id"), ftInteger);
    Ds.FieldDefs().Add(QStringLiteral("Name"), ftWideString, 40);
    QStringList Log;
    Ds.BeforeOpen = [&](TDataSet*) { Log << QStringLiteral("BeforeOpen"); };
    Ds.AfterOpen = [&](TDataSet* D) { Log << QStringLiteral("AfterOpen:%1").arg(D->State()); };
    Ds.AfterScroll = [&](TDataSet*) { Log << QStringLiteral("AfterScroll"); };
    Ds.BeforeClose = [&](TDataSet*) { Log << QStringLiteral("BeforeClose"); };
    Ds.AfterClose = [&](TDataSet* D) { Log << QStringLiteral("AfterClose:%1").arg(D->State()); };
    QVERIFY_THROWS_EXCEPTION(EDatabaseError, Ds.Open());  // no data packet without CreateDataSet
    QVERIFY(!Ds.Active());
    Log.clear();
    Ds.CreateDataSet();
    // An empty dataset opens without a scroll.
    QCOMPARE(Log, QStringList({QStringLiteral("BeforeOpen"), QStringLiteral("AfterOpen:1")}));
    QCOMPARE(Ds.State(), dsBrowse);
    QVERIFY(Ds.IsEmpty() && Ds.Bof() && Ds.Eof());
    QCOMPARE(Ds.RecNo(), 0);
    QCOMPARE(Ds.FieldCount(), 2);
    QVERIFY(qobject_cast<TIntegerField*>(Ds.Fields()[0]));
    QVERIFY(qobject_cast<TWideStringField*>(Ds.Fields()[1]));
    QCOMPARE(Ds.Fields()[1]->Size(), 40);
    QCOMPARE(Ds.Fields()[1]->Index(), 1);
    QCOMPARE(Ds.Fields()[1]->FieldNo(), 2);
    QPointer<TField> Dynamic = Ds.Fields()[0];
    Log.clear();
    Ds.Close();
    QCOMPARE(Log, QStringList({QStringLiteral("BeforeClose"), QStringLiteral("AfterClose:0")}));
    QVERIFY(Dynamic.isNull());  // dynamic fields go with the rows
    QCOMPARE(Ds.FieldCount(), 0);
}

void TestDataSet::navigation_data()
{
    QTest::addColumn<QString>("ops");
    QTest::addColumn<int>("recNo");
    QTest::addColumn<bool>("bof");
    QTest::addColumn<bool>("eof");
    QTest::newRow("open") << "" << 1 << true << false;
    QTest::newRow("next") << "N" << 2 << false << false;
    QTest::newRow("prior at first") << "P" << 1 << true << false;
    QTest::newRow("last") << "L" << 5 << false << true;
    QTest::newRow("next at last") << "LN" << 5 << false << true;
    QTest::newRow("walk past end") << "NNNNN" << 5 << false << true;
    QTest::newRow("last then prior") << "LP" << 4 << false << false;
    QTest::newRow("first after last") << "LF" << 1 << true << false;
    QTest::newRow("moveby 3") << "3" << 4 << false << false;
    QTest::newRow("moveby 9 clamps") << "9" << 5 << false << true;
    QTest::newRow("moveby -9 clamps") << "L-" << 1 << true << false;
}

void TestDataSet::navigation()
{
    QFETCH(QString, ops);
    auto Ds = MakeRows(5);
    for (QChar Op : ops) {
        switch (Op.toLatin1()) {
        case 'N': Ds->Next(); break;
        case 'P': Ds->Prior(); break;
        case 'F': Ds->First(); break;
        case 'L': Ds->Last(); break;
        case '3': QCOMPARE(Ds->MoveBy(3), 3); break;
        case '9': QCOMPARE(Ds->MoveBy(9), 4); break;
        case '-': QCOMPARE(Ds->MoveBy(-9), -4); break;
        }
    }
    QTEST(Ds->RecNo(), "recNo");
    QTEST(Ds->Bof(), "bof");
    QTEST(Ds->Eof(), "eof");
    QCOMPARE(Name(Ds.get()), QStringLiteral("N%1").arg(Ds->RecNo()));
}

void TestDataSet::editPostCancel()
{
    auto Ds = MakeRows(3);
    Ds->Next();
    QStringList Log;
    Ds->BeforeEdit = [&](TDataSet*) { Log << QStringLiteral("BeforeEdit"); };
    Ds->AfterEdit = [&](TDataSet*) { Log << QStringLiteral("AfterEdit"); };
    Ds->BeforePost = [&](TDataSet*) { Log << QStringLiteral("BeforePost"); };
    Ds->AfterPost = [&](TDataSet*) { Log << QStringLiteral("AfterPost"); };
    Ds->BeforeCancel = [&](TDataSet*) { Log << QStringLiteral("BeforeCancel"); };
    Ds->AfterCancel = [&](TDataSet*) { Log << QStringLiteral("AfterCancel"); };
    TField* N = Ds->FieldByName(QStringLiteral("Name"));

    Ds->Edit();
    QCOMPARE(Ds->State(), dsEdit);
    QVERIFY(!Ds->Modified());
    N->SetAsString(QStringLiteral("changed"));
    QVERIFY(Ds->Modified());
    QCOMPARE(N->OldValue().toString(), QStringLiteral("N2"));
    QCOMPARE(N->NewValue().toString(), QStringLiteral("changed"));
    Ds->Cancel();
    QCOMPARE(Ds->State(), dsBrowse);
    QCOMPARE(N->AsString(), QStringLiteral("N2"));

    Ds->Edit();
    N->SetAsString(QStringLiteral("kept"));
    Ds->Post();
    QCOMPARE(N->AsString(), QStringLiteral("kept"));
    QCOMPARE(Ds->RecNo(), 2);
    QCOMPARE(Log, QStringList({"BeforeEdit", "AfterEdit", "BeforeCancel", "AfterCancel", "BeforeEdit", "AfterEdit",
                               "BeforePost", "AfterPost"}));
    Ds->First();
    Ds->Next();
    QCOMPARE(Name(Ds.get()), QStringLiteral("kept"));
    QVERIFY_THROWS_EXCEPTION(EDatabaseError, Ds->Post());  // not editing
}

void TestDataSet::insertAndAppend()
{
    auto Ds = MakeRows(3);
    Ds->Next();  // on N2
    int NewRecords = 0;
    Ds->OnNewRecord = [&](TDataSet* D) {
        ++NewRecords;
        D->FieldByName(QStringLiteral("Amount"))->SetAsFloat(9);
    };
    Ds->Insert();
    QCOMPARE(Ds->State(), dsInsert);
    QCOMPARE(NewRecords, 1);
    QVERIFY(!Ds->Modified());  // defaults of OnNewRecord do not count as a change
    QCOMPARE(Ds->RecNo(), -1);
    QVERIFY(Ds->Bookmark().isEmpty());
    QCOMPARE(Ds->RecordCount(), 3);  // the unposted row is not counted
    QCOMPARE(Ds->FieldByName(QStringLiteral("Amount"))->AsFloat(), 9.0);
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("inserted"));
    Ds->Post();
    QCOMPARE(Ds->RecNo(), 2);  // before the former current row
    Ds->Next();
    QCOMPARE(Name(Ds.get()), QStringLiteral("N2"));

    Ds->Append();
    QCOMPARE(Ds->RecNo(), -1);
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("appended"));
    Ds->Post();
    QCOMPARE(Ds->RecNo(), 5);
    QCOMPARE(Ds->RecordCount(), 5);

    Ds->First();
    Ds->Insert();
    Ds->Cancel();
    QCOMPARE(Ds->RecNo(), 1);
    QCOMPARE(Name(Ds.get()), QStringLiteral("N1"));
    Ds->Last();
    Ds->Append();
    Ds->Cancel();
    QCOMPARE(Name(Ds.get()), QStringLiteral("appended"));
    QCOMPARE(Ds->RecordCount(), 5);
}

void TestDataSet::editOnEmptyInserts()
{
    auto Ds = MakeRows(0);
    Ds->Edit();
    QCOMPARE(Ds->State(), dsInsert);
    Ds->FieldByName(QStringLiteral("Id"))->SetAsInteger(7);
    Ds->Post();
    QCOMPARE(Ds->RecordCount(), 1);
    QVERIFY(!Ds->IsEmpty());
}

void TestDataSet::refusalLeavesDataSetUnchanged_data()
{
    QTest::addColumn<QString>("event");
    QTest::addColumn<QString>("action");
    QTest::newRow("BeforeInsert") << "BeforeInsert" << "insert";
    QTest::newRow("BeforeInsert on append") << "BeforeInsert" << "append";
    QTest::newRow("BeforeEdit") << "BeforeEdit" << "edit";
    QTest::newRow("BeforeDelete") << "BeforeDelete" << "delete";
    QTest::newRow("BeforePost") << "BeforePost" << "post";
    QTest::newRow("BeforeCancel") << "BeforeCancel" << "cancel";
    QTest::newRow("BeforeScroll") << "BeforeScroll" << "next";
    QTest::newRow("BeforeClose") << "BeforeClose" << "close";
}

void TestDataSet::refusalLeavesDataSetUnchanged()
{
    QFETCH(QString, event);
    QFETCH(QString, action);
    auto Ds = MakeRows(4);
    Ds->Next();
    const bool StartsEditing = action == QLatin1String("post") || action == QLatin1String("cancel");
    if (StartsEditing) {
        Ds->Edit();
        Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("pending"));
    }
    const TDataSetState State = Ds->State();
    const QByteArray Bookmark = Ds->Bookmark();
    const QString Value = Name(Ds.get());
    const int Changes = Ds->ChangeCount();
    const TDataSetNotifyEvent Refuse = [](TDataSet*) { Abort(); };
    const QHash<QString, TDataSetNotifyEvent*> Events = {
        {"BeforeInsert", &Ds->BeforeInsert}, {"BeforeEdit", &Ds->BeforeEdit}, {"BeforeDelete", &Ds->BeforeDelete},
        {"BeforePost", &Ds->BeforePost}, {"BeforeCancel", &Ds->BeforeCancel}, {"BeforeScroll", &Ds->BeforeScroll},
        {"BeforeClose", &Ds->BeforeClose}};
    *Events.value(event) = Refuse;

    auto Run = [&] {
        if (action == "insert") Ds->Insert();
        else if (action == "append") Ds->Append();
        else if (action == "edit") Ds->Edit();
        else if (action == "delete") Ds->Delete();
        else if (action == "post") Ds->Post();
        else if (action == "cancel") Ds->Cancel();
        else if (action == "next") Ds->Next();
        else if (action == "close") Ds->Close();
    };
    QVERIFY_THROWS_EXCEPTION(EAbort, Run());
    QCOMPARE(Ds->State(), State);
    QCOMPARE(Ds->Bookmark(), Bookmark);
    QCOMPARE(Name(Ds.get()), Value);
    QCOMPARE(Ds->ChangeCount(), Changes);
    QCOMPARE(Ds->RecordCount(), 4);
    QCOMPARE(Ds->RecNo(), 2);
}

void TestDataSet::hookRefusals()
{
    TGuardedDataSet Ds;
    Ds.FieldDefs().Add(QStringLiteral("Id"), ftInteger);
    Ds.CreateDataSet();
    Ds.Append();
    Ds.Fields()[0]->SetAsInteger(1);
    Ds.Post();
    int UserEvents = 0;
    Ds.BeforeInsert = Ds.BeforeEdit = Ds.BeforeDelete = [&](TDataSet*) { ++UserEvents; };

    Ds.AllowInsert = false;
    QVERIFY_THROWS_EXCEPTION(EAbort, Ds.Insert());
    QVERIFY_THROWS_EXCEPTION(EAbort, Ds.Append());
    Ds.AllowEdit = false;
    QVERIFY_THROWS_EXCEPTION(EAbort, Ds.Edit());
    Ds.AllowDelete = false;
    QVERIFY_THROWS_EXCEPTION(EAbort, Ds.Delete());
    QCOMPARE(UserEvents, 0);  // the refusal comes before the user's event
    QCOMPARE(Ds.State(), dsBrowse);
    QCOMPARE(Ds.RecordCount(), 1);

    Ds.AllowInsert = Ds.AllowEdit = Ds.AllowDelete = true;
    Ds.Edit();
    Ds.Cancel();
    Ds.Delete();
    QCOMPARE(UserEvents, 2);
    QVERIFY(Ds.IsEmpty());
}

void TestDataSet::writingOutsideEditRaises()
{
    auto Ds = MakeRows(2);
    try {
        Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("x"));
        QFAIL("no exception");
    } catch (const EDatabaseError& E) {
        QCOMPARE(E.Message, QStringLiteral("Dataset not in edit or insert mode"));
    }
    Ds->SetReadOnly(true);
    try {
        Ds->Edit();
        QFAIL("no exception");
    } catch (const EDatabaseError& E) {
        QCOMPARE(E.Message, QStringLiteral("Cannot modify a read-only dataset"));
    }
    Ds->SetReadOnly(false);
    Ds->FieldByName(QStringLiteral("Id"))->SetReadOnly(true);
    Ds->Edit();
    try {
        Ds->FieldByName(QStringLiteral("Id"))->SetAsInteger(3);
        QFAIL("no exception");
    } catch (const EDatabaseError& E) {
        QCOMPARE(E.Message, QStringLiteral("Field 'Id' cannot be modified"));
    }
}

void TestDataSet::fieldLookup()
{
    auto Ds = MakeRows(1);
    QCOMPARE(Ds->FindField(QStringLiteral("nAmE")), Ds->Fields()[1]);
    QCOMPARE(Ds->FindField(QStringLiteral("Nope")), nullptr);
    try {
        Ds->FieldByName(QStringLiteral("Nope"));
        QFAIL("no exception");
    } catch (const EDatabaseError& E) {
        QCOMPARE(E.Message, QStringLiteral("Field 'Nope' not found"));
    }
    QStringList Names;
    Ds->GetFieldNames(Names);
    QCOMPARE(Names, QStringList({"Id", "Name", "Amount"}));
}

void TestDataSet::navigationPostsOrCancels()
{
    auto Ds = MakeRows(3);
    int Posts = 0, Cancels = 0;
    Ds->AfterPost = [&](TDataSet*) { ++Posts; };
    Ds->AfterCancel = [&](TDataSet*) { ++Cancels; };
    Ds->Edit();
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("moved"));
    Ds->Next();
    QCOMPARE(Posts, 1);
    Ds->Edit();  // nothing changed: leaving cancels
    Ds->Prior();
    QCOMPARE(Cancels, 1);
    QCOMPARE(Name(Ds.get()), QStringLiteral("moved"));
    Ds->Insert();  // an untouched new row is dropped by navigation
    Ds->Last();
    QCOMPARE(Ds->RecordCount(), 3);
}

void TestDataSet::deleteRows()
{
    auto Ds = MakeRows(3);
    Ds->Next();
    Ds->Delete();
    QCOMPARE(Name(Ds.get()), QStringLiteral("N3"));  // the next row becomes current
    Ds->Delete();
    QCOMPARE(Name(Ds.get()), QStringLiteral("N1"));  // the last went: the new last
    Ds->Delete();
    QVERIFY(Ds->IsEmpty() && Ds->Bof() && Ds->Eof());
    try {
        Ds->Delete();
        QFAIL("no exception");
    } catch (const EDatabaseError& E) {
        QCOMPARE(E.Message, QStringLiteral("Cannot perform this operation on an empty dataset"));
    }
    QCOMPARE(Ds->ChangeCount(), 3);
}

void TestDataSet::requiredField()
{
    auto Ds = MakeRows(1);
    Ds->FieldByName(QStringLiteral("Name"))->SetRequired(true);
    Ds->Append();
    try {
        Ds->Post();
        QFAIL("no exception");
    } catch (const EDatabaseError& E) {
        QCOMPARE(E.Message, QStringLiteral("Field 'Name' must have a value"));
    }
    QCOMPARE(Ds->State(), dsInsert);
}

void TestDataSet::bookmarks()
{
    auto Ds = MakeRows(5);
    Ds->MoveBy(3);
    const QByteArray B4 = Ds->Bookmark();
    Ds->First();
    const QByteArray B1 = Ds->Bookmark();
    Ds->Insert();  // rows move; bookmarks stay
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("new"));
    Ds->Post();
    const QByteArray BNew = Ds->Bookmark();
    Ds->GotoBookmark(B4);
    QCOMPARE(Name(Ds.get()), QStringLiteral("N4"));
    QCOMPARE(Ds->RecNo(), 5);
    QCOMPARE(Ds->CompareBookmarks(B1, B4), -1);
    QCOMPARE(Ds->CompareBookmarks(B4, B1), 1);
    QCOMPARE(Ds->CompareBookmarks(B4, B4), 0);
    QCOMPARE(Ds->CompareBookmarks(QByteArray(), B1), -1);
    QCOMPARE(Ds->CompareBookmarks(B1, BNew), -1);  // rows inserted later sort after those read
    Ds->GotoBookmark(B1);
    Ds->Delete();
    QVERIFY(!Ds->BookmarkValid(B1));
    QVERIFY(Ds->BookmarkValid(B4));
    QVERIFY(!Ds->BookmarkValid(QByteArray("xx")));
    QVERIFY_THROWS_EXCEPTION(EDatabaseError, Ds->GotoBookmark(B1));
    QCOMPARE(Ds->RecNo(), 2);  // a failed GotoBookmark does not move
}

void TestDataSet::locate_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QVariant>("values");
    QTest::addColumn<int>("options");
    QTest::addColumn<int>("recNo");  // 0: not found
    QTest::newRow("exact") << "Name" << QVariant("Beta") << 0 << 2;
    QTest::newRow("case differs") << "Name" << QVariant("beta") << 0 << 0;
    QTest::newRow("case-insensitive") << "Name" << QVariant("beta") << int(loCaseInsensitive) << 2;
    QTest::newRow("partial") << "Name" << QVariant("Gam") << int(loPartialKey) << 3;
    QTest::newRow("partial, any case") << "name" << QVariant("gam") << int(loPartialKey | loCaseInsensitive) << 3;
    QTest::newRow("not a prefix") << "Name" << QVariant("amma") << int(loPartialKey) << 0;
    QTest::newRow("integer") << "Id" << QVariant(4) << 0 << 4;
    QTest::newRow("integer as text") << "Id" << QVariant("4") << 0 << 4;
    QTest::newRow("float") << "Amount" << QVariant(4.5) << 0 << 3;
    QTest::newRow("two fields") << "Id;Name" << QVariant(QVariantList{3, "Gamma"}) << 0 << 3;
    QTest::newRow("two fields, no match") << "Id;Name" << QVariant(QVariantList{2, "Gamma"}) << 0 << 0;
    QTest::newRow("null") << "Name" << QVariant() << 0 << 5;
}

void TestDataSet::locate()
{
    QFETCH(QString, keys);
    QFETCH(QVariant, values);
    QFETCH(int, options);
    QFETCH(int, recNo);
    auto Ds = MakeNames({"Alpha", "Beta", "Gamma", "Delta", "x"});
    Ds->Last();
    Ds->Edit();
    Ds->FieldByName(QStringLiteral("Name"))->Clear();
    Ds->Post();
    Ds->First();
    Ds->Next();
    const bool Found = Ds->Locate(keys, values, TLocateOptions(options));
    QCOMPARE(Found, recNo != 0);
    QCOMPARE(Ds->RecNo(), recNo != 0 ? recNo : 2);
}

void TestDataSet::disableControls()
{
    auto Ds = MakeRows(20);
    TDataSource Source;
    Source.SetDataSet(Ds.get());
    TCountingLink Link;
    Link.SetDataSource(&Source);
    QCOMPARE(Link.NActive, 1);
    const int Before = Link.Total();
    Ds->DisableControls();
    Ds->DisableControls();
    QVERIFY(Ds->ControlsDisabled());
    double Sum = 0;
    for (Ds->First(); !Ds->Eof(); Ds->Next())
        Sum += Ds->FieldByName(QStringLiteral("Amount"))->AsFloat();
    Ds->First();
    Ds->Edit();
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("quiet"));
    Ds->Post();
    Ds->EnableControls();
    QCOMPARE(Link.Total(), Before);  // still disabled once
    Ds->EnableControls();
    QVERIFY(!Ds->ControlsDisabled());
    QCOMPARE(Link.NChanged, 1);
    QCOMPARE(Link.Total(), Before + 1);
    QCOMPARE(Sum, 1.5 * 210);
}

void TestDataSet::linkNotifications()
{
    auto Ds = MakeRows(3);
    TDataSource Source;
    TCountingLink Link;
    Link.SetDataSource(&Source);
    QVERIFY(!Link.Active());
    int StateChanges = 0;
    QList<TField*> DataChanges;
    Source.OnStateChange = [&](TDataSource*) { ++StateChanges; };
    Source.OnDataChange = [&](TDataSource*, TField* F) { DataChanges << F; };
    Source.SetDataSet(Ds.get());
    QVERIFY(Link.Active());
    QCOMPARE(Link.NActive, 1);
    QCOMPARE(StateChanges, 1);
    QCOMPARE(Source.State(), dsBrowse);

    Ds->Next();
    QCOMPARE(Link.NScrolled, 1);
    Ds->Edit();
    QVERIFY(Link.Editing());
    QCOMPARE(Link.NEditing, 1);
    QCOMPARE(Source.State(), dsEdit);
    DataChanges.clear();
    TField* F = Ds->FieldByName(QStringLiteral("Name"));
    F->SetAsString(QStringLiteral("x"));
    QCOMPARE(DataChanges, QList<TField*>({F}));
    QCOMPARE(Link.NRecord, 2);  // Edit's record change, then the field's
    Ds->Post();
    QVERIFY(Link.NUpdates >= 1);  // Post asked the controls for their values
    QVERIFY(Link.NChecks >= 1);
    QVERIFY(!Link.Editing());

    Link.SetReadOnly(true);
    Ds->Edit();
    QVERIFY(!Link.Editing());  // a read-only link never edits
    Ds->Cancel();

    Source.SetEnabled(false);
    QVERIFY(!Link.Active());
    const int Total = Link.Total();
    Ds->Next();
    QCOMPARE(Link.Total(), Total);
    Source.SetEnabled(true);
    Ds->Close();
    QVERIFY(!Link.Active());
    QCOMPARE(Source.State(), dsInactive);
    Ds.reset();  // the source forgets a destroyed dataset
    QCOMPARE(Source.DataSet(), nullptr);
}

void TestDataSet::fieldDataLinkFlushesOnPost()
{
    auto Ds = MakeRows(2);
    TDataSource Source;
    Source.SetDataSet(Ds.get());
    TFieldDataLink Link;
    QString Editor;  // stands for an edit control's text
    int Shown = 0;
    Link.OnDataChange = [&](TFieldDataLink* L) {
        ++Shown;
        Editor = L->Field() ? L->Field()->Text() : QString();
    };
    Link.OnUpdateData = [&](TFieldDataLink* L) { L->Field()->SetText(Editor); };
    Link.SetDataSource(&Source);
    Link.SetFieldName(QStringLiteral("name"));
    QCOMPARE(Link.Field(), Ds->FieldByName(QStringLiteral("Name")));
    QCOMPARE(Editor, QStringLiteral("N1"));

    QVERIFY(Link.Edit());  // AutoEdit puts the dataset in edit
    QCOMPARE(Ds->State(), dsEdit);
    Editor = QStringLiteral("typed");
    Link.Modified();
    Ds->Post();  // the typed text reaches the field before the row is written
    QCOMPARE(Name(Ds.get()), QStringLiteral("typed"));

    Source.SetAutoEdit(false);
    QVERIFY(!Link.Edit());
    QCOMPARE(Ds->State(), dsBrowse);
    Ds->Next();
    QCOMPARE(Editor, QStringLiteral("N2"));
    const int ShownBefore = Shown;
    Ds->Edit();
    Ds->FieldByName(QStringLiteral("Amount"))->SetAsFloat(1);  // another field: not shown again
    QCOMPARE(Shown, ShownBefore + 1);                          // only Edit's record change
    Ds->Cancel();
}

void TestDataSet::bufferWindow()
{
    auto Ds = MakeRows(10);
    TDataSource Source;
    Source.SetDataSet(Ds.get());
    TCountingLink Link;
    Link.SetBufferCount(4);
    Link.SetDataSource(&Source);
    QCOMPARE(Link.RecordCount(), 4);
    QCOMPARE(Link.ActiveRecord(), 0);
    Ds->MoveBy(2);
    QCOMPARE(Link.ActiveRecord(), 2);
    QCOMPARE(Link.LastDistance, 0);
    Ds->MoveBy(3);  // row 6: the window moves by 2
    QCOMPARE(Link.LastDistance, 2);
    QCOMPARE(Link.ActiveRecord(), 3);
    // Reading the window's rows without moving the cursor.
    QStringList Seen;
    const int Saved = Link.ActiveRecord();
    for (int i = 0; i < Link.RecordCount(); ++i) {
        Link.SetActiveRecord(i);
        Seen << Name(Ds.get());
    }
    Link.SetActiveRecord(Saved);
    QCOMPARE(Seen, QStringList({"N3", "N4", "N5", "N6"}));
    QCOMPARE(Name(Ds.get()), QStringLiteral("N6"));
    QCOMPARE(Ds->RecNo(), 6);
    Ds->Last();
    QCOMPARE(Link.ActiveRecord(), 3);  // the last rows fill the window
    Ds->First();
    QCOMPARE(Link.ActiveRecord(), 0);
    Ds->Last();
    Ds->Delete();
    Ds->Delete();
    QCOMPARE(Link.RecordCount(), 4);
    QCOMPARE(Link.ActiveRecord(), 3);
}

void TestDataSet::persistentFields()
{
    TClientDataSet Ds;
    Ds.FieldDefs().Add(QStringLiteral("Id"), ftInteger);
    Ds.FieldDefs().Add(QStringLiteral("Name"), ftString, 10);
    auto* Name = new TStringField(&Ds);
    Name->SetFieldName(QStringLiteral("name"));
    Name->SetDisplayLabel(QStringLiteral("Title"));
    Ds.CreateDataSet();
    QCOMPARE(Ds.FieldCount(), 1);  // only the persistent fields
    QCOMPARE(Ds.Fields()[0], Name);
    QCOMPARE(Name->FieldNo(), 2);
    Ds.Append();
    Name->SetAsString(QStringLiteral("a"));
    Ds.Post();
    QCOMPARE(Name->AsString(), QStringLiteral("a"));
    Ds.Close();
    QCOMPARE(Ds.FieldCount(), 1);  // it survives Close
    QCOMPARE(Name->DisplayLabel(), QStringLiteral("Title"));
    QVERIFY(Name->IsNull());
    QVERIFY_THROWS_EXCEPTION(EDatabaseError, Name->SetAsString(QStringLiteral("b")));

    auto* Missing = new TIntegerField(&Ds);
    Missing->SetFieldName(QStringLiteral("Missing"));
    try {
        Ds.CreateDataSet();
        QFAIL("no exception");
    } catch (const EDatabaseError& E) {
        QCOMPARE(E.Message, QStringLiteral("Field 'Missing' not found"));
    }
    QVERIFY(!Ds.Active());
    delete Missing;
    Ds.CreateDataSet();
    QVERIFY(Ds.Active());
    QVERIFY_THROWS_EXCEPTION(EDatabaseError, new TIntegerField(&Ds));  // not on an open dataset
}

void TestDataSet::lazyFetching()
{
    TCountingDataSet Ds;
    Ds.SetFetchBlockSize(100);
    Ds.Open();
    QCOMPARE(Ds.Fetches, 1);
    QCOMPARE(Ds.FetchedRowCount(), 64);  // the first block is small
    QVERIFY(!Ds.FetchedAll());
    Ds.MoveBy(150);
    QCOMPARE(Ds.FetchedRowCount(), 164);
    QCOMPARE(Ds.Fields()[0]->AsInteger(), 150);
    QCOMPARE(Ds.RecordCount(), 1000);  // the full count, read to the end
    QVERIFY(Ds.FetchedAll());
    QCOMPARE(Ds.RecNo(), 151);  // and the cursor stayed
    Ds.Last();
    QCOMPARE(Ds.Fields()[0]->AsInteger(), 999);
    Ds.Close();
    Ds.Open();
    QVERIFY(Ds.Locate(QStringLiteral("N"), 555));
    QCOMPARE(Ds.FetchedRowCount(), 564);  // only as far as the row found
}

void TestDataSet::changeLog()
{
    auto Ds = MakeRows(2);
    Ds->Edit();  // a value typed back as it was is no change
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("N1"));
    Ds->FieldByName(QStringLiteral("Id"))->SetAsFloat(1.0);
    Ds->Post();
    QCOMPARE(Ds->ChangeCount(), 0);
    Ds->Edit();
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("e"));
    Ds->Post();
    Ds->Append();
    Ds->FieldByName(QStringLiteral("Id"))->SetAsInteger(3);
    Ds->Post();
    Ds->First();
    Ds->Delete();
    QCOMPARE(Ds->ChangeCount(), 3);
    QVERIFY_THROWS_EXCEPTION(EDatabaseError, Ds->ApplyUpdates(0));
    QList<TUpdateKind> Kinds;
    Ds->OnApplyUpdate = [&](TClientDataSet*, TUpdateKind Kind, const TRecordValues& Old, const TRecordValues& New) {
        Kinds << Kind;
        if (Kind == ukInsert) {
            QCOMPARE(New.value(0).toInt(), 3);
            throw EDatabaseError(QStringLiteral("refused"));
        }
        if (Kind == ukModify)
            QCOMPARE(Old.value(1).toString(), QStringLiteral("N1"));
    };
    QCOMPARE(Ds->ApplyUpdates(-1), 1);
    QCOMPARE(Kinds, QList<TUpdateKind>({ukModify, ukInsert, ukDelete}));
    QCOMPARE(Ds->ChangeCount(), 1);  // the refused insert stays logged
    Ds->MergeChangeLog();
    QCOMPARE(Ds->ChangeCount(), 0);
}

void TestDataSet::mixedValuesInOneColumn()
{
    TMixedDataSet Ds;
    Ds.Open();
    QCOMPARE(Ds.RecordCount(), 600);
    TField* V = Ds.Fields()[0];
    TField* S = Ds.Fields()[1];
    for (int N = 0; !Ds.Eof(); ++N, Ds.Next()) {
        const QVariant Expected = TMixedDataSet::ValueOf(N);
        QCOMPARE(V->IsNull(), Expected.isNull());
        QCOMPARE(V->AsString(), Expected.isNull() ? QString() : Expected.metaType().id() == QMetaType::QDate
                                                                      ? Expected.toDate().toString(Qt::ISODate)
                                                                      : Expected.metaType().id() == QMetaType::Double
                                                                            ? FloatToStr(Expected.toDouble())
                                                                            : Expected.toString());
        QCOMPARE(S->AsString(), N < 300 ? QStringLiteral("s%1").arg(N) : QString::number(N));
    }
    // Rewriting one text many times keeps only the last value.
    Ds.First();
    for (int i = 0; i < 3000; ++i) {
        Ds.Edit();
        S->SetAsString(QString(40, QChar(u'a' + i % 26)));
        Ds.Post();
    }
    QCOMPARE(S->AsString(), QString(40, QChar(u'a' + 2999 % 26)));
    Ds.Next();
    QCOMPARE(S->AsString(), QStringLiteral("s1"));  // the packed text buffer kept its neighbours
    Ds.MoveBy(254);
    QCOMPARE(S->AsString(), QStringLiteral("s255"));
}

QTEST_MAIN(TestDataSet)
#include "tst_dataset.moc"
