// Bilingual string lists: sorting, duplicates, look-ups, misuse messages and the stored form.
#include "bilingual_strings.h"
#include "dialog_helper.h"
#include "platform/application.h"
#include "platform/exceptions.h"
#include "platform/filer.h"

#include <QSignalSpy>
#include <QtTest>

#include <limits>

using namespace Kesh;

namespace {

// The texts of the message forms the driver answered.
QStringList Shown(const KeshTest::DialogDriver& Driver)
{
    QStringList R;
    for (const KeshTest::DialogSeen& D : Driver.Seen)
        R << D.Text;
    return R;
}

// "ID:Arabic:English" per item, in list order.
QStringList Dump(const TxBiStrings& L)
{
    QStringList R;
    for (const TxBilingualItem& I : L.Items())
        R << QStringLiteral("%1:%2:%3").arg(I.ID).arg(I.StrArabic, I.StrEnglish);
    return R;
}

TxBiStrings Make(const QList<int>& IDs)
{
    TxBiStrings L;
    for (int ID : IDs)
        L.Add(ID, QStringLiteral("a%1").arg(ID), QStringLiteral("e%1").arg(ID), RaError);
    return L;
}

template <class T> QByteArray Streamed(const T& Value)
{
    QByteArray Data;
    QDataStream Out(&Data, QIODevice::WriteOnly);
    Out << Value;
    return Data;
}

QByteArray Stored(const std::function<void(TWriter&)>& Write)
{
    QByteArray Data;
    QDataStream Out(&Data, QIODevice::WriteOnly);
    TWriter W(Out);
    Write(W);
    return Data;
}

} // namespace

