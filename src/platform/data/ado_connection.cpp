#include "ado_connection.h"
#include "ado_dataset.h"
#include "db_consts_p.h"
#include "server_cursor_p.h"
#include <QAtomicInt>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace Kesh {

using namespace DBConsts;

namespace {

QAtomicInt ConnectionCounter;

struct TConnectionPair
{
    QString Key;
    QString Value;
};

// "Key=Value;Key2='quoted;value'" into pairs; a doubled quote inside quotes is one quote.
QList<TConnectionPair> ParseConnectionString(const QString& Text)
{
    QList<TConnectionPair> Pairs;
    const int N = int(Text.size());
    int i = 0;
    while (i < N) {
        const int Eq = Text.indexOf(QLatin1Char('='), i);
        const int Semi = Text.indexOf(QLatin1Char(';'), i);
        if (Eq < 0 || (Semi >= 0 && Semi < Eq)) {
            if (!Text.mid(i, (Semi < 0 ? N : Semi) - i).trimmed().isEmpty())
                DatabaseError(QStringLiteral("Invalid connection string: '%1'").arg(Text));
            i = Semi < 0 ? N : Semi + 1;
            continue;
        }
        TConnectionPair P;
        P.Key = Text.mid(i, Eq - i).trimmed();
        i = Eq + 1;
        while (i < N && Text[i] == QLatin1Char(' '))
            ++i;
        if (i < N && (Text[i] == QLatin1Char('"') || Text[i] == QLatin1Char('\''))) {
            const QChar Q = Text[i++];
            while (i < N) {
                if (Text[i] == Q) {
                    if (i + 1 < N && Text[i + 1] == Q) {
                        P.Value += Q;
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                P.Value += Text[i++];
            }
            const int Next = Text.indexOf(QLatin1Char(';'), i);
            i = Next < 0 ? N : Next + 1;
        } else {
            const int Next = Text.indexOf(QLatin1Char(';'), i);
            P.Value = Text.mid(i, (Next < 0 ? N : Next) - i).trimmed();
            i = Next < 0 ? N : Next + 1;
        }
        if (P.Key.isEmpty())
            DatabaseError(QStringLiteral("Invalid connection string: '%1'").arg(Text));
        Pairs << P;
    }
    return Pairs;
}

bool KeyIs(const QString& Key, std::initializer_list<const char*> Names)
{
    for (const char* Name : Names)
        if (Key.compare(QLatin1String(Name), Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

} // namespace

class TADOConnectionPrivate
{
public:
    QString connectionString;
    QString connectionName;
    QSqlDatabase db;
    bool loginPrompt = false;
    bool inTransaction = false;
    bool hasCredentials = false;  // Open(UserID, Password) or OnLogin gave them
    QString userName;
    QString password;
    QList<TADODataSet*> dataSets;
    Detail::TCursorSession cursors;

    // The session ended: whatever cursors it had are gone.
    void ForgetCursors()
    {
        if (cursors.reading)
            cursors.reading->rolledBack = true;
        cursors.reading.reset();
        cursors.EndApplication(false);
    }
};

TADOConnection::TADOConnection(QObject* Owner) : QObject(Owner), d(new TADOConnectionPrivate)
{
    d->connectionName = QStringLiteral("Kesh.TADOConnection.%1").arg(ConnectionCounter.fetchAndAddRelaxed(1) + 1);
}

TADOConnection::~TADOConnection()
{
    const QList<TADODataSet*> DataSets = d->dataSets;
    for (TADODataSet* Ds : DataSets)
        Ds->ConnectionClosing();
    d->dataSets.clear();
    if (d->db.isValid()) {
        d->db.close();
        d->db = QSqlDatabase();
        QSqlDatabase::removeDatabase(d->connectionName);
    }
}

QString TADOConnection::ConnectionString() const { return d->connectionString; }

void TADOConnection::SetConnectionString(const QString& Value)
{
    if (Connected())
        DatabaseError(QStringLiteral("Cannot change the connection string of an open connection"));
    d->connectionString = Value;
}

bool TADOConnection::Connected() const { return d->db.isValid() && d->db.isOpen(); }

void TADOConnection::SetConnected(bool Value)
{
    if (Value == Connected())
        return;
    if (Value) {
        if (BeforeConnect)
            BeforeConnect(this);
        DoConnect();
        if (AfterConnect)
            AfterConnect(this);
    } else {
        if (BeforeDisconnect)
            BeforeDisconnect(this);
        DoDisconnect();
        if (AfterDisconnect)
            AfterDisconnect(this);
    }
}

void TADOConnection::Open() { SetConnected(true); }

void TADOConnection::Open(const QString& UserID, const QString& Password)
{
    if (Connected())
        return;
    d->userName = UserID;
    d->password = Password;
    d->hasCredentials = true;
    try {
        SetConnected(true);
    } catch (...) {
        d->hasCredentials = false;
        throw;
    }
    d->hasCredentials = false;
}

bool TADOConnection::LoginPrompt() const { return d->loginPrompt; }
void TADOConnection::SetLoginPrompt(bool Value) { d->loginPrompt = Value; }

void TADOConnection::DoConnect()
{
    const QList<TConnectionPair> Pairs = ParseConnectionString(d->connectionString);
    QString Driver, Database, Host, User, Password;
    int Port = -1;
    QStringList Options;
    for (const TConnectionPair& P : Pairs) {
        if (KeyIs(P.Key, {"Driver"}))
            Driver = P.Value;
        else if (KeyIs(P.Key, {"Database", "Data Source", "Initial Catalog", "DBQ"}))
            Database = P.Value;
        else if (KeyIs(P.Key, {"Host", "Server", "HostName"}))
            Host = P.Value;
        else if (KeyIs(P.Key, {"Port"})) {
            bool Ok = false;
            Port = P.Value.toInt(&Ok);
            if (!Ok)
                DatabaseError(QStringLiteral("Invalid port in the connection string: '%1'").arg(P.Value));
        } else if (KeyIs(P.Key, {"User", "User ID", "UID", "UserName"}))
            User = P.Value;
        else if (KeyIs(P.Key, {"Password", "PWD"}))
            Password = P.Value;
        else
            Options << P.Key + QLatin1Char('=') + P.Value;
    }
    if (Driver.isEmpty())
        DatabaseError(QStringLiteral("The connection string names no Driver"));
    if (d->db.isValid() && d->db.driverName() != Driver) {
        d->db = QSqlDatabase();
        QSqlDatabase::removeDatabase(d->connectionName);
    }
    if (!d->db.isValid()) {
        if (!QSqlDatabase::isDriverAvailable(Driver))
            DatabaseError(QStringLiteral("Driver not loaded: %1").arg(Driver));
        d->db = QSqlDatabase::addDatabase(Driver, d->connectionName);
    }
    if (d->hasCredentials) {
        User = d->userName;
        Password = d->password;
    } else if (d->loginPrompt && OnLogin) {
        OnLogin(this, User, Password);
    }
    d->db.setDatabaseName(Database);
    d->db.setHostName(Host);
    d->db.setPort(Port);
    d->db.setUserName(User);
    d->db.setPassword(Password);
    d->db.setConnectOptions(Options.join(QLatin1Char(';')));
    if (!d->db.open())
        RaiseSqlError(d->db.lastError());
    d->inTransaction = false;
    d->ForgetCursors();
}

void TADOConnection::DoDisconnect()
{
    const QList<TADODataSet*> DataSets = d->dataSets;
    for (TADODataSet* Ds : DataSets)
        if (d->dataSets.contains(Ds))
            Ds->Close();
    d->inTransaction = false;
    d->ForgetCursors();
    d->db.close();
}

void TADOConnection::RaiseSqlError(const QSqlError& Error, const QString& Context)
{
    QString Message = Error.databaseText().trimmed();
    if (Message.isEmpty())
        Message = Error.text().trimmed();
    if (Message.isEmpty())
        Message = QStringLiteral("Unknown database error");
    if (!Context.isEmpty())
        Message += QStringLiteral("\r\n") + Context;
    throw EDatabaseError(Message);
}

static void CheckConnected(const TADOConnection* C)
{
    if (!C->Connected())
        DatabaseError(QStringLiteral("Cannot perform this operation on a closed connection"));
}

int TADOConnection::Execute(const QString& CommandText, TCommandType CommandType)
{
    CheckConnected(this);
    if (CommandType != cmdText && CommandType != cmdUnknown)
        DatabaseError(QStringLiteral("Execute runs command text only"));
    FinishPendingFetches();
    QSqlQuery Query(d->db);
    if (!Query.exec(CommandText))
        RaiseSqlError(Query.lastError());
    const int Rows = Query.numRowsAffected();
    return Rows;
}

void TADOConnection::GetTableNames(QStringList& List, bool SystemTables)
{
    CheckConnected(this);
    List = d->db.tables(QSql::Tables) + d->db.tables(QSql::Views);
    if (SystemTables)
        List += d->db.tables(QSql::SystemTables);
}

void TADOConnection::GetFieldNames(const QString& TableName, QStringList& List)
{
    CheckConnected(this);
    List.clear();
    QSqlRecord Record = d->db.record(TableName);
    // Servers fold unquoted names (PostgreSQL to lower case, Oracle to upper case), but the
    // drivers look the name up as given.
    if (Record.isEmpty())
        Record = d->db.record(TableName.toLower());
    if (Record.isEmpty())
        Record = d->db.record(TableName.toUpper());
    for (int i = 0; i < Record.count(); ++i)
        List << Record.fieldName(i);
}

int TADOConnection::BeginTrans()
{
    CheckConnected(this);
    if (d->inTransaction)
        DatabaseError(QStringLiteral("Nested transactions are not supported"));
    FinishPendingFetches();
    if (!d->db.transaction())
        RaiseSqlError(d->db.lastError());
    d->inTransaction = true;
    d->cursors.application = std::make_shared<Detail::TCursorTransaction>();
    return 1;
}

void TADOConnection::CommitTrans()
{
    CheckConnected(this);
    FinishPendingFetches();
    if (!d->db.commit()) {
        d->cursors.EndApplication(false);
        RaiseSqlError(d->db.lastError());
    }
    d->inTransaction = false;
    d->cursors.EndApplication(true);
    d->ForgetCursors();
}

void TADOConnection::RollbackTrans()
{
    CheckConnected(this);
    FinishPendingFetches();
    // Cursors opened in the transaction go with it: their rows are read first.
    const QList<TADODataSet*> DataSets = d->dataSets;
    for (TADODataSet* Ds : DataSets) {
        try {
            if (d->dataSets.contains(Ds) && Ds->CursorInApplicationTransaction())
                Ds->FetchAll();
        } catch (const Exception&) {
            // Its next read reports the error again; the rollback must happen all the same.
        }
    }
    const bool Ok = d->db.rollback();
    d->cursors.EndApplication(false);
    if (!Ok)
        RaiseSqlError(d->db.lastError());
    d->inTransaction = false;
    d->ForgetCursors();
}

bool TADOConnection::InTransaction() const { return d->inTransaction; }

int TADOConnection::DataSetCount() const { return int(d->dataSets.size()); }
TADODataSet* TADOConnection::DataSets(int Index) const { return d->dataSets.value(Index); }
QSqlDatabase TADOConnection::Database() const { return d->db; }
QString TADOConnection::ConnectionName() const { return d->connectionName; }

void TADOConnection::AttachDataSet(TADODataSet* DataSet)
{
    if (!d->dataSets.contains(DataSet))
        d->dataSets.append(DataSet);
}

void TADOConnection::DetachDataSet(TADODataSet* DataSet) { d->dataSets.removeOne(DataSet); }

void TADOConnection::FinishPendingFetches(TADODataSet* Except)
{
    const QList<TADODataSet*> DataSets = d->dataSets;
    for (TADODataSet* Ds : DataSets)
        if (Ds != Except && d->dataSets.contains(Ds) && Ds->HasPendingFetch())
            Ds->FetchAll();
    d->cursors.EndReading(d->db, true);
}

Detail::TCursorSession& TADOConnection::CursorSession() const { return d->cursors; }

void TADOConnection::GuardRead(const std::function<void()>& Read)
{
    if (!d->cursors.reading || d->inTransaction) {
        Read();
        return;
    }
    QSqlQuery Q(d->db);
    if (!Q.exec(QStringLiteral("SAVEPOINT kesh_read")))
        RaiseSqlError(Q.lastError());
    // Released when Read went well; undone when one of its statements failed, raised or not.
    struct TRelease
    {
        QSqlQuery& Q;
        ~TRelease()
        {
            if (!Q.exec(QStringLiteral("RELEASE SAVEPOINT kesh_read")))
                Q.exec(QStringLiteral("ROLLBACK TO SAVEPOINT kesh_read; RELEASE SAVEPOINT kesh_read"));
        }
    } Release{Q};
    Read();
}

} // namespace Kesh
