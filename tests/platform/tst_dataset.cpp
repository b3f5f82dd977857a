// Tests of TDataSet's cursor, states, events, refusals, links and look-ups, on the
// in-memory TClientDataSet and on a generated dataset that counts its fetches.
#include "platform/data.h"
#include "platform/exceptions.h"
#include "platform/rtl/numbers.h"
#include <QtTest>
#include <memory>

using namespace Kesh;

namespace {

// A dataset refusing what its flags forbid, as the business datasets do.
class TGuardedDataSet : public TClientDataSet
{
public:
    bool AllowInsert = true, AllowEdit = true, AllowDelete = true;

protected:
    void DoBeforeInsert() override { AllowInsert ? TClientDataSet::DoBeforeInsert() : Abort(); }
    void DoBeforeEdit() override { AllowEdit ? TClientDataSet::DoBeforeEdit() : Abort(); }
    void DoBeforeDelete() override { AllowDelete ? TClientDataSet::DoBeforeDelete() : Abort(); }
};

// Id, Name, Amount with the rows (i, Names[i-1], i * 1.5).
std::unique_ptr<TGuardedDataSet> MakeNames(const QStringList& Names)
{
    auto Ds = std::make_unique<TGuardedDataSet>();
    Ds->FieldDefs().Add(QStringLiteral("Id"), ftInteger);
    Ds->FieldDefs().Add(QStringLiteral("Name"), ftString, 30);
    Ds->FieldDefs().Add(QStringLiteral("Amount"), ftFloat);
    Ds->CreateDataSet();
    for (int i = 0; i < Names.size(); ++i) {
        Ds->Append();
        for (int F = 0; F < 3; ++F)
            Ds->Fields()[F]->SetValue(QVariantList{i + 1, Names[i], (i + 1) * 1.5}[F]);
        Ds->Post();
    }
    Ds->MergeChangeLog();
    Ds->First();
    return Ds;
}

std::unique_ptr<TGuardedDataSet> MakeRows(int Count)
{
    QStringList Names;
    for (int i = 1; i <= Count; ++i)
        Names << QStringLiteral("N%1").arg(i);
    return MakeNames(Names);
}

QString Name(TDataSet* Ds) { return Ds->FieldByName(QStringLiteral("Name"))->AsString(); }

// Logs the dataset's events as "Event:State" (states as numbers: 0 inactive, 1 browse, 2 edit).
void LogEvents(TDataSet& Ds, QStringList& Log)
{
    const std::pair<TDataSetNotifyEvent*, const char*> Events[] = {
        {&Ds.BeforeOpen, "BeforeOpen"}, {&Ds.AfterOpen, "AfterOpen"}, {&Ds.BeforeClose, "BeforeClose"},
        {&Ds.AfterClose, "AfterClose"}, {&Ds.BeforeEdit, "BeforeEdit"}, {&Ds.AfterEdit, "AfterEdit"},
        {&Ds.BeforePost, "BeforePost"}, {&Ds.AfterPost, "AfterPost"}, {&Ds.BeforeCancel, "BeforeCancel"},
        {&Ds.AfterCancel, "AfterCancel"}, {&Ds.AfterScroll, "AfterScroll"}};
    for (const auto& [Event, Name] : Events)
        *Event = [&Log, Name = Name](TDataSet* D) { Log << QStringLiteral("%1:%2").arg(QLatin1String(Name)).arg(D->State()); };
}

// The message of the database error F raises, or an empty text.
QString ErrorOf(const std::function<void()>& F)
{
    try {
        F();
    } catch (const EDatabaseError& E) {
        return E.Message;
    }
    return QString();
}

class TCountingLink : public TDataLink
{
public:
    int NActive = 0, NChanged = 0, NScrolled = 0, NEditing = 0, NRecord = 0, NUpdates = 0, NChecks = 0, LastDistance = 0;
    int Total() const { return NActive + NChanged + NScrolled + NEditing + NRecord + NUpdates + NChecks; }

protected:
    void ActiveChanged() override { ++NActive; }
    void DataSetChanged() override { ++NChanged; }
    void DataSetScrolled(int Distance) override { ++NScrolled; LastDistance = Distance; }
    void EditingChanged() override { ++NEditing; }
    void RecordChanged(TField*) override { ++NRecord; }
    void UpdateData() override { ++NUpdates; }
    void CheckBrowseMode() override { ++NChecks; }
};

// Rows generated on demand, N = 0..Total-1, counting the fetches. V changes type from row to
// row, as SQLite allows; S holds texts in the first half, numbers in the second.
class TGeneratedDataSet : public TDataSet
{
public:
    int Total = 1000, Fetches = 0, Produced = 0;
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
        FieldDefsRef().Add(QStringLiteral("N"), ftInteger);
        FieldDefsRef().Add(QStringLiteral("V"), ftVariant);
        FieldDefsRef().Add(QStringLiteral("S"), ftWideString);
        Produced = 0;
    }
    int InternalFetch(int MaxRows) override
    {
        ++Fetches;
        int Got = 0;
        for (; Got < MaxRows && Produced < Total; ++Got, ++Produced) {
            QVariant* Row = AppendRow();
            Row[0] = Produced;
            Row[1] = ValueOf(Produced);
            Row[2] = Produced < Total / 2 ? QVariant(QStringLiteral("s%1").arg(Produced)) : QVariant(Produced);
        }
        return Got;
    }
    bool CanModify() const override { return true; }
};

