// Fuzzes the record browser's SQL from typed text: for any UTF-8 text, column type and
// database type, the quick search and the filter either refuse the text or put it into the
// statement as one quoted literal that reads back as the text, and nothing of it reaches
// the statement outside that literal.
#include <Kesh_AdoDB.h>

#include <QCoreApplication>
#include <QRegularExpression>

#include <cstddef>
#include <cstdio>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace Kesh;

// The text between the first quote after Start and its closing quote, with doubled quotes
// read as one; End is set after the closing quote (-1 when it never closes).
QString ReadLiteral(const QString& Sql, int Start, int& End)
{
    const int Open = Sql.indexOf(QLatin1Char('\''), Start);
    End = -1;
    if (Open < 0)
        return QString();
    QString Text;
    for (int i = Open + 1; i < Sql.size(); ++i) {
        if (Sql[i] != QLatin1Char('\'')) {
            Text += Sql[i];
        } else if (i + 1 < Sql.size() && Sql[i + 1] == QLatin1Char('\'')) {
            Text += QLatin1Char('\'');
            ++i;
        } else {
            End = i + 1;
            return Text;
        }
    }
    return Text;
}

QString Unescaped(QString Pattern, TxDatabaseType Type)
{
    // PostgreSQL's backslash is LIKE's escape: the browser doubles the backslashes typed.
    return Type == dtPostgreSQL ? Pattern.replace(QLatin1String("\\\\"), QLatin1String("\\")) : Pattern;
}

[[noreturn]] void Fail(const char* What, const QString& Input, const QString& Sql)
{
    std::fprintf(stderr, "%s\n  input: [%s]\n  sql:   [%s]\n", What, qUtf8Printable(Input), qUtf8Printable(Sql));
    abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    if (Size < 2)
        return 0;
    static const TFieldType Types[] = {ftWideString, ftString, ftInteger, ftSmallint, ftFloat, ftDateTime, ftBoolean};
    const TxDatabaseType Db = TxDatabaseType(Data[0] % 5);
    const TFieldType Type = Types[(Data[1] >> 1) % 7];
    const TxFieldClasses Class = TxFieldClasses(Data[1] % 3);
    const QString Input = QString::fromUtf8(reinterpret_cast<const char*>(Data + 2), int(Size - 2)).remove(QChar(0));

    TQxAdoBrowser B;
    B.SetDatabaseType(Db);
    B.SetSourceTables(QStringLiteral("T"));
    TQxAdoBrowserItem* Item = B.BrowserItems()->Add();
    Item->SetFieldName_e(QStringLiteral("C"));
    Item->SetFieldName_a(QStringLiteral("C"));
    Item->SetDataType(Type);
    Item->SetFieldClass(Class);

    // Quick search: one literal, the text and '%', and the statement goes on as built.
    if (!Input.isEmpty()) {
        const QString Sql = B.BuildQueryText(0, Input, QString(), false);
        const int Like = Sql.indexOf(QLatin1String(" Like "));
        int End = -1;
        if (Like < 0 || Unescaped(ReadLiteral(Sql, Like, End), Db) != Input + QLatin1Char('%') || End < 0
            || !Sql.mid(End).startsWith(QLatin1String(") ORDER BY")))
            Fail("search literal", Input, Sql);
    }

    // Filter: refused with a message, or a term whose value is a literal of the text, a
    // number, a date or a time.
    QString Error;
    const QString Term = B.FilterTerm(0, Input, false, &Error);
    if (Input.isEmpty() || !Error.isEmpty()) {
        if (!Term.isEmpty())
            Fail("refused with a term", Input, Term);
        return 0;
    }
    if (Term.contains(QLatin1String(" Like "))) {
        int End = -1;
        if (Unescaped(ReadLiteral(Term, 0, End), Db) != QLatin1Char('%') + Input + QLatin1Char('%') || End != Term.size() - 1)
            Fail("filter literal", Input, Term);
        return 0;
    }
    static const QRegularExpression Value(QStringLiteral(
        "^\\(C = ( *[+-]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eE][+-]?[0-9]+)? *|TRUE|FALSE|#[^#']*#|(DATE |TIMESTAMP )?'[0-9: -]+')\\)\\z"));
    if (!Value.match(Term).hasMatch())
        Fail("filter value", Input, Term);
    return 0;
}
