#include "qx_ado_connection.h"

#include "conversions.h"
#include "log_file.h"
#include "messages.h"
#include "platform/data/ado_dataset.h"
#include "platform/data/fields.h"
#include "platform/exceptions.h"
#include "platform/rtl/strings.h"

#include <QScopedValueRollback>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <memory>

namespace Kesh {

TQxAdoConnection::TQxAdoConnection(QObject* Owner) : TADOConnection(Owner) {}

TQxAdoConnection::~TQxAdoConnection() = default;

void TQxAdoConnection::Open()
{
    if (Connected())
        ++m_totalUsers;
    const QScopedValueRollback<bool> Guard(m_opening, true);
    TADOConnection::Open();
}

void TQxAdoConnection::Open(const QString& UserID, const QString& Password)
{
    if (Connected())
        ++m_totalUsers;
    const QScopedValueRollback<bool> Guard(m_opening, true);
    TADOConnection::Open(UserID, Password);
}

void TQxAdoConnection::SetConnected(bool Value)
{
    // Open counts for itself when it routes through here.
    if (Value && Connected() && !m_opening)
        ++m_totalUsers;
    TADOConnection::SetConnected(Value);
}

void TQxAdoConnection::DoConnect()
{
    TADOConnection::DoConnect();
    ++m_totalUsers;
}

void TQxAdoConnection::DoDisconnect()
{
    TADOConnection::DoDisconnect();
    m_totalUsers = qMax(0, m_totalUsers - 1);
}

QVariant TQxAdoConnection::DLookup(const QString& TableName, const QString& FieldName, const QString& Criteria)
{
    if (!Connected())
        return QVariant();
    QString Text = QStringLiteral("Select ") + FieldName + QStringLiteral(" From ") + TableName;
    if (!Trim(Criteria).isEmpty())
        Text += QStringLiteral(" Where (") + Criteria + QLatin1Char(')');
    // One value of one row: read it straight from a forward-only query, as the first field
    // of a query dataset would show it, without building the dataset and its fields.
    QVariant Result(0);
    try {
        // A typing error in Criteria must not stop the datasets reading on this connection.
        GuardRead([&] {
            QSqlQuery Query(Database());
            Query.setForwardOnly(true);
            if (!Query.exec(Text))
                RaiseSqlError(Query.lastError());
            if (!Query.isSelect())
                throw EDatabaseError(QStringLiteral("CommandText does not return a result set"));
            if (Query.next()) {
                const QVariant Raw = Query.value(0);
                if (Raw.isValid() && !Raw.isNull())
                    Result = TField::ValueOf(TADODataSet::FieldTypeOf(Query.record().field(0)), Raw);
            } else if (Query.lastError().isValid()) {
                RaiseSqlError(Query.lastError());
            }
        });
    } catch (const Exception& E) {
        m_errorMessage = E.Message;
    }
    return Result;
}

bool TQxAdoConnection::DLookup(const QString& SQL, QVector<QVariant>& Values)
{
    Values.fill(QVariant());
    std::unique_ptr<TADODataSet> Set(OpenRecordSet(SQL, true));
    if (!Set)
        return false;
    bool Result = false;
    if (!Set->IsEmpty()) {
        if (Set->FieldCount() == Values.size()) {
            for (int I = 0; I < Values.size(); ++I)
                Values[I] = Set->Fields().at(I)->Value();
            Result = true;
        } else {
            ShowError(QStringLiteral("DLookup: number of fields not the same as output array."));
        }
    }
    return Result;
}

QVariant TQxAdoConnection::Aggregate(const QString& Function, const QString& Alias, const QString& TableName,
                                     const QString& FieldName, const QString& Criteria)
{
    return DLookup(TableName, Function + QStringLiteral(" (") + FieldName + QStringLiteral(") As ") + Alias, Criteria);
}

int TQxAdoConnection::DCount(const QString& TableName, const QString& Criteria)
{
    return DLookup(TableName, QStringLiteral("Count (*) As The_Total_Count"), Criteria).toInt();
}

QVariant TQxAdoConnection::DMax(const QString& TableName, const QString& FieldName, const QString& Criteria)
{
    return Aggregate(QStringLiteral("Max"), QStringLiteral("The_Max_Value"), TableName, FieldName, Criteria);
}

QVariant TQxAdoConnection::DMin(const QString& TableName, const QString& FieldName, const QString& Criteria)
{
    return Aggregate(QStringLiteral("Min"), QStringLiteral("The_Min_Value"), TableName, FieldName, Criteria);
}

QVariant TQxAdoConnection::DSum(const QString& TableName, const QString& FieldName, const QString& Criteria)
{
    if (!Connected())
        return QVariant();
    const QVariant Result = Aggregate(QStringLiteral("Sum"), QStringLiteral("The_Sum_Amount"), TableName, FieldName, Criteria);
    return AsString(Result).isEmpty() ? QVariant(QStringLiteral("0")) : Result;
}

namespace {

// Steps only the last character: "A7" → "A8", "A9" → "A10", "19" → "110", "B" → "B1".
QString NextTextKey(QString S)
{
    const QChar C = S.isEmpty() ? QChar() : S.back();
    if (C < QLatin1Char('0') || C > QLatin1Char('9'))
        return S + QLatin1Char('1');
    if (C == QLatin1Char('9')) {
        S.back() = QLatin1Char('1');
        return S + QLatin1Char('0');
    }
    S.back() = QChar(C.unicode() + 1);
    return S;
}

} // namespace

QVariant TQxAdoConnection::GetNextID(const QString& TableName, const QString& FieldName, const QString& Criteria)
{
    if (!Connected())
        return QVariant();
    QVariant Result;
    try {
        auto Set = std::make_unique<TADODataSet>(this);
        Set->SetConnection(this);
        Set->SetCommandText(QStringLiteral("SELECT * FROM ") + TableName);
        Set->Open();
        const TFieldType Type = Set->FieldByName(FieldName)->DataType();
        Set->Close(); // an unfinished SELECT must not hold the table while DMax reads it

        const QVariant Max = DMax(TableName, FieldName, Criteria);
        QString S = AsString(Max);
        if (S.isEmpty())
            S = QStringLiteral("0");
        switch (Type) {
        case ftString:
        case ftWideString:
            Result = NextTextKey(S);
            break;
        case ftSmallint:
        case ftInteger:
        case ftWord:
        case ftFloat:
        case ftCurrency:
        case ftBCD:
        case ftFMTBcd:
        case ftLargeint:
            Result = (Max.isValid() && !Max.isNull() ? Max.toDouble() : 0.0) + 1.0;
            break;
        default:
            ShowError(QStringLiteral("GetNextID error: Unsupported field data type."));
        }
    } catch (const Exception& E) {
        m_errorMessage = E.Message;
    }
    return Result;
}

QString TQxAdoConnection::NameLookup(const QString& TableName, const QString& Criteria, TBiDiMode BiDiMode,
                                     const QString& ArabicField, const QString& EnglishField)
{
    const QString Column = BiDiMode == bdRightToLeft ? ArabicField : EnglishField;
    if (!FieldExists(TableName, Column)) {
        ShowError(BiStr(QStringLiteral("ربما أحد أو كلا الحقلين [Name_a] و [Name_e] غير موجود."),
                        QStringLiteral("Either [Name_a] or [Name_e] field doesn't exist.")));
        Abort();
    }
    const QString Name = AsString(DLookup(TableName, Column, Criteria));
    return Name == QLatin1String("0") ? QString() : Name;
}

bool TQxAdoConnection::Exec(const QString& SQL)
{
    if (!Connected())
        return false;
    const TSysCharSet Semicolon{';'};
    QString Rest = SQL;
    try {
        while (!Rest.isEmpty()) {
            const QString Statement = Trim(GetToken(Rest, Semicolon));
            if (!Statement.isEmpty())
                Execute(Statement, cmdText);
        }
    } catch (const Exception& E) {
        m_errorMessage = E.Message;
        return false;
    }
    return true;
}

TADODataSet* TQxAdoConnection::OpenRecordSet(const QString& SQL, bool Readonly)
{
    if (!Connected())
        return nullptr;
    auto Set = std::make_unique<TADODataSet>(this);
    try {
        Set->SetParamCheck(false);
        Set->SetConnection(this);
        Set->SetCommandText(SQL);
        Set->SetCommandType(cmdText);
        Set->SetCursorLocation(clUseClient);
        Set->SetLockType(Readonly ? ltReadOnly : ltOptimistic);
        Set->Open();
    } catch (const Exception& E) {
        m_errorMessage = E.Message + QStringLiteral("\r\n") + SQL;
        return nullptr;
    }
    return Set.release();
}

bool TQxAdoConnection::TableExists(const QString& TableName)
{
    if (!Connected())
        return false;
    QStringList Names;
    try {
        GetTableNames(Names);
    } catch (const Exception& E) {
        m_errorMessage = E.Message;
    }
    return Names.contains(TableName, Qt::CaseInsensitive);
}

bool TQxAdoConnection::FieldExists(const QString& TableName, const QString& FieldName)
{
    if (!Connected())
        return false;
    QStringList Names;
    try {
        GetFieldNames(TableName, Names);
    } catch (const Exception& E) {
        m_errorMessage = E.Message;
    }
    return Names.contains(FieldName, Qt::CaseInsensitive);
}

void TQxAdoConnection::OpenSettingsTable()
{
    if (m_settings && m_settings->Active())
        return;
    try {
        if (!m_settings) {
            m_settings = new TADODataSet(this);
            m_settings->SetConnection(this);
            m_settings->SetCommandText(QStringLiteral("Select * From Settings"));
            m_settings->SetLockType(ltOptimistic);
        }
        m_settings->Open();
    } catch (const Exception& E) {
        LogAdd(QStringLiteral("ERROR: ") + objectName() + QStringLiteral(".OpenSettingsTable") + QStringLiteral("\r\n") + E.Message);
    }
}

QVariant TQxAdoConnection::ReadSetting(int Setting_id, const QVariant& PDefault)
{
    QVariant Result = PDefault;
    if (!Connected())
        return Result;
    OpenSettingsTable();
    if (!m_settings || !m_settings->Active())
        return Result;
    try {
        if (m_settings->Locate(QStringLiteral("Setting_id"), Setting_id))
            Result = m_settings->FieldByName(QStringLiteral("Setting_value"))->Value();
        else
            SaveSetting(Setting_id, QString(), PDefault);
    } catch (const Exception& E) {
        m_errorMessage = E.Message;
    }
    if (Result.isNull() || AsString(Result).isEmpty())
        Result = PDefault;
    return Result;
}

void TQxAdoConnection::SaveSetting(int Setting_id, const QString& SettingName, const QVariant& Value)
{
    OpenSettingsTable();
    if (!m_settings || !m_settings->Active())
        return;
    try {
        if (!m_settings->Locate(QStringLiteral("Setting_id"), Setting_id)) {
            m_settings->Append();
            m_settings->FieldByName(QStringLiteral("Setting_id"))->SetAsInteger(Setting_id);
            m_settings->FieldByName(QStringLiteral("Setting_name"))->SetAsString(SettingName);
        } else {
            m_settings->Edit();
        }
        TField* Name = m_settings->FieldByName(QStringLiteral("Setting_name"));
        if (Name->AsString().isEmpty())
            Name->SetAsString(SettingName);
        m_settings->FieldByName(QStringLiteral("Setting_value"))->SetAsString(AsString(Value));
        m_settings->Post();
    } catch (const Exception& E) {
        m_errorMessage = E.Message;
        if (m_settings->State() == dsEdit || m_settings->State() == dsInsert)
            m_settings->Cancel();
    }
}

} // namespace Kesh