// Rows cycling through Values in one column of any type.
class TCyclingDataSet : public TDataSet
{
public:
    QVariantList Values;
    TFieldType Type = ftWideString;
    int Total = 600;
    QVariant Raw() const { return ActiveValues().value(0); }

protected:
    void InternalOpen() override
    {
        FieldDefsRef().Clear();
        FieldDefsRef().Add(QStringLiteral("V"), Type);
    }
    int InternalFetch(int MaxRows) override
    {
        int Got = 0;
        for (; Got < MaxRows && m_produced < Total; ++Got, ++m_produced)
            AppendRow()[0] = Values[m_produced % Values.size()];
        return Got;
    }
    bool CanModify() const override { return true; }

private:
    int m_produced = 0;
};

} // namespace

class TestDataSet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void openCloseEventsAndFields()
    {
        TClientDataSet Ds;
        Ds.FieldDefs().Add(QStringLiteral("Id"), ftInteger);
        Ds.FieldDefs().Add(QStringLiteral("Name"), ftWideString, 40);
        QStringList Log;
        LogEvents(Ds, Log);
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Ds.Open());  // no data packet without CreateDataSet
        QVERIFY(!Ds.Active());
        Log.clear();
        Ds.CreateDataSet();
        // An empty dataset opens without a scroll.
        QCOMPARE(Log, QStringList({"BeforeOpen:0", "AfterOpen:1"}));
        QVERIFY(Ds.IsEmpty() && Ds.Bof() && Ds.Eof());
        QCOMPARE(Ds.RecNo(), 0);
        QCOMPARE(Ds.FieldCount(), 2);
        QVERIFY(qobject_cast<TIntegerField*>(Ds.Fields()[0]));
        QVERIFY(qobject_cast<TWideStringField*>(Ds.Fields()[1]));
        QCOMPARE(Ds.Fields()[1]->Size(), 40);
        QCOMPARE(Ds.Fields()[1]->FieldNo(), 2);
        QPointer<TField> Dynamic = Ds.Fields()[0];
        Log.clear();
        Ds.Close();
        QCOMPARE(Log, QStringList({"BeforeClose:1", "AfterClose:0"}));
        QVERIFY(Dynamic.isNull());  // dynamic fields go with the rows
        QCOMPARE(Ds.FieldCount(), 0);

        // Persistent fields stand in for the definitions and survive Close.
        auto* Text = new TWideStringField(&Ds);
        Text->SetFieldName(QStringLiteral("name"));
        Ds.CreateDataSet();
        QCOMPARE(Ds.FieldCount(), 1);
        QCOMPARE(Ds.Fields()[0], Text);
        QCOMPARE(Text->FieldNo(), 2);
        Ds.Append();
        Text->SetAsString(QStringLiteral("a"));
        Ds.Post();
        QCOMPARE(Text->AsString(), QStringLiteral("a"));
        Ds.Close();
        QCOMPARE(Ds.FieldCount(), 1);
        QVERIFY(Text->IsNull());
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Text->SetAsString(QStringLiteral("b")));
        auto* Missing = new TIntegerField(&Ds);
        Missing->SetFieldName(QStringLiteral("Missing"));
        QCOMPARE(ErrorOf([&] { Ds.CreateDataSet(); }), QStringLiteral("Field 'Missing' not found"));
        QVERIFY(!Ds.Active());
        delete Missing;
        Ds.CreateDataSet();
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, new TIntegerField(&Ds));  // not on an open dataset
    }

    void navigation_data()
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
        QTest::newRow("last then prior") << "LP" << 4 << false << false;
        QTest::newRow("first after last") << "LF" << 1 << true << false;
        QTest::newRow("moveby 3") << "3" << 4 << false << false;
        QTest::newRow("moveby 9 clamps") << "9" << 5 << false << true;
        QTest::newRow("moveby -9 clamps") << "L-" << 1 << true << false;
    }
    void navigation()
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

    void editPostCancel()
    {
        auto Ds = MakeRows(3);
        Ds->Next();
        QStringList Log;
        LogEvents(*Ds, Log);
        TField* N = Ds->FieldByName(QStringLiteral("Name"));
        Ds->Edit();
        QVERIFY(!Ds->Modified());
        N->SetAsString(QStringLiteral("changed"));
        QVERIFY(Ds->Modified());
        QCOMPARE(N->OldValue().toString(), QStringLiteral("N2"));
        QCOMPARE(N->NewValue().toString(), QStringLiteral("changed"));
        Ds->Cancel();
        QCOMPARE(N->AsString(), QStringLiteral("N2"));
        Ds->Edit();
        N->SetAsString(QStringLiteral("kept"));
        Ds->Post();
        QCOMPARE(Ds->RecNo(), 2);
        QCOMPARE(Log, QStringList({"BeforeEdit:1", "AfterEdit:2", "BeforeCancel:2", "AfterCancel:1", "BeforeEdit:1",
                                   "AfterEdit:2", "BeforePost:2", "AfterPost:1"}));
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Ds->Post());  // not editing

        // Moving away posts a changed row and cancels an unchanged one or an untouched new row.
        Log.clear();
        Ds->Edit();
        N->SetAsString(QStringLiteral("moved"));
        Ds->Next();
        Ds->Edit();
        Ds->Prior();
        QCOMPARE(Log, QStringList({"BeforeEdit:1", "AfterEdit:2", "BeforePost:2", "AfterPost:1", "AfterScroll:1",
                                   "BeforeEdit:1", "AfterEdit:2", "BeforeCancel:2", "AfterCancel:1", "AfterScroll:1"}));
        QCOMPARE(Name(Ds.get()), QStringLiteral("moved"));
        Ds->Insert();
        Ds->Last();
        QCOMPARE(Ds->RecordCount(), 3);
    }

    void insertAndAppend()
    {
        auto Ds = MakeRows(3);
        Ds->Next();  // on N2
        Ds->OnNewRecord = [&](TDataSet* D) { D->FieldByName(QStringLiteral("Amount"))->SetAsFloat(9); };
        Ds->Insert();
        QCOMPARE(Ds->State(), dsInsert);
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

    // A Before event that aborts leaves everything as it was; so does the dataset's own refusal
    // ("hook": DoBefore*), which comes before the user's event.
    void refusalLeavesDataSetUnchanged_data()
    {
        QTest::addColumn<bool>("hook");
        QTest::addColumn<QString>("action");
        for (const char* Action : {"insert", "append", "edit", "delete", "post", "cancel", "next", "close"})
            QTest::addRow("Before event, %s", Action) << false << Action;
        for (const char* Action : {"insert", "append", "edit", "delete"})
            QTest::addRow("hook, %s", Action) << true << Action;
    }
    void refusalLeavesDataSetUnchanged()
    {
        QFETCH(bool, hook);
        QFETCH(QString, action);
        auto Ds = MakeRows(4);
        TGuardedDataSet& D = *Ds;
        D.Next();
        if (action == QLatin1String("post") || action == QLatin1String("cancel")) {
            D.Edit();
            D.FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("pending"));
        }
        const TDataSetState State = D.State();
        const QByteArray Bookmark = D.Bookmark();
        const QString Value = Name(&D);
        const int Changes = D.ChangeCount();
        using TAction = std::pair<TDataSetNotifyEvent*, std::function<void()>>;
        const QHash<QString, TAction> Actions = {
            {"insert", {&D.BeforeInsert, [&] { D.Insert(); }}}, {"append", {&D.BeforeInsert, [&] { D.Append(); }}},
            {"edit", {&D.BeforeEdit, [&] { D.Edit(); }}}, {"delete", {&D.BeforeDelete, [&] { D.Delete(); }}},
            {"post", {&D.BeforePost, [&] { D.Post(); }}}, {"cancel", {&D.BeforeCancel, [&] { D.Cancel(); }}},
            {"next", {&D.BeforeScroll, [&] { D.Next(); }}}, {"close", {&D.BeforeClose, [&] { D.Close(); }}}};
        const TAction Act = Actions.value(action);
        int UserEvents = 0;
        if (hook) {
            D.AllowInsert = D.AllowEdit = D.AllowDelete = false;
            *Act.first = [&](TDataSet*) { ++UserEvents; };
        } else {
            *Act.first = [](TDataSet*) { Abort(); };
        }
        QVERIFY_THROWS_EXCEPTION(EAbort, Act.second());
        QCOMPARE(D.State(), State);
        QCOMPARE(D.Bookmark(), Bookmark);
        QCOMPARE(Name(&D), Value);
        QCOMPARE(D.ChangeCount(), Changes);
        QCOMPARE(D.RecordCount(), 4);
        QCOMPARE(D.RecNo(), 2);
        QCOMPARE(UserEvents, 0);
    }

    void refusedWritesAndLookups()
    {
        auto Ds = MakeRows(2);
        TField* Id = Ds->FieldByName(QStringLiteral("Id"));
        TField* Text = Ds->FindField(QStringLiteral("nAmE"));
        QCOMPARE(Text, Ds->Fields()[1]);
        QCOMPARE(Ds->FindField(QStringLiteral("Nope")), nullptr);
        QCOMPARE(ErrorOf([&] { Ds->FieldByName(QStringLiteral("Nope")); }), QStringLiteral("Field 'Nope' not found"));
        QStringList Names;
        Ds->GetFieldNames(Names);
        QCOMPARE(Names, QStringList({"Id", "Name", "Amount"}));

        QCOMPARE(ErrorOf([&] { Text->SetAsString(QStringLiteral("x")); }), QStringLiteral("Dataset not in edit or insert mode"));
        Ds->SetReadOnly(true);
        QCOMPARE(ErrorOf([&] { Ds->Edit(); }), QStringLiteral("Cannot modify a read-only dataset"));
        Ds->SetReadOnly(false);
        Id->SetReadOnly(true);
        Ds->Edit();
        QCOMPARE(ErrorOf([&] { Id->SetAsInteger(3); }), QStringLiteral("Field 'Id' cannot be modified"));
        Ds->Cancel();
        Text->SetRequired(true);
        Ds->Append();
        QCOMPARE(ErrorOf([&] { Ds->Post(); }), QStringLiteral("Field 'Name' must have a value"));
        QCOMPARE(Ds->State(), dsInsert);
    }

    void deleteRows()
    {
        auto Ds = MakeRows(3);
        Ds->Next();
        Ds->Delete();
        QCOMPARE(Name(Ds.get()), QStringLiteral("N3"));  // the next row becomes current
        Ds->Delete();
        QCOMPARE(Name(Ds.get()), QStringLiteral("N1"));  // the last went: the new last
        Ds->Delete();
        QVERIFY(Ds->IsEmpty() && Ds->Bof() && Ds->Eof());
        QCOMPARE(ErrorOf([&] { Ds->Delete(); }), QStringLiteral("Cannot perform this operation on an empty dataset"));
        QCOMPARE(Ds->ChangeCount(), 3);
        Ds->Edit();  // Edit on an empty dataset inserts
        QCOMPARE(Ds->State(), dsInsert);
        Ds->Post();
        QCOMPARE(Ds->RecordCount(), 1);
    }

    void bookmarks()
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

    void locate_data()
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
    void locate()
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
        QCOMPARE(Ds->Locate(keys, values, TLocateOptions(options)), recNo != 0);
        QCOMPARE(Ds->RecNo(), recNo != 0 ? recNo : 2);
    }

    void linkNotifications()
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

        // Disabled controls hear nothing until the last EnableControls, then one DataSetChanged.
        Ds->DisableControls();
        Ds->DisableControls();
        const int Before = Link.Total(), Changed = Link.NChanged;
        double Sum = 0;
        for (Ds->First(); !Ds->Eof(); Ds->Next())
            Sum += Ds->FieldByName(QStringLiteral("Amount"))->AsFloat();
        QCOMPARE(Sum, 9.0);
        Ds->First();
        Ds->Edit();
        F->SetAsString(QStringLiteral("quiet"));
        Ds->Post();
        Ds->EnableControls();
        QCOMPARE(Link.Total(), Before);
        Ds->EnableControls();
        QCOMPARE(Link.NChanged, Changed + 1);
        QCOMPARE(Link.Total(), Before + 1);

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

    void fieldDataLinkFlushesOnPost()
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

    void bufferWindow()
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

    void lazyFetching()
    {
        TGeneratedDataSet Ds;
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

    void changeLog()
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

    // Each row gives back the value it was given, of its own type, however the column
    // keeps them: numbers of two types side by side, texts turning from Latin-1 to wider
    // ones within a block; and so again after half the rows are rewritten through the
    // field with the next value (which the field turns into its own type).
    void storedValuesKeepTheirType_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariantList>("values");
        const QVariant NullDouble(QMetaType::fromType<double>());
        QTest::newRow("doubles, whole values as integers")
            << int(ftFloat) << QVariantList{0.25, qlonglong(1), 2.5, qlonglong(-7), NullDouble};
        QTest::newRow("integers, some doubles") << int(ftLargeint) << QVariantList{qlonglong(3), qlonglong(1) << 40, 2.0};
        QTest::newRow("int and unsigned") << int(ftLargeint) << QVariantList{int(-1), uint(4000000000u)};
        QTest::newRow("three number types") << int(ftFloat) << QVariantList{1, 0.5, qlonglong(1) << 40};
        QTest::newRow("numbers and a text") << int(ftWideString) << QVariantList{1.5, qlonglong(2), QStringLiteral("3")};
        QTest::newRow("Latin-1, then Arabic")
            << int(ftWideString)
            << QVariantList{QStringLiteral("Item 1"), QStringLiteral("caf\u00e9 \u00ff"), QStringLiteral("\u062f\u0641\u062a\u0631"), QString()};
        QTest::newRow("Arabic first") << int(ftWideString)
                                      << QVariantList{QStringLiteral("\u062f\u0641\u062a\u0631"), QStringLiteral("abc"), QString(QLatin1String(""))};
        QTest::newRow("texts and nulls") << int(ftWideString) << QVariantList{QStringLiteral("x"), QVariant(QMetaType::fromType<QString>())};
    }
    void storedValuesKeepTheirType()
    {
        QFETCH(int, type);
        QFETCH(QVariantList, values);
        TCyclingDataSet Ds;
        Ds.Type = TFieldType(type);
        Ds.Values = values;
        Ds.Open();
        QCOMPARE(Ds.RecordCount(), Ds.Total);
        TField* V = Ds.Fields()[0];
        auto Check = [&](bool Rewritten) {
            int N = 0;
            for (Ds.First(); !Ds.Eof(); Ds.Next(), ++N) {
                QVariant Want = values[(N + (Rewritten && N < Ds.Total / 2 ? 1 : 0)) % values.size()];
                if (Rewritten && N < Ds.Total / 2 && !Want.isNull())
                    Want.convert(TField::ValueType(Ds.Type));
                const QVariant Got = Ds.Raw();
                const bool Same = Got.isNull() == Want.isNull() && (Got.isNull() || (Got.metaType() == Want.metaType() && Got == Want));
                if (!Same)
                    return QStringLiteral("row %1: %2 (%3) instead of %4 (%5)")
                        .arg(N).arg(Got.toString(), QString::fromLatin1(Got.typeName()), Want.toString(),
                                    QString::fromLatin1(Want.typeName()));
            }
            return QString();
        };
        QCOMPARE(Check(false), QString());
        Ds.First();
        for (int N = 0; N < Ds.Total / 2; ++N, Ds.Next()) {
            Ds.Edit();
            V->SetValue(values[(N + 1) % values.size()]);
            Ds.Post();
        }
        QCOMPARE(Check(true), QString());
    }

    void mixedValuesInOneColumn()
    {
        TGeneratedDataSet Ds;
        Ds.Total = 600;
        Ds.Open();
        QCOMPARE(Ds.RecordCount(), 600);
        TField* V = Ds.Fields()[1];
        TField* S = Ds.Fields()[2];
        for (int N = 0; !Ds.Eof(); ++N, Ds.Next()) {
            const QVariant Expected = TGeneratedDataSet::ValueOf(N);
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
};

QTEST_MAIN(TestDataSet)
#include "tst_dataset.moc"