class TestBilingualStrings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void addKeepsTheListSortedByID_data()
    {
        QTest::addColumn<QList<int>>("added");
        QTest::addColumn<QList<int>>("order");
        QTest::newRow("3 1 2") << QList<int>{3, 1, 2} << QList<int>{1, 2, 3};
        QTest::newRow("descending") << QList<int>{9, 7, 5, 3} << QList<int>{3, 5, 7, 9};
        QTest::newRow("negative and zero") << QList<int>{0, -5, 7, -1} << QList<int>{-5, -1, 0, 7};
        QTest::newRow("extremes") << QList<int>{std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 0}
                                  << QList<int>{std::numeric_limits<int>::min(), 0, std::numeric_limits<int>::max()};
    }
    void addKeepsTheListSortedByID()
    {
        QFETCH(QList<int>, added);
        QFETCH(QList<int>, order);
        const TxBiStrings L = Make(added);
        QCOMPARE(L.Count(), order.size());
        for (int I = 0; I < order.size(); ++I) {
            QCOMPARE(L.GetBilingualItem(I).ID, order[I]);
            QCOMPARE(L.GetBilingualItem(I).StrArabic, QStringLiteral("a%1").arg(order[I]));
        }
    }

    void addWithADuplicateID_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<bool>("answerYes");
        QTest::addColumn<QStringList>("result");
        QTest::addColumn<bool>("aborted");
        QTest::addColumn<QStringList>("shown");
        const QStringList Unchanged{QStringLiteral("1:a1:e1"), QStringLiteral("2:a2:e2")};
        const QStringList Replaced{QStringLiteral("1:a1:e1"), QStringLiteral("2:x:y")};
        const QString Question =
            QStringLiteral("TxBiStrings.Add\r\nItem ID already exists. Do you want to replace existing item?");
        QTest::newRow("nothing replaces") << int(RaNothing) << true << Replaced << false << QStringList();
        QTest::newRow("abort keeps") << int(RaAbort) << true << Unchanged << false << QStringList();
        QTest::newRow("error") << int(RaError) << true << Unchanged << true
                               << QStringList{QStringLiteral("TxBiStrings.Add\r\nItem ID already exists.")};
        QTest::newRow("confirm yes") << int(RaConfirm) << true << Replaced << false << QStringList{Question};
        QTest::newRow("confirm no") << int(RaConfirm) << false << Unchanged << false << QStringList{Question};
        QTest::newRow("new id overwrites") << int(RaNewID) << true
                                           << QStringList{QStringLiteral("1:a1:e1"), QStringLiteral("3:x:y")} << false
                                           << QStringList();
    }
    void addWithADuplicateID()
    {
        QFETCH(int, action);
        QFETCH(bool, answerYes);
        QFETCH(QStringList, result);
        QFETCH(bool, aborted);
        QFETCH(QStringList, shown);
        TxBiStrings L = Make({1, 2});
        KeshTest::DialogDriver Driver;
        Driver.Click(action == RaConfirm ? (answerYes ? QStringLiteral("btnYes") : QStringLiteral("btnNo"))
                                         : QStringLiteral("btnOk"));
        bool Aborted = false;
        try {
            L.Add(2, QStringLiteral("x"), QStringLiteral("y"), TxBiStrReplaceActions(action));
        } catch (const EAbort&) {
            Aborted = true;
        }
        QCOMPARE(Aborted, aborted);
        QCOMPARE(Dump(L), result);
        QCOMPARE(Shown(Driver), shown);
        QVERIFY(Driver.Errors.isEmpty());
    }

    void addMayTakeCaptionsFromTheListItself()
    {
        TxBiStrings L = Make({1});
        const TxBilingualItem& First = L.Items().first();
        L.Add(2, First.StrArabic, First.StrEnglish, RaError);
        QCOMPARE(Dump(L), (QStringList{QStringLiteral("1:a1:e1"), QStringLiteral("2:a1:e1")}));
    }

    void getNextID_data()
    {
        QTest::addColumn<QList<int>>("ids");
        QTest::addColumn<int>("next");
        QTest::newRow("empty") << QList<int>{} << 1;
        QTest::newRow("1") << QList<int>{1} << 1;
        QTest::newRow("1 2 3") << QList<int>{1, 2, 3} << 3;
        QTest::newRow("2") << QList<int>{2} << 3;
        QTest::newRow("1 5") << QList<int>{1, 5} << 6;
        QTest::newRow("below one") << QList<int>{-3, 0} << 1;
        QTest::newRow("largest wraps") << QList<int>{std::numeric_limits<int>::max()} << std::numeric_limits<int>::min();
    }
    void getNextID()
    {
        QFETCH(QList<int>, ids);
        QFETCH(int, next);
        QCOMPARE(Make(ids).GetNextID(), next);
    }

    void deleteTakesAnID()
    {
        TxBiStrings L = Make({1, 2, 3});
        L.Delete(2);
        QCOMPARE(Dump(L), (QStringList{QStringLiteral("1:a1:e1"), QStringLiteral("3:a3:e3")}));
        L.Delete(3);
        L.Delete(1);
        QCOMPARE(L.Count(), 0);
    }

    // Each misuse shows its message, aborts silently and changes nothing.
    void misuseShowsItsMessageAndAborts_data()
    {
        QTest::addColumn<int>("call");
        QTest::addColumn<QString>("message");
        QTest::newRow("delete unknown") << 0 << QStringLiteral("Item (7) does not exist.");
        QTest::newRow("delete negative") << 1 << QStringLiteral("Item (-4) does not exist.");
        QTest::newRow("get unknown") << 2 << QStringLiteral("The item (9) does not exist.");
        QTest::newRow("item below range") << 3 << QStringLiteral("TxBiStrings.GetBilingualItem: item index out of range.");
        QTest::newRow("item past the end") << 4 << QStringLiteral("TxBiStrings.GetBilingualItem: item index out of range.");
        QTest::newRow("assign other type") << 5 << QStringLiteral("TxBiStrings.Assign: Incompatible source.");
        QTest::newRow("assign empty value") << 6 << QStringLiteral("TxBiStrings.Assign: Incompatible source.");
        QTest::newRow("exchange out of range") << 7 << QStringLiteral("TxBiStrings.Exchange: item index out of range.");
    }
    void misuseShowsItsMessageAndAborts()
    {
        QFETCH(int, call);
        QFETCH(QString, message);
        TxBiStrings L = Make({1, 2});
        const QStringList Before = Dump(L);
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        const std::function<void()> Calls[] = {
            [&] { L.Delete(7); },
            [&] { L.Delete(-4); },
            [&] { L.GetItem(9); },
            [&] { L.GetBilingualItem(-1); },
            [&] { L.GetBilingualItem(2); },
            [&] { L.Assign(QVariant(5)); },
            [&] { L.Assign(QVariant()); },
            [&] { L.Exchange(0, 2); },
        };
        QVERIFY_THROWS_EXCEPTION(EAbort, Calls[call]());
        QCOMPARE(Shown(Driver), QStringList{message});
        QVERIFY(Driver.Errors.isEmpty());
        QCOMPARE(Dump(L), Before);
    }

    void getItemFollowsTheLanguage_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("caption");
        QTest::newRow("left to right") << int(bdLeftToRight) << QStringLiteral("Yes");
        QTest::newRow("right to left") << int(bdRightToLeft) << QStringLiteral("نعم");
        QTest::newRow("reading only is English") << int(bdRightToLeftReadingOnly) << QStringLiteral("Yes");
    }
    void getItemFollowsTheLanguage()
    {
        QFETCH(int, mode);
        QFETCH(QString, caption);
        TxBiStrings L;
        L.Add(1, QStringLiteral("نعم"), QStringLiteral("Yes"), RaError);
        Application()->SetBiDiMode(TBiDiMode(mode));
        QCOMPARE(L.GetItem(1), caption);
    }

    void exchangeThenIndexOfAndSort()
    {
        TxBiStrings L = Make({1, 2, 3});
        L.Exchange(0, 2);
        QCOMPARE(L.GetBilingualItem(0).ID, 3);
        QCOMPARE(L.IndexOf(1), 2);
        QCOMPARE(L.IndexOf(3), 0);
        QCOMPARE(L.IndexOf(4), -1);
        L.Sort();
        QCOMPARE(Dump(L), Dump(Make({1, 2, 3})));
    }

    void assignCopiesItemByItem()
    {
        TxBiStrings Source = Make({1, 2, 3});
        Source.Add(2, QStringLiteral("x"), QStringLiteral("y"), RaNewID); // two items of ID 3 now
        QCOMPARE(Source.IndexOf(3), 1);
        TxBiStrings Target = Make({8, 9});
        Target.Assign(QVariant::fromValue(Source));
        // Adding with RaNothing: the later item of ID 3 replaces the captions of the first.
        QCOMPARE(Target.Count(), 2);
        QCOMPARE(Target.GetBilingualItem(0).ID, 1);
        QCOMPARE(Target.GetBilingualItem(1).ID, 3);
        QCOMPARE(Target.GetBilingualItem(1).StrEnglish, Source.GetBilingualItem(2).StrEnglish);
        Target.Assign(Target);
        QCOMPARE(Target.Count(), 2);
    }

    void streamRoundTrip_data()
    {
        QTest::addColumn<QList<int>>("ids");
        QTest::addColumn<QString>("arabic");
        QTest::newRow("empty list") << QList<int>{} << QString();
        QTest::newRow("arabic captions") << QList<int>{1, 2} << QStringLiteral("نعم، لا ١٢٣");
        QTest::newRow("negative ids") << QList<int>{-7, 0, std::numeric_limits<int>::max()} << QStringLiteral("x");
        QTest::newRow("empty captions") << QList<int>{5} << QString();
        QTest::newRow("long list") << [] { QList<int> R; for (int I = 0; I < 500; ++I) R << I * 3; return R; }()
                                   << QStringLiteral("بند");
    }
    void streamRoundTrip()
    {
        QFETCH(QList<int>, ids);
        QFETCH(QString, arabic);
        TxBiStrings L;
        for (int ID : ids)
            L.Add(ID, arabic + QString::number(ID), QStringLiteral("Item %1").arg(ID), RaError);
        TxBiStrings Read = Make({42}); // replaced, not merged
        QDataStream In(Streamed(L));
        In >> Read;
        QCOMPARE(Read, L);
        QVERIFY(In.atEnd());

        // Through a QVariant, as a stored property value.
        QVariant Back;
        QDataStream VariantIn(Streamed(QVariant::fromValue(L)));
        VariantIn >> Back;
        QCOMPARE(Back.value<TxBiStrings>(), L);
    }

    void streamedDuplicatesKeepTheFirst()
    {
        const QByteArray Data = Stored([](TWriter& W) {
            W.WriteListBegin();
            W.WriteInteger(3);
            for (auto [ID, Caption] : {std::pair{4, "first"}, std::pair{4, "second"}, std::pair{1, "one"}}) {
                W.WriteInteger(ID);
                W.WriteString(QString::fromLatin1(Caption));
                W.WriteString(QString::fromLatin1(Caption));
            }
            W.WriteListEnd();
        });
        TxBiStrings L;
        QDataStream In(Data);
        In >> L;
        QCOMPARE(Dump(L), (QStringList{QStringLiteral("1:one:one"), QStringLiteral("4:first:first")}));
    }

    void badStreamsRaiseAndChangeNothing_data()
    {
        QTest::addColumn<QByteArray>("data");
        const auto Item = [](TWriter& W, int ID) {
            W.WriteInteger(ID);
            W.WriteString(QStringLiteral("a"));
            W.WriteString(QStringLiteral("e"));
        };
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no list marker") << Stored([](TWriter& W) { W.WriteInteger(1); });
        QTest::newRow("unknown tag") << QByteArray("\x01\x63", 2);
        QTest::newRow("negative count") << Stored([](TWriter& W) { W.WriteListBegin(); W.WriteInteger(-1); W.WriteListEnd(); });
        QTest::newRow("count too large") << Stored([&](TWriter& W) {
            W.WriteListBegin(); W.WriteInteger(2); Item(W, 1); W.WriteListEnd(); });
        QTest::newRow("count too small") << Stored([&](TWriter& W) {
            W.WriteListBegin(); W.WriteInteger(1); Item(W, 1); Item(W, 2); W.WriteListEnd(); });
        QTest::newRow("huge count") << Stored([&](TWriter& W) {
            W.WriteListBegin(); W.WriteInteger(std::numeric_limits<int>::max()); Item(W, 1); });
        QTest::newRow("string where id") << Stored([](TWriter& W) {
            W.WriteListBegin(); W.WriteInteger(1); W.WriteString(QStringLiteral("1")); });
        QTest::newRow("forged string length") << Stored([](TWriter& W) {
            W.WriteListBegin(); W.WriteInteger(1); W.WriteInteger(1); }) + QByteArray("\x12\x7f\xff\xff\xf0" "ab", 7);
        QTest::newRow("odd string length") << Stored([](TWriter& W) {
            W.WriteListBegin(); W.WriteInteger(1); W.WriteInteger(1); }) + QByteArray("\x12\x00\x00\x00\x03" "abc", 8);
        QTest::newRow("missing list end") << Stored([&](TWriter& W) { W.WriteListBegin(); W.WriteInteger(1); Item(W, 1); });
    }
    void badStreamsRaiseAndChangeNothing()
    {
        QFETCH(QByteArray, data);
        TxBiStrings L = Make({1, 2});
        QDataStream In(data);
        QVERIFY_THROWS_EXCEPTION(EReadError, In >> L);
        QCOMPARE(L, Make({1, 2}));
    }

    // Every cut of a good stream is noticed.
    void everyTruncationRaises()
    {
        TxBiStrings L = Make({1, 2, 3});
        L.Add(4, QStringLiteral("عربي"), QStringLiteral("English"), RaError);
        const QByteArray Data = Streamed(L);
        for (int Cut = 0; Cut < Data.size(); ++Cut) {
            TxBiStrings Target = Make({9});
            QDataStream In(Data.left(Cut));
            QVERIFY_THROWS_EXCEPTION(EReadError, In >> Target);
            QCOMPARE(Target, Make({9}));
        }
    }

    void qxStringsCopiesAndHandsOutLines()
    {
        TQxStrings S;
        S.setObjectName(QStringLiteral("QxStrings1"));
        QSignalSpy Changed(&S, &TQxStrings::StringsChanged);
        QStringList Lines{QStringLiteral("one"), QStringLiteral("اثنان")};
        QVERIFY(S.setProperty("Strings", Lines));
        Lines[0] = QStringLiteral("changed");
        QCOMPARE(S.GetString(0), QStringLiteral("one"));
        QCOMPARE(S.GetString(1), QStringLiteral("اثنان"));
        S.SetStrings(S.Strings());
        QCOMPARE(Changed.count(), 1);

        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk")).Click(QStringLiteral("btnOk"));
        QVERIFY_THROWS_EXCEPTION(EAbort, S.GetString(2));
        QVERIFY_THROWS_EXCEPTION(EAbort, S.GetString(-1));
        QCOMPARE(Shown(Driver), QStringList(2, QStringLiteral("QxStrings1.GetString: Index out of range.")));
        QVERIFY(Driver.Errors.isEmpty());
    }
};

QTEST_MAIN(TestBilingualStrings)
#include "tst_bilingual_strings.moc"
