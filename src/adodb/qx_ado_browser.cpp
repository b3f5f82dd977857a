#include "qx_ado_browser.h"
#include "KeshForm_AdoBrowser.h"
#include "core/conversions.h"
#include "core/integer_dates.h"
#include "core/integer_times.h"
#include "core/messages.h"
#include "platform/data/ado_dataset.h"
#include "platform/data/fields.h"
#include "platform/exceptions.h"
#include "platform/rtl/datetime.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlField>

namespace Kesh {

// ---------------------------------------------------------------------------------------------
// TQxAdoBrowserItem

TQxAdoBrowserItem::TQxAdoBrowserItem(TQxAdoBrowserCollection* Collection)
    : QObject(Collection), m_collection(Collection)
{
}

TQxAdoBrowserItem::~TQxAdoBrowserItem()
{
    if (m_collection)
        m_collection->m_items.removeOne(this);
}

void TQxAdoBrowserItem::SetFieldName_a(const QString& Value)
{
    m_field_a = Value;
    if (m_caption_a.isEmpty() || Value.isEmpty())
        m_caption_a = Value;
    if (m_width == 0)
        m_width = 10;
}

void TQxAdoBrowserItem::SetFieldName_e(const QString& Value)
{
    m_field_e = Value;
    if (m_caption_e.isEmpty() || Value.isEmpty())
        m_caption_e = Value;
    if (m_width == 0)
        m_width = 10;
}

QString TQxAdoBrowserItem::QualifiedName(bool RightToLeft) const
{
    const QString Name = FieldName(RightToLeft);
    return m_sourceTable.isEmpty() || Name.isEmpty() ? Name : m_sourceTable + QLatin1Char('.') + Name;
}

QString TQxAdoBrowserItem::GetDisplayName()
{
    if (m_field_a.isEmpty())
        m_field_a = m_field_e;
    if (m_field_e.isEmpty())
        m_field_e = m_field_a;
    const QString Name = BiStr(m_field_a, m_field_e);
    return Name.isEmpty() ? QStringLiteral("TQxAdoBrowserItem") : Name;
}

TQxAdoBrowser* TQxAdoBrowserItem::Browser() const
{
    return m_collection ? m_collection->Browser() : nullptr;
}

int TQxAdoBrowserItem::Index() const
{
    return m_collection ? int(m_collection->m_items.indexOf(const_cast<TQxAdoBrowserItem*>(this))) : -1;
}

void TQxAdoBrowserItem::Assign(const TQxAdoBrowserItem& Source)
{
    m_sourceTable = Source.m_sourceTable;
    m_width = Source.m_width;
    m_dataType = Source.m_dataType;
    m_class = Source.m_class;
    m_caption_a = Source.m_caption_a;
    m_caption_e = Source.m_caption_e;
    m_field_a = Source.m_field_a;
    m_field_e = Source.m_field_e;
}

// ---------------------------------------------------------------------------------------------
// TQxAdoBrowserCollection

TQxAdoBrowserCollection::TQxAdoBrowserCollection(TQxAdoBrowser* Browser) : m_browser(Browser) {}

TQxAdoBrowserCollection::~TQxAdoBrowserCollection()
{
    Clear();
}

TQxAdoBrowserItem* TQxAdoBrowserCollection::Add()
{
    auto* Item = new TQxAdoBrowserItem(this);
    m_items.append(Item);
    return Item;
}

TQxAdoBrowserItem* TQxAdoBrowserCollection::Items(int Index) const
{
    return Index >= 0 && Index < m_items.size() ? m_items[Index] : nullptr;
}

void TQxAdoBrowserCollection::SetItems(int Index, const TQxAdoBrowserItem& Value)
{
    if (TQxAdoBrowserItem* Item = Items(Index))
        Item->Assign(Value);
}

int TQxAdoBrowserCollection::GetItemIndex(const QString& Name) const
{
    for (int i = 0; i < m_items.size(); ++i)
        if (m_items[i]->GetFieldName_a().compare(Name, Qt::CaseInsensitive) == 0
            || m_items[i]->GetFieldName_e().compare(Name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

void TQxAdoBrowserCollection::Delete(int Index)
{
    delete Items(Index);  // the item's destructor takes it out of the list
}

void TQxAdoBrowserCollection::Clear()
{
    while (!m_items.isEmpty())
        delete m_items.takeLast();
}

// ---------------------------------------------------------------------------------------------
// TQxAdoBrowser

namespace {

bool IsTextType(TFieldType Type)
{
    switch (Type) {
    case ftString: case ftFixedChar: case ftWideString: case ftFixedWideChar:
    case ftMemo: case ftWideMemo: case ftFmtMemo:
        return true;
    default:
        return false;
    }
}

// A plain decimal number, as SQL reads it: nothing else may follow "Qty = ".
bool IsSqlNumber(const QString& Text)
{
    static const QRegularExpression Number(
        QStringLiteral("\\A *[+-]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eE][+-]?[0-9]+)? *\\z"));
    return Number.match(Text).hasMatch();
}

QString ColumnTitle(const TQxAdoBrowserItem* Item, bool RightToLeft)
{
    const QString Title = RightToLeft ? Item->GetCaption_a() : Item->GetCaption_e();
    return Title.isEmpty() ? Item->FieldName(RightToLeft) : Title;
}

// Day, month and year and nothing else, in the separators AsDate reads.
bool IsDateText(const QString& Text)
{
    static const QRegularExpression Date(QStringLiteral("\\A *[0-9]{1,2}[-./:\\\\][0-9]{1,2}[-./:\\\\][0-9]{1,4} *\\z"));
    return Date.match(Text).hasMatch();
}

// A real day of its calendar: 31-2-2024 and 30-2-1445 are refused.
bool IsRealDate(int D)
{
    if (!IsDate(D))
        return false;
    return IsHijri(D) ? GetDay(D) <= 30 : QDate::isValid(GetYear(D), GetMonth(D), GetDay(D));
}

enum class TBadValue { Number, Date, Time };

QString BadValueMessage(TBadValue Kind, const QString& Title, bool RightToLeft)
{
    static const char* const English[] = {"a valid number", "a valid date", "a valid time"};
    static const char16_t* const Arabic[] = {u"رقماً صحيحاً", u"تاريخاً صحيحاً", u"وقتاً صحيحاً"};
    const int k = int(Kind);
    if (RightToLeft)
        return QStringLiteral("القيمة المدخلة في [%1] ليست %2.").arg(Title, QString::fromUtf16(Arabic[k]));
    return QStringLiteral("The value entered in [%1] is not %2.").arg(Title, QLatin1String(English[k]));
}

} // namespace

TQxAdoBrowser::TQxAdoBrowser(QObject* Owner)
    : QObject(Owner), m_items(new TQxAdoBrowserCollection(this))
{
}

TQxAdoBrowser::~TQxAdoBrowser() = default;

QString TQxAdoBrowser::BuildSqlSelect() const
{
    return BuildSqlSelect(Application()->BiDiMode() == bdRightToLeft);
}

QString TQxAdoBrowser::BuildSqlSelect(bool RightToLeft) const
{
    QStringList Names;
    for (int i = 0; i < m_items->Count(); ++i) {
        const QString Name = m_items->Items(i)->QualifiedName(RightToLeft);
        if (!Name.isEmpty())
            Names << Name;
    }
    const QString List = Names.isEmpty() ? QStringLiteral("*") : Names.join(QLatin1String(", "));
    return QStringLiteral("SELECT ") + List + QStringLiteral(" FROM ") + m_sourceTables;
}

void TQxAdoBrowser::AdjustDataTypes()
{
    if (!m_connection)
        return;
    const bool RightToLeft = Application()->BiDiMode() == bdRightToLeft;
    std::unique_ptr<TADODataSet> Set(
        m_connection->OpenRecordSet(BuildSqlSelect(RightToLeft) + QStringLiteral(" WHERE 1=2"), true));
    if (!Set)
        return;  // the reason is in the connection's ErrorMessage
    // Columns without a name in this language are not selected: field j follows the named ones.
    int j = 0;
    for (int i = 0; i < m_items->Count(); ++i) {
        TQxAdoBrowserItem* Item = m_items->Items(i);
        if (Item->FieldName(RightToLeft).isEmpty())
            continue;
        if (Item->GetFieldClass() == fcStandard && j < Set->FieldCount())
            Item->SetDataType(Set->Fields()[j]->DataType());
        ++j;
    }
}

bool TQxAdoBrowser::ShowBrowser()
{
    if (m_items->Count() == 0)
        RaiseError(objectName() + QStringLiteral("\r\nNo fields has been defined in the browser."));
    if (!m_connection)
        RaiseError(objectName() + QStringLiteral("\r\nNo connection assigned."));
    m_connection->Open();
    AdjustDataTypes();
    TAdoBrowserForm Form(nullptr, this);
    const bool Picked = Form.exec() == 1;
    if (Picked)
        for (int i = 0; i < m_items->Count(); ++i)
            m_items->Items(i)->SetValue(Form.ItemValue(i));
    return Picked;
}

QString TQxAdoBrowser::LikeText(const QString& Text) const
{
    // PostgreSQL reads a backslash in a LIKE pattern as its escape character: doubled, the
    // backslash the user typed is matched as itself, while % and _ stay wildcards.
    if (m_dbType != dtPostgreSQL)
        return Text;
    QString Escaped = Text;
    return Escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
}

bool TQxAdoBrowser::IsTextColumn(const TQxAdoBrowserItem* Item) const
{
    return Item->GetFieldClass() == fcStandard && IsTextType(Item->GetDataType());
}

QString TQxAdoBrowser::QuoteText(const QString& Text) const
{
    QString Clean = Text;
    Clean.remove(QChar(0));  // no server takes a NUL inside a literal
    if (m_connection && m_connection->Connected()) {
        const QSqlDatabase Db = m_connection->Database();
        if (const QSqlDriver* Driver = Db.driver()) {
            QSqlField Field{QString(), QMetaType(QMetaType::QString)};
            Field.setValue(Clean);
            return Driver->formatValue(Field);
        }
    }
    Clean.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + Clean + QLatin1Char('\'');
}

QString TQxAdoBrowser::BuildQueryText(int SortIndex, const QString& Search, const QString& CustomFilter,
                                      bool RightToLeft) const
{
    QString W;
    if (m_dbType == dtOracle)
        W = QStringLiteral(" WHERE (RowNum <= 30) ");
    const TQxAdoBrowserItem* SortItem = m_items->Items(SortIndex);
    const QString S = SortItem ? SortItem->QualifiedName(RightToLeft) : QString();
    const bool SortsText = SortItem && IsTextColumn(SortItem);
    const auto Append = [&W](const QString& Condition) {
        if (!W.isEmpty())
            W += QStringLiteral(" AND ");
        W += Condition;
    };
    if (!Search.isEmpty() && !S.isEmpty()) {
        // PostgreSQL has no LIKE on numbers or dates: those are searched in their text form.
        const QString Column = m_dbType == dtPostgreSQL && !SortsText
            ? QStringLiteral("CAST(") + S + QStringLiteral(" AS TEXT)") : S;
        Append(QLatin1Char('(') + Column + QStringLiteral(" Like ") + QuoteText(LikeText(Search) + QLatin1Char('%'))
               + QLatin1Char(')'));
    }
    if (!m_criteria.isEmpty())
        Append(m_criteria);
    if (!CustomFilter.isEmpty())
        Append(CustomFilter);
    if (m_dbType != dtOracle && !W.isEmpty())
        W = QStringLiteral(" WHERE ") + W;

    QString Text = BuildSqlSelect(RightToLeft) + W;
    if (!S.isEmpty()) {
        Text += QStringLiteral(" ORDER BY ") + S;
        // The pattern operator class orders by code points, as the LIKE range it serves does:
        // one index gives both the prefix range and the order, so LIMIT stops after 30 rows.
        if (m_dbType == dtPostgreSQL && SortsText)
            Text += QStringLiteral(" USING ~<~");
    }
    switch (m_dbType) {
    case dtSqlServer: {
        const int At = Text.indexOf(QLatin1String("SELECT"));
        if (At >= 0)
            Text.replace(At, 6, QStringLiteral("SELECT TOP 30"));
        break;
    }
    case dtSQLite:
    case dtPostgreSQL:
        Text += QStringLiteral(" LIMIT 30");
        break;
    default:
        break;
    }
    return Text;
}

QString TQxAdoBrowser::DateTimeLiteral(const QString& Input, QString* Error) const
{
    QDateTime When;
    bool HasTime = false;
    int D = AsDate(Input);
    if (IsDateText(Input) && IsRealDate(D)) {
        if (IsHijri(D))
            D = ConvertDate(D);
        When = QDateTime(QDate(GetYear(D), GetMonth(D), GetDay(D)), QTime(0, 0));
    } else {
        TDateTime Value = 0;
        if (!TryStrToDateTime(Input, Value)) {
            *Error = QStringLiteral("date");
            return QString();
        }
        When = DateTimeToQDateTime(Value);
        HasTime = When.time() != QTime(0, 0);
    }
    if (!When.isValid()) {
        *Error = QStringLiteral("date");
        return QString();
    }
    const QString Date = When.date().toString(QStringLiteral("yyyy-MM-dd"));
    const QString Stamp = Date + When.time().toString(QStringLiteral(" HH:mm:ss"));
    switch (m_dbType) {
    case dtSQLite:
        return QLatin1Char('\'') + (HasTime ? Stamp : Date) + QLatin1Char('\'');
    case dtPostgreSQL:
        return HasTime ? QStringLiteral("TIMESTAMP '") + Stamp + QLatin1Char('\'')
                       : QStringLiteral("DATE '") + Date + QLatin1Char('\'');
    default: {
        // Written from the date read, never from the typed text: d-m-yyyy as typed normally.
        QString Text = QStringLiteral("%1-%2-%3").arg(When.date().day()).arg(When.date().month()).arg(When.date().year());
        if (HasTime)
            Text += When.time().toString(QStringLiteral(" H:mm:ss"));
        return QLatin1Char('#') + Text + QLatin1Char('#');
    }
    }
}

QString TQxAdoBrowser::FilterTerm(int Index, const QString& Input, bool RightToLeft, QString* Error) const
{
    QString Ignored;
    if (!Error)
        Error = &Ignored;
    Error->clear();
    const TQxAdoBrowserItem* Item = m_items->Items(Index);
    if (!Item || Input.isEmpty())
        return QString();
    const QString C = QLatin1Char('(') + Item->QualifiedName(RightToLeft);
    const TFieldType Type = Item->GetDataType();
    const TxFieldClasses Class = Item->GetFieldClass();
    const auto Refuse = [&](TBadValue Kind) {
        *Error = BadValueMessage(Kind, ColumnTitle(Item, RightToLeft), RightToLeft);
        return QString();
    };

    if (Type == ftString || Type == ftFixedChar || Type == ftWideString || IsTextColumn(Item))
        return C + QStringLiteral(" Like ") + QuoteText(QLatin1Char('%') + LikeText(Input) + QLatin1Char('%'))
            + QLatin1Char(')');
    if (Type == ftSmallint && Class == fcTime) {
        const int T = StringToTime(Input);
        if (T < 0 || T / 100 > 23 || T % 100 > 59)
            return Refuse(TBadValue::Time);
        return C + QStringLiteral(" = ") + QString::number(T) + QLatin1Char(')');
    }
    if (Type == ftInteger && Class == fcDate) {
        const int D = AsDate(Input);
        if (!IsDateText(Input) || !IsRealDate(D))
            return Refuse(TBadValue::Date);
        return C + QStringLiteral(" = ") + QString::number(D) + QLatin1Char(')');
    }
    if (Type == ftDateTime || Type == ftDate || Type == ftTimeStamp || Type == ftOraTimeStamp) {
        QString Bad;
        const QString Literal = DateTimeLiteral(Input, &Bad);
        if (!Bad.isEmpty())
            return Refuse(TBadValue::Date);
        return C + QStringLiteral(" = ") + Literal + QLatin1Char(')');
    }
    if (!IsSqlNumber(Input))
        return Refuse(TBadValue::Number);
    if (Type == ftBoolean && m_dbType == dtPostgreSQL)  // its booleans are no numbers
        return C + QStringLiteral(" = ") + (Input.toDouble() != 0 ? QStringLiteral("TRUE") : QStringLiteral("FALSE"))
            + QLatin1Char(')');
    return C + QStringLiteral(" = ") + Input + QLatin1Char(')');
}

} // namespace Kesh
