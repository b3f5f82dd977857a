#include "ado_dataset.h"
#include "ado_connection.h"
#include "db_consts_p.h"
#include "fields.h"
#include "server_cursor_p.h"
#include <QMetaEnum>
#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QSet>

namespace Kesh {

using namespace DBConsts;

namespace Detail {

// Text without its string literals and comments, so that keywords inside them do not count.
QString StripLiterals(const QString& Sql)
{
    QString R;
    R.reserve(Sql.size());
    const int N = int(Sql.size());
    for (int i = 0; i < N; ++i) {
        const QChar C = Sql[i];
        if (C == QLatin1Char('\'')) {
            ++i;
            while (i < N && !(Sql[i] == QLatin1Char('\'') && !(i + 1 < N && Sql[i + 1] == QLatin1Char('\''))))
                i += Sql[i] == QLatin1Char('\'') ? 2 : 1;
            R += QLatin1String("''");
        } else if (C == QLatin1Char('-') && i + 1 < N && Sql[i + 1] == QLatin1Char('-')) {
            while (i < N && Sql[i] != QLatin1Char('\n'))
                ++i;
            R += QLatin1Char(' ');
        } else if (C == QLatin1Char('/') && i + 1 < N && Sql[i + 1] == QLatin1Char('*')) {
            const int End = Sql.indexOf(QLatin1String("*/"), i + 2);
            i = End < 0 ? N : End + 1;
            R += QLatin1Char(' ');
        } else {
            R += C;
        }
    }
    return R;
}

} // namespace Detail

using Detail::StripLiterals;

namespace {

QString SInsufficientBaseTable() { return QStringLiteral("Insufficient base table information for updating or refreshing."); }

// The one table of "SELECT … FROM table [alias] [WHERE|ORDER|…]"; empty for joins,
// several tables or sub-queries.
QString SingleTableOf(const QString& Sql)
{
    const QString S = StripLiterals(Sql);
    static const QRegularExpression From(QStringLiteral("\\bFROM\\b"), QRegularExpression::CaseInsensitiveOption);
    if (S.count(From) != 1)
        return QString();
    static const QString Ident = QStringLiteral("(?:\"[^\"]+\"|\\[[^\\]]+\\]|`[^`]+`|[A-Za-z_][\\w$]*)");
    static const QString Stop = QStringLiteral("WHERE|ORDER|GROUP|HAVING|LIMIT|OFFSET|FOR|WINDOW|UNION|FETCH");
    static const QRegularExpression Table(
        QStringLiteral("\\bFROM\\s+(%1(?:\\.%1)?)(?:\\s+(?:AS\\s+)?(?!(?:%2)\\b)[A-Za-z_]\\w*)?\\s*(?:$|;|\\b(?:%2)\\b)")
            .arg(Ident, Stop),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch M = Table.match(S);
    return M.hasMatch() ? M.captured(1) : QString();
}

// A table name as the catalog holds it: without quotes, and without a "main." schema; empty
// for a table of another schema.
QString CatalogName(const QString& Table)
{
    static const QRegularExpression Part(QStringLiteral("^(?:(\"[^\"]+\"|\\[[^\\]]+\\]|`[^`]+`|[^.\"`\\[]+)\\.)?"
                                                        "(\"[^\"]+\"|\\[[^\\]]+\\]|`[^`]+`|[^.\"`\\[]+)$"));
    const QRegularExpressionMatch M = Part.match(Table.trimmed());
    if (!M.hasMatch())
        return QString();
    auto Bare = [](QString N) {
        const bool Quoted = N.size() >= 2 && QStringLiteral("\"[`").contains(N.front());
        return Quoted ? N.mid(1, N.size() - 2) : N.trimmed();
    };
    const QString Schema = Bare(M.captured(1));
    if (!Schema.isEmpty() && Schema.compare(QLatin1String("main"), Qt::CaseInsensitive) != 0)
        return QString();
    return Bare(M.captured(2));
}

// One text per key, the same for a value read from the server and one posted by the
// dataset (5 and 5.0 and "5" alike), so that rows can be recognised by key.
template <typename TValueOf>
QString RowKey(const QVector<int>& Columns, TValueOf ValueOf)
{
    QString Key;
    for (int c : Columns) {
        const QVariant V = ValueOf(c);
        const QString Text = V.isNull() ? QString() : V.metaType().id() == QMetaType::QByteArray
                                                          ? QString::fromLatin1(V.toByteArray().toHex())
                                                          : V.toString();
        Key += (V.isNull() ? QStringLiteral("-") : QString::number(Text.size())) + QLatin1Char(':') + Text;
    }
    return Key;
}

// SQLite: whether a SELECT of the plain table Table alone (Select) can go on being read
// across writes of single rows of it, that is whether such a write changes no other row of
// it (no trigger, no key referring to the table itself, not a view). RowidKey: the key is
// the table's INTEGER PRIMARY KEY, whose value every insert gives back.
bool SQLiteReadsOnAcrossWrites(const QSqlDatabase& Db, const QString& Table, const QString& Select, bool& RowidKey)
{
    RowidKey = false;
    const QString Name = CatalogName(Table);
    if (Name.isEmpty() || CatalogName(SingleTableOf(Select)).compare(Name, Qt::CaseInsensitive) != 0)
        return false;
    QSqlQuery Q(Db);
    Q.setForwardOnly(true);
    const QString Sql = QStringLiteral(
        "SELECT (SELECT sql FROM sqlite_master WHERE type = 'table' AND name = ? COLLATE NOCASE),"
        " (SELECT COUNT(*) FROM sqlite_master WHERE type = 'trigger' AND tbl_name = ? COLLATE NOCASE),"
        " (SELECT COUNT(*) FROM pragma_foreign_key_list(?) WHERE \"table\" = ? COLLATE NOCASE),"
        " (SELECT group_concat(upper(type)) FROM pragma_table_info(?) WHERE pk > 0)");
    if (!Q.prepare(Sql))
        return false;
    for (int i = 0; i < 5; ++i)
        Q.addBindValue(Name);
    if (!Q.exec() || !Q.next() || Q.value(0).isNull() || Q.value(1).toInt() != 0 || Q.value(2).toInt() != 0)
        return false;
    static const QRegularExpression WithoutRowid(QStringLiteral("\\bWITHOUT\\s+ROWID\\b"), QRegularExpression::CaseInsensitiveOption);
    RowidKey = Q.value(3).toString() == QLatin1String("INTEGER") && !StripLiterals(Q.value(0).toString()).contains(WithoutRowid);
    return true;
}

} // namespace

class TADODataSetPrivate
{
public:
    TADOConnection* connection = nullptr;
    QString commandText;
    TCommandType commandType = cmdText;
    bool paramCheck = true;
    TParameters parameters;
    TCursorLocation cursorLocation = clUseClient;
    TCursorType cursorType = ctKeyset;
    TLockType lockType = ltOptimistic;
    QString uniqueTable;
    QPointer<TADODataSet> cloneSource;

