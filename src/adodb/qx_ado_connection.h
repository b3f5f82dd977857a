// Kesh for Qt — TQxAdoConnection: the application's connection with one-line data helpers.
#pragma once
#include "platform/application.h"
#include "platform/data/ado_connection.h"
#include "platform/data/ado_dataset.h"
#include <QVariant>
#include <QVector>

namespace Kesh {

class TADODataSet;

/// The enumeration lives in its own namespace only so that moc can register it; it reads
/// as Kesh::dtOracle.
namespace AdoTypes {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// Row-limit syntax of the record browser: none, "SELECT TOP 30", "WHERE (RowNum <= 30)",
/// and "LIMIT 30" after the ORDER BY for SQLite and PostgreSQL.
enum TxDatabaseType { dtUnknown, dtSqlServer, dtOracle, dtSQLite, dtPostgreSQL };
Q_ENUM_NS(TxDatabaseType)
} // namespace AdoTypes
using namespace AdoTypes;

/// A TADOConnection with domain helpers (DLookup, DCount, DMax, DMin, DSum, GetNextID,
/// NameLookup, Exec, OpenRecordSet), catalogue questions and a `Settings` table.
///
/// The helpers pass the caller's table names, field expressions and criteria to the
/// server as they stand: criteria are ready SQL conditions. They never raise database
/// errors: a failing helper keeps the message in ErrorMessage() and returns its empty
/// result. On a closed connection every helper returns its empty result at once.
class KESH_EXPORT TQxAdoConnection : public TADOConnection
{
    Q_OBJECT
    Q_PROPERTY(int TotalUsers READ TotalUsers)
    Q_PROPERTY(bool Connected READ Connected WRITE SetConnected)
    Q_PROPERTY(Kesh::TADODataSet* _Settings READ GetSettings)
    Q_PROPERTY(QString ErrorMessage READ ErrorMessage)

public:
    explicit TQxAdoConnection(QObject* Owner = nullptr);
    ~TQxAdoConnection() override;

    /// Opening an open connection counts one more user.
    void Open() override;
    void Open(const QString& UserID, const QString& Password) override;
    void SetConnected(bool Value) override;

    /// First field of the first row of "Select FieldName From TableName Where (Criteria)";
    /// 0 when there is no row or the value is null (and on an error).
    QVariant DLookup(const QString& TableName, const QString& FieldName, const QString& Criteria);
    /// The first row of SQL into Values (whose size the caller sets); false for no row.
    bool DLookup(const QString& SQL, QVector<QVariant>& Values);
    int DCount(const QString& TableName, const QString& Criteria);
    QVariant DMax(const QString& TableName, const QString& FieldName, const QString& Criteria);
    QVariant DMin(const QString& TableName, const QString& FieldName, const QString& Criteria);
    /// The sum, or the text "0" when there is nothing to sum.
    QVariant DSum(const QString& TableName, const QString& FieldName, const QString& Criteria);
    /// Proposes the next key: the maximum plus one; a text key steps its last character.
    QVariant GetNextID(const QString& TableName, const QString& FieldName, const QString& Criteria);
    /// The Arabic or English name of the row; empty when there is none.
    QString NameLookup(const QString& TableName, const QString& Criteria, TBiDiMode BiDiMode,
                       const QString& ArabicField = QStringLiteral("Name_a"),
                       const QString& EnglishField = QStringLiteral("Name_e"));
    /// Runs the statements of SQL separated by ';'; false at the first failing one.
    bool Exec(const QString& SQL);
    /// An open dataset on SQL that the caller frees; nullptr on an error.
    TADODataSet* OpenRecordSet(const QString& SQL, bool Readonly);
    bool TableExists(const QString& TableName);
    bool FieldExists(const QString& TableName, const QString& FieldName);

    /// Opens the `Settings` table once; it stays open while the connection is.
    void OpenSettingsTable();
    /// The stored text of a setting; a setting read for the first time is written with PDefault.
    QVariant ReadSetting(int Setting_id, const QVariant& PDefault);
    void SaveSetting(int Setting_id, const QString& SettingName, const QVariant& Value);

    /// How many parts of the application asked for the open connection.
    int TotalUsers() const { return m_totalUsers; }
    /// The message of the last error a helper caught.
    QString ErrorMessage() const { return m_errorMessage; }
    TADODataSet* GetSettings() const { return m_settings; }

protected:
    void DoConnect() override;
    void DoDisconnect() override;

private:
    QVariant Aggregate(const QString& Function, const QString& Alias, const QString& TableName,
                       const QString& FieldName, const QString& Criteria);
    TADODataSet* m_settings = nullptr;
    int m_totalUsers = 0;
    bool m_opening = false;
    QString m_errorMessage;
};

} // namespace Kesh
