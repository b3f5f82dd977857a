// String routines of the run-time library.
#include "platform/rtl.h"

#include <QtTest>

using namespace Kesh;

class TestRtlStrings : public QObject
{
    Q_OBJECT

private slots:
    void trim_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("trimmed");
        QTest::newRow("blanks") << "  a b  " << "a b";
        QTest::newRow("control characters") << QString::fromUtf8("\t\r\n\x01x\x1f") << "x";
        QTest::newRow("DEL is not trimmed") << QString::fromUtf8("\x7f x \x7f") << QString::fromUtf8("\x7f x \x7f");
        QTest::newRow("NUL at both ends") << QString(QChar(0)) + "y" + QChar(0) << "y";
        QTest::newRow("only blanks") << " \t " << "";
        QTest::newRow("empty") << "" << "";
        QTest::newRow("no-break space stays") << QString(QChar(0xA0)) + "z" << QString(QChar(0xA0)) + "z";
        QTest::newRow("arabic") << QString::fromUtf8("  نعم ") << QString::fromUtf8("نعم");
        QTest::newRow("inner blanks stay") << "a  \t b" << "a  \t b";
    }
    void trim()
    {
        QFETCH(QString, text);
        QFETCH(QString, trimmed);
        QCOMPARE(Trim(text), trimmed);
    }
    void stringReplace_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("oldPattern");
        QTest::addColumn<QString>("newPattern");
        QTest::addColumn<int>("flags");
        QTest::addColumn<QString>("result");
        const int All = rfReplaceAll;
        const int Case = rfIgnoreCase;
        QTest::newRow("first only") << "a-b-c" << "-" << "+" << 0 << "a+b-c";
        QTest::newRow("all") << "a-b-c" << "-" << "+" << All << "a+b+c";
        QTest::newRow("case matters") << "Abc abc" << "abc" << "x" << 0 << "Abc x";
        QTest::newRow("ignore case, first") << "Abc abc" << "ABC" << "x" << Case << "x abc";
        QTest::newRow("ignore case, all") << "Abc aBC" << "abc" << "x" << (All | Case) << "x x";
        QTest::newRow("not found") << "abc" << "z" << "y" << All << "abc";
        QTest::newRow("empty pattern") << "abc" << "" << "y" << All << "abc";
        QTest::newRow("empty text") << "" << "a" << "b" << All << "";
        QTest::newRow("delete") << "a--b" << "-" << "" << All << "ab";
        QTest::newRow("replacement holds the pattern") << "aa" << "a" << "aa" << All << "aaaa";
        QTest::newRow("non-overlapping") << "aaa" << "aa" << "b" << All << "ba";
        QTest::newRow("arabic") << QString::fromUtf8("أحمد و أحمد") << QString::fromUtf8("أحمد") << QString::fromUtf8("علي") << All
                                << QString::fromUtf8("علي و علي");
        QTest::newRow("pattern at the end") << "abc" << "c" << "CC" << 0 << "abCC";
    }
    void stringReplace()
    {
        QFETCH(QString, text);
        QFETCH(QString, oldPattern);
        QFETCH(QString, newPattern);
        QFETCH(int, flags);
        QFETCH(QString, result);
        QCOMPARE(StringReplace(text, oldPattern, newPattern, TReplaceFlags(flags)), result);
    }
    void quotedStr_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("quoted");
        QTest::newRow("empty") << "" << "''";
        QTest::newRow("plain") << "Pen" << "'Pen'";
        QTest::newRow("inner quote doubled") << "O'Brien" << "'O''Brien'";
        QTest::newRow("only quotes") << "''" << "''''''";
        QTest::newRow("arabic") << "قلم" << "'قلم'";
    }
    void quotedStr()
    {
        QFETCH(QString, text);
        QFETCH(QString, quoted);
        QCOMPARE(QuotedStr(text), quoted);
    }
};

QTEST_GUILESS_MAIN(TestRtlStrings)
#include "tst_rtl_strings.moc"