    std::unique_ptr<QSqlQuery> query;
    std::unique_ptr<Detail::TServerCursor> cursor;  // PostgreSQL: read instead of query
    std::function<QString(const QString&, QVariantMap&, bool&)> selectWrap;
    bool pending = false;      // the query still has rows to read
    bool forwardOnly = false;  // the query holds the server's cursor (so writes must wait)
    // Keys of the rows this dataset wrote while its SQLite SELECT was still being read:
    // the SELECT may deliver them again (see TWriteMeta::readsOnAcrossWrites).
    QSet<QString> written;
    QVector<int> writtenKeys;  // the columns of those keys

    // What Post and Delete need, read at the first write (a look-up never pays for it).
    struct TWriteMeta
    {
        QString baseTable;       // as the driver should see it
        QSqlRecord baseRecord;   // the table's columns
        QVector<int> baseIndex;  // per dataset column: its column in baseRecord, or -1
        QVector<int> keyColumns; // dataset columns that find a row
        // SQLite: the dataset's own writes may run while its SELECT is still being read.
        // SQLite lets them, but the rest of the SELECT may or may not show the rows they
        // touched; only those rows (found by the table's primary key) are then skipped,
        // which needs a plain table read alone, whose writes change no other of its rows.
        bool readsOnAcrossWrites = false;
        bool rowidKey = false;   // the key is the table's INTEGER PRIMARY KEY (known after an insert)
    };
    std::unique_ptr<TWriteMeta> meta;

    QSqlDatabase Db() const { return connection->Database(); }
    bool IsPostgres() const { return Db().driver() && Db().driver()->dbmsType() == QSqlDriver::PostgreSQL; }
    bool IsSQLite() const { return Db().driver() && Db().driver()->dbmsType() == QSqlDriver::SQLite; }
    void ResetMeta() { meta.reset(); }
};

TFieldType TADODataSet::FieldTypeOf(const QSqlField& F)
{
    switch (F.metaType().id()) {
    case QMetaType::Bool: return ftBoolean;
    case QMetaType::Short: case QMetaType::Char: case QMetaType::SChar: return ftSmallint;
    case QMetaType::UShort: case QMetaType::UChar: return ftWord;
    case QMetaType::Int: return ftInteger;
    case QMetaType::UInt: case QMetaType::Long: case QMetaType::ULong: case QMetaType::LongLong:
    case QMetaType::ULongLong: return ftLargeint;
    case QMetaType::Double: case QMetaType::Float: return ftFloat;
    case QMetaType::QDate: return ftDate;
    case QMetaType::QTime: return ftTime;
    case QMetaType::QDateTime: return ftDateTime;
    case QMetaType::QByteArray: return ftBlob;
    case QMetaType::QUuid: return ftGuid;
    default: return ftWideString;
    }
}

TADODataSet::TADODataSet(QObject* Owner) : TDataSet(Owner), d(new TADODataSetPrivate) {}

TADODataSet::~TADODataSet()
{
    CloseSilently();
    if (d->connection)
        d->connection->DetachDataSet(this);
}

TADOConnection* TADODataSet::Connection() const { return d->connection; }

void TADODataSet::SetConnection(TADOConnection* Value)
{
    if (Value == d->connection)
        return;
    Close();
    if (d->connection)
        d->connection->DetachDataSet(this);
    d->connection = Value;
    if (d->connection)
        d->connection->AttachDataSet(this);
}

void TADODataSet::ConnectionClosing()
{
    CloseSilently();
    d->connection = nullptr;
}

QString TADODataSet::CommandText() const { return d->commandText; }

void TADODataSet::SetCommandText(const QString& Value)
{
    if (Value == d->commandText)
        return;
    Close();
    d->commandText = Value;
    d->cloneSource = nullptr;
    if (d->paramCheck)
        d->parameters.Refresh(d->commandType == cmdText || d->commandType == cmdUnknown ? Value : QString());
}

TCommandType TADODataSet::CommandType() const { return d->commandType; }

void TADODataSet::SetCommandType(TCommandType Value)
{
    if (Value == d->commandType)
        return;
    Close();
    d->commandType = Value;
    if (d->paramCheck)
        d->parameters.Refresh(Value == cmdText || Value == cmdUnknown ? d->commandText : QString());
}

bool TADODataSet::ParamCheck() const { return d->paramCheck; }

void TADODataSet::SetParamCheck(bool Value)
{
    d->paramCheck = Value;
    if (Value)
        d->parameters.Refresh(d->commandType == cmdText || d->commandType == cmdUnknown ? d->commandText : QString());
}

TParameters* TADODataSet::Parameters() const { return &d->parameters; }
TCursorLocation TADODataSet::CursorLocation() const { return d->cursorLocation; }
void TADODataSet::SetCursorLocation(TCursorLocation Value) { d->cursorLocation = Value; }
TCursorType TADODataSet::CursorType() const { return d->cursorType; }
void TADODataSet::SetCursorType(TCursorType Value) { d->cursorType = Value; }
TLockType TADODataSet::LockType() const { return d->lockType; }
void TADODataSet::SetLockType(TLockType Value) { d->lockType = Value; }
QString TADODataSet::UniqueTable() const { return d->uniqueTable; }

void TADODataSet::SetUniqueTable(const QString& Value)
{
    d->uniqueTable = Value;
    d->ResetMeta();
}

bool TADODataSet::CanModify() const { return Active() && d->lockType != ltReadOnly; }

QString TADODataSet::SelectText() const
{
    switch (d->commandType) {
    case cmdTable: case cmdTableDirect:
        return QStringLiteral("SELECT * FROM ") + d->commandText;
    case cmdText: case cmdUnknown:
        return d->commandText;
    default:
        DatabaseError(QStringLiteral("CommandType %1 is not supported")
                          .arg(QString::fromLatin1(QMetaEnum::fromType<TCommandType>().valueToKey(d->commandType))));
    }
}

void TADODataSet::Clone(TADODataSet* Source, TLockType LockType)
{
    if (!Source || !Source->Active())
        DatabaseError(SDataSetClosed());
    Close();
    SetConnection(Source->Connection());
    d->commandText = Source->d->commandText;
    d->commandType = Source->d->commandType;
    d->paramCheck = Source->d->paramCheck;
    d->parameters.Clear();
    for (int i = 0; i < Source->d->parameters.Count(); ++i)
        *d->parameters.AddParameter(QString()) = *Source->d->parameters.Items(i);
    d->uniqueTable = Source->d->uniqueTable;
    d->lockType = LockType == ltUnspecified ? Source->d->lockType : LockType;
    d->cloneSource = Source;
    Open();
}

// ---- reading

void TADODataSet::InternalOpen()
{
    d->ResetMeta();
    d->written.clear();
    d->writtenKeys.clear();
    if (d->cloneSource) {
        ShareRowsWith(d->cloneSource);
        return;
    }
    if (!d->connection)
        DatabaseError(QStringLiteral("Missing Connection or ConnectionString"));
    if (!d->connection->Connected())
        d->connection->Open();
    // Semicolons that end the text would make a second, empty statement.
    static const QRegularExpression Trailing(QStringLiteral("[\\s;]+$"));
    const QString Sql = SelectText().remove(Trailing);
    if (Sql.isEmpty())
        DatabaseError(QStringLiteral("CommandText does not return a result set"));

    d->forwardOnly = false;
    QVariantMap Binds;
    bool UseCursor = true;
    const QString Run = d->selectWrap ? d->selectWrap(Sql, Binds, UseCursor) : Sql;
    // Values to bind make a prepared statement: a cursor is declared from text.
    if (!UseCursor || !Binds.isEmpty() || !OpenCursor(Run))
        OpenQuery(Run, Binds);
    d->pending = true;

    TFieldDefs& Defs = FieldDefsRef();
    Defs.Clear();
    const QSqlRecord Record = d->cursor ? d->cursor->Block().record() : d->query->record();
    for (int i = 0; i < Record.count(); ++i) {
        const QSqlField F = Record.field(i);
        TFieldDef Def;
        Def.Name = F.name().isEmpty() ? QStringLiteral("Column%1").arg(i + 1) : F.name();
        for (int n = 1; Defs.IndexOf(Def.Name) >= 0; ++n)
            Def.Name = F.name() + QLatin1Char('_') + QString::number(n);
        Def.DataType = FieldTypeOf(F);
        if (Def.DataType == ftWideString && F.length() > 0)
            Def.Size = F.length();
        Def.Precision = std::max(F.precision(), 0);
        Def.AutoValue = F.isAutoValue();
        Defs.Append(Def);
    }
}

int TADODataSet::InternalFetch(int MaxRows)
{
    QSqlQuery* Q = d->cursor ? &d->cursor->Block() : d->query.get();
    if (!Q || !d->pending)
        return 0;
    const int Columns = FieldDefs().Count();
    int Got = 0;
    for (;;) {
        while (Got < MaxRows && Q->next()) {
            if (!d->written.isEmpty() && d->written.contains(RowKey(d->writtenKeys, [Q](int c) { return Q->value(c); })))
                continue;  // already in the rows, as this dataset wrote it
            BeginFetchedRow();
            for (int c = 0; c < Columns; ++c)
                SetFetchedValue(c, Q->value(c));
            ++Got;
        }
        if (Got == MaxRows || !d->cursor || !d->cursor->More())
            break;
        try {
            d->cursor->FetchNext(MaxRows - Got);
        } catch (...) {
            d->cursor.reset();
            d->pending = false;
            throw;
        }
    }
    if (Got < MaxRows) {
        const QSqlError Error = Q->lastError();
        d->query.reset();  // finishes the statement: an unfinished SELECT blocks writers
        d->cursor.reset();
        d->pending = false;
        if (Error.isValid())
            TADOConnection::RaiseSqlError(Error);
    }
    return Got;
}

// The statement's rows from a QSqlQuery: forward-only where the driver streams them.
void TADODataSet::SetSelectWrap(TSelectWrap Wrap) { d->selectWrap = std::move(Wrap); }

void TADODataSet::OpenQuery(const QString& Sql, const QVariantMap& Binds)
{
    d->query = std::make_unique<QSqlQuery>(d->Db());
    // PostgreSQL's forward-only mode streams rows over the connection and loses them when
    // another statement runs there; its buffered result is read lazily all the same.
    d->forwardOnly = !d->IsPostgres();
    d->query->setForwardOnly(d->forwardOnly);
    bool Ok;
    const bool WithParameters = d->paramCheck && d->parameters.Count() > 0;
    if (WithParameters || !Binds.isEmpty()) {
        Ok = d->query->prepare(Sql);
        if (Ok) {
            for (int i = 0; WithParameters && i < d->parameters.Count(); ++i) {
                const TParameter* P = d->parameters.Items(i);
                const QMetaType Type = TField::ValueType(P->DataType);
                d->query->bindValue(QLatin1Char(':') + P->Name,
                                    P->Value.isValid() ? P->Value : QVariant(Type.isValid() ? Type : QMetaType::fromType<QString>()));
            }
            for (auto B = Binds.cbegin(); B != Binds.cend(); ++B)
                d->query->bindValue(QLatin1Char(':') + B.key(), B.value());
            Ok = d->query->exec();
        }
    } else {
        Ok = d->query->exec(Sql);
    }
    if (!Ok) {
        const QSqlError Error = d->query->lastError();
        d->query.reset();
        TADOConnection::RaiseSqlError(Error);
    }
    if (!d->query->isSelect()) {
        d->query.reset();
        DatabaseError(QStringLiteral("CommandText does not return a result set"));
    }
}

bool TADODataSet::HasPendingFetch() const { return Active() && d->pending && d->forwardOnly; }

bool TADODataSet::CursorInApplicationTransaction() const
{
    return Active() && d->pending && d->cursor && d->cursor->InApplicationTransaction();
}

// PostgreSQL: one query is read through a server-side cursor; false for what is not.
bool TADODataSet::OpenCursor(const QString& Sql)
{
    if (!d->IsPostgres())
        return false;
    const QString Text = d->paramCheck && d->parameters.Count() > 0 ? WithParameterLiterals(Sql) : Sql;
    if (!Detail::TServerCursor::Suits(StripLiterals(Text)))
        return false;
    auto Cursor = std::make_unique<Detail::TServerCursor>(d->connection);
    Cursor->Open(Text, std::min(FetchBlockSize(), 64));
    d->cursor = std::move(Cursor);
    return true;
}

// A cursor is declared from text: the values go in as the driver quotes them, as Qt's own
// PostgreSQL driver sends the values of a prepared statement.
QString TADODataSet::WithParameterLiterals(const QString& Sql) const
{
    const QSqlDriver* Driver = d->Db().driver();
    return TParameters::Substitute(Sql, [&](const QString& Name) {
        const TParameter* P = d->parameters.FindParam(Name);
        const bool Given = P && P->Value.isValid() && !P->Value.isNull();
        QSqlField F(Name, Given ? P->Value.metaType() : QMetaType::fromType<QString>());
        if (Given)
            F.setValue(P->Value);
        return Driver->formatValue(F);
    });
}

void TADODataSet::InternalClose()
{
    d->cursor.reset();
    d->query.reset();
    d->pending = false;
    d->written.clear();
    d->writtenKeys.clear();
    d->ResetMeta();
}

void TADODataSet::InternalRefresh()
{
    InternalClose();
    InternalOpen();
    if (!d->cloneSource)
        ResetRows();
}

QStringList TADODataSet::RefreshKeyFields() const
{
    QStringList Names;
    try {
        auto* Self = const_cast<TADODataSet*>(this);
        if (!d->connection || !d->connection->Connected())
            return Names;
        Self->EnsureWriteMeta();
        for (int Column : std::as_const(d->meta->keyColumns))
            Names << FieldDefs()[Column].Name;
    } catch (const Exception&) {
        Names.clear();  // no base table: Refresh keeps the position by number
    }
    return Names;
}

// ---- writing

QString TADODataSet::BaseTableName() const
{
    if (!d->uniqueTable.isEmpty())
        return d->uniqueTable;
    return d->commandType == cmdTable || d->commandType == cmdTableDirect ? d->commandText.trimmed()
                                                                          : SingleTableOf(d->commandText);
}

void TADODataSet::EnsureWriteMeta()
{
    if (d->meta)
        return;
    if (!d->connection || !d->connection->Connected())
        DatabaseError(QStringLiteral("Cannot perform this operation on a closed connection"));
    QString Table = BaseTableName();
    if (Table.isEmpty())
        DatabaseError(SInsufficientBaseTable());
    QSqlDriver* Driver = d->Db().driver();
    // PostgreSQL folds unquoted names to lower case; the driver quotes what it is given.
    if (d->IsPostgres() && !Table.contains(QLatin1Char('"')))
        Table = Table.toLower();
    const QSqlRecord Record = d->Db().record(Table);
    if (Record.isEmpty())
        DatabaseError(SInsufficientBaseTable());
    const TFieldDefs& Defs = FieldDefs();
    QVector<int> BaseIndex(Defs.Count(), -1);
    for (int c = 0; c < Defs.Count(); ++c)
        BaseIndex[c] = Record.indexOf(Defs[c].Name);
    QVector<int> Keys;
    const QSqlIndex Primary = d->Db().primaryIndex(Table);
    bool ReadsOn = false, RowidKey = false;
    for (int k = 0; k < Primary.count(); ++k) {
        const int Column = Defs.IndexOf(Primary.fieldName(k));
        if (Column < 0) {
            Keys.clear();
            break;  // the key is not selected: fall back on every column
        }
        Keys << Column;
    }
    if (!Keys.isEmpty() && d->IsSQLite())
        ReadsOn = SQLiteReadsOnAcrossWrites(d->Db(), Table, SelectText(), RowidKey);
    if (Keys.isEmpty()) {
        for (int c = 0; c < Defs.Count(); ++c) {
            const TFieldType T = Defs[c].DataType;
            if (BaseIndex[c] >= 0 && T != ftBlob && T != ftFloat && T != ftMemo)
                Keys << c;
        }
    }
    if (Keys.isEmpty())
        DatabaseError(SInsufficientBaseTable());
    Q_UNUSED(Driver);
    auto Meta = std::make_unique<TADODataSetPrivate::TWriteMeta>();
    Meta->baseTable = Table;
    Meta->baseRecord = Record;
    Meta->baseIndex = BaseIndex;
    Meta->keyColumns = Keys;
    Meta->readsOnAcrossWrites = ReadsOn;
    Meta->rowidKey = RowidKey;
    d->meta = std::move(Meta);
}

namespace {

// Appends the WHERE values that sqlStatement turned into placeholders (nulls became IS NULL).
void BindWhere(QSqlQuery& Q, const QSqlRecord& Where)
{
    for (int i = 0; i < Where.count(); ++i)
        if (!Where.isNull(i))
            Q.addBindValue(Where.value(i));
}

} // namespace

QSqlRecord TADODataSet::WhereRecord(const TRecordValues& OldValues, const QBitArray* Changed) const
{
    QSqlRecord Where;
    QVector<int> Columns = d->meta->keyColumns;
    if (Changed)
        for (int c = 0; c < Changed->size(); ++c)
            if (Changed->testBit(c) && d->meta->baseIndex[c] >= 0 && !Columns.contains(c)
                && FieldDefs()[c].DataType != ftBlob)
                Columns << c;
    for (int c : std::as_const(Columns)) {
        QSqlField F = d->meta->baseRecord.field(d->meta->baseIndex[c]);
        F.setValue(OldValues.value(c));
        Where.append(F);
    }
    return Where;
}

// Readies the connection for a write of one row. The dataset's own unfinished SQLite SELECT
// goes on where it can (see TWriteMeta::readsOnAcrossWrites): reading its million rows
// first would make the first Post of a big table wait seconds. An insert also needs its
// key known once written (NewValues), to be recognised should the SELECT bring it.
void TADODataSet::PrepareWrite(const TRecordValues* NewValues)
{
    CheckCanModify();
    EnsureWriteMeta();
    bool ReadOn = d->pending && d->forwardOnly && d->meta->readsOnAcrossWrites;
    if (ReadOn && NewValues && !d->meta->rowidKey)
        for (int c : std::as_const(d->meta->keyColumns))
            ReadOn = ReadOn && !NewValues->value(c).isNull();
    d->connection->FinishPendingFetches(ReadOn ? this : nullptr);
}

void TADODataSet::RememberWritten(const TRecordValues& Values)
{
    if (!d->pending || !d->forwardOnly)
        return;
    d->writtenKeys = d->meta->keyColumns;
    d->written.insert(RowKey(d->writtenKeys, [&Values](int c) { return Values.value(c); }));
}

void TADODataSet::ApplyUpdate(const TRecordValues& OldValues, TRecordValues& NewValues, const QBitArray& Changed)
{
    PrepareWrite();
    QSqlRecord Set;
    for (int c = 0; c < Changed.size(); ++c) {
        if (!Changed.testBit(c) || d->meta->baseIndex[c] < 0)
            continue;
        QSqlField F = d->meta->baseRecord.field(d->meta->baseIndex[c]);
        F.setValue(NewValues[c]);
        Set.append(F);
    }
    if (Set.isEmpty())
        return;
    RememberWritten(OldValues);
    RememberWritten(NewValues);
    const QSqlRecord Where = WhereRecord(OldValues, &Changed);
    QSqlDriver* Driver = d->Db().driver();
    const QString Sql = Driver->sqlStatement(QSqlDriver::UpdateStatement, d->meta->baseTable, Set, true) + QLatin1Char(' ')
                        + Driver->sqlStatement(QSqlDriver::WhereStatement, d->meta->baseTable, Where, true);
    QSqlQuery Q(d->Db());
    if (!Q.prepare(Sql))
        TADOConnection::RaiseSqlError(Q.lastError());
    for (int i = 0; i < Set.count(); ++i)
        Q.addBindValue(Set.value(i));
    BindWhere(Q, Where);
    if (!Q.exec())
        TADOConnection::RaiseSqlError(Q.lastError());
    if (Q.numRowsAffected() == 0)
        DatabaseError(SRowNotLocated());
}

void TADODataSet::ApplyDelete(const TRecordValues& OldValues)
{
    PrepareWrite();
    RememberWritten(OldValues);
    const QSqlRecord Where = WhereRecord(OldValues, nullptr);
    QSqlDriver* Driver = d->Db().driver();
    const QString Sql = Driver->sqlStatement(QSqlDriver::DeleteStatement, d->meta->baseTable, QSqlRecord(), true)
                        + QLatin1Char(' ') + Driver->sqlStatement(QSqlDriver::WhereStatement, d->meta->baseTable, Where, true);
    QSqlQuery Q(d->Db());
    if (!Q.prepare(Sql))
        TADOConnection::RaiseSqlError(Q.lastError());
    BindWhere(Q, Where);
    if (!Q.exec())
        TADOConnection::RaiseSqlError(Q.lastError());
    if (Q.numRowsAffected() == 0)
        DatabaseError(SRowNotLocated());
}

void TADODataSet::ApplyInsert(TRecordValues& Values)
{
    PrepareWrite(&Values);
    // Whatever happens after the row is in, the SELECT must not bring it a second time.
    struct TRemember
    {
        TADODataSet* Self;
        TRecordValues& Values;
        bool Inserted = false;
        ~TRemember()
        {
            if (Inserted)
                Self->RememberWritten(Values);
        }
    } Remember{this, Values};
    // Only the values given: the server fills the rest (keys, defaults).
    QSqlRecord Insert;
    for (int c = 0; c < Values.size(); ++c) {
        if (d->meta->baseIndex[c] < 0 || Values[c].isNull())
            continue;
        QSqlField F = d->meta->baseRecord.field(d->meta->baseIndex[c]);
        F.setValue(Values[c]);
        Insert.append(F);
    }
    QSqlDriver* Driver = d->Db().driver();
    QString Sql = Insert.isEmpty()
                      ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(Driver->escapeIdentifier(d->meta->baseTable, QSqlDriver::TableName))
                      : Driver->sqlStatement(QSqlDriver::InsertStatement, d->meta->baseTable, Insert, true);
    const bool Returning = d->IsPostgres();
    if (Returning)
        Sql += QStringLiteral(" RETURNING *");
    QSqlQuery Q(d->Db());
    if (!Q.prepare(Sql))
        TADOConnection::RaiseSqlError(Q.lastError());
    for (int i = 0; i < Insert.count(); ++i)
        Q.addBindValue(Insert.value(i));
    if (!Q.exec())
        TADOConnection::RaiseSqlError(Q.lastError());
    Remember.Inserted = true;

    if (Returning) {
        if (Q.next())
            ReadBackRow(Q, Values);
        return;
    }
    // Elsewhere the new key comes from lastInsertId; the row is then read again for defaults.
    const QVariant NewId = Q.lastInsertId();
    const QSqlIndex Primary = d->Db().primaryIndex(d->meta->baseTable);
    QSqlRecord Where;
    if (Primary.count() == 1 && d->meta->keyColumns.size() == 1 && NewId.isValid()
        && Values[d->meta->keyColumns[0]].isNull()) {
        Values[d->meta->keyColumns[0]] = NewId;
    }
    if (Primary.count() > 0 && Primary.count() == d->meta->keyColumns.size()) {
        for (int c : std::as_const(d->meta->keyColumns)) {
            if (Values[c].isNull())
                return;  // a key we cannot know: keep the values as posted
            QSqlField F = d->meta->baseRecord.field(d->meta->baseIndex[c]);
            F.setValue(Values[c]);
            Where.append(F);
        }
    }
    QString Select;
    if (!Where.isEmpty()) {
        Select = Driver->sqlStatement(QSqlDriver::SelectStatement, d->meta->baseTable, d->meta->baseRecord, false) + QLatin1Char(' ')
                 + Driver->sqlStatement(QSqlDriver::WhereStatement, d->meta->baseTable, Where, true);
    } else if (Driver->dbmsType() == QSqlDriver::SQLite && NewId.isValid()) {
        Select = Driver->sqlStatement(QSqlDriver::SelectStatement, d->meta->baseTable, d->meta->baseRecord, false)
                 + QStringLiteral(" WHERE rowid = ?");
        Where.append(QSqlField(QStringLiteral("rowid")));
        Where.setValue(0, NewId);
    } else {
        return;
    }
    QSqlQuery R(d->Db());
    R.setForwardOnly(true);
    if (R.prepare(Select)) {
        BindWhere(R, Where);
        if (R.exec() && R.next())
            ReadBackRow(R, Values);
    }
}

void TADODataSet::ReadBackRow(const QSqlQuery& Query, TRecordValues& Values) const
{
    const QSqlRecord Record = Query.record();
    const TFieldDefs& Defs = FieldDefs();
    for (int c = 0; c < Defs.Count() && c < Values.size(); ++c) {
        if (d->meta->baseIndex[c] < 0)
            continue;
        const int i = Record.indexOf(d->meta->baseRecord.fieldName(d->meta->baseIndex[c]));
        if (i >= 0)
            Values[c] = Query.value(i);
    }
}

// ---- TADOQuery

TADOQuery::TADOQuery(QObject* Owner) : TADODataSet(Owner) {}
TADOQuery::~TADOQuery() = default;

QStringList TADOQuery::SQL() const
{
    return CommandText().isEmpty() ? QStringList() : CommandText().split(QLatin1Char('\n'));
}

void TADOQuery::SetSQL(const QStringList& Value) { SetCommandText(Value.join(QLatin1Char('\n'))); }

int TADOQuery::ExecSQL()
{
    TADOConnection* C = Connection();
    if (!C)
        DatabaseError(QStringLiteral("Missing Connection or ConnectionString"));
    if (!C->Connected())
        C->Open();
    const QString Sql = SelectText();
    if (Sql.trimmed().isEmpty())
        DatabaseError(QStringLiteral("No SQL statement available"));
    C->FinishPendingFetches();
    QSqlQuery Q(C->Database());
    bool Ok;
    if (ParamCheck() && Parameters()->Count() > 0) {
        Ok = Q.prepare(Sql);
        for (int i = 0; Ok && i < Parameters()->Count(); ++i) {
            const TParameter* P = Parameters()->Items(i);
            Q.bindValue(QLatin1Char(':') + P->Name, P->Value);
        }
        Ok = Ok && Q.exec();
    } else {
        Ok = Q.exec(Sql);
    }
    if (!Ok)
        TADOConnection::RaiseSqlError(Q.lastError());
    return Q.numRowsAffected();
}

// ---- TADOTable

TADOTable::TADOTable(QObject* Owner) : TADODataSet(Owner) { SetCommandType(cmdTable); }
TADOTable::~TADOTable() = default;

} // namespace Kesh
