#include "database_page.h"

#include <Kesh_AdoDB.h>

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Kesh;

namespace {
const int CompanySetting = 1;
const int RowCount = 8;
} // namespace

DatabasePage::DatabasePage(const QString& DatabaseFile, QWidget* Parent)
    : DemoPage(Parent), m_conn(new TQxAdoConnection(this))
{
    m_conn->setObjectName(QStringLiteral("DemoDB"));
    auto* Layout = new QVBoxLayout(this);
    m_box = new QGroupBox;
    m_form = new QFormLayout(m_box);
    for (int I = 0; I < RowCount; ++I) {
        m_captions << new QLabel;
        m_values << new QLabel;
        QFont Bold = m_values.last()->font();
        Bold.setBold(true);
        m_values.last()->setFont(Bold);
        m_form->addRow(m_captions.last(), m_values.last());
    }
    Layout->addWidget(m_box);
    m_add = new QPushButton;
    auto* Buttons = new QHBoxLayout;
    Buttons->addWidget(m_add);
    Buttons->addStretch();
    Layout->addLayout(Buttons);
    m_error = new QLabel;
    m_error->setWordWrap(true);
    Layout->addWidget(m_error);
    Layout->addStretch();
    connect(m_add, &QPushButton::clicked, this, &DatabasePage::AddCustomer);

    try {
        m_conn->SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + DatabaseFile);
        m_conn->Open();
        if (!m_conn->TableExists(QStringLiteral("Customers")))
            CreateDatabase();
    } catch (const Exception& E) {
        m_error->setText(E.Message);
    }
    Retranslate();
}

QString DatabasePage::Title() const
{
    return BiStr(QStringLiteral("قاعدة البيانات"), QStringLiteral("Database helpers"));
}

void DatabasePage::CreateDatabase()
{
    const bool Ok = m_conn->Exec(QStringLiteral(
        "CREATE TABLE Customers (Cust_id INTEGER PRIMARY KEY, Name_a VARCHAR(60), Name_e VARCHAR(60), Balance NUMERIC(12,2));"
        "CREATE TABLE Items (Code VARCHAR(10) PRIMARY KEY, Name_a VARCHAR(60), Name_e VARCHAR(60), Price NUMERIC(12,2));"
        "CREATE TABLE Settings (Setting_id INTEGER PRIMARY KEY, Setting_name VARCHAR(100), Setting_value VARCHAR(255));"
        "INSERT INTO Customers VALUES (1, 'شركة النور للتجارة', 'Al Noor Trading', 1250.50);"
        "INSERT INTO Customers VALUES (2, 'مؤسسة الأمل', 'Al Amal Est.', 830.00);"
        "INSERT INTO Customers VALUES (3, 'مكتبة المعرفة', 'Knowledge Bookshop', 0);"
        "INSERT INTO Items VALUES ('P7', 'قلم حبر', 'Ink pen', 12.75);"
        "INSERT INTO Items VALUES ('P8', 'دفتر', 'Notebook', 8.25);"
        "INSERT INTO Items VALUES ('P9', 'حقيبة', 'Bag', 95.00)"));
    if (Ok)
        m_conn->SaveSetting(CompanySetting, QStringLiteral("Company name"), QStringLiteral("Kesh Trading Co. / شركة كيش التجارية"));
    else
        m_error->setText(m_conn->ErrorMessage());
}

void DatabasePage::AddCustomer()
{
    const QVariant Id = m_conn->GetNextID(QStringLiteral("Customers"), QStringLiteral("Cust_id"), QString());
    if (!Id.isValid())
        return;
    const int N = Id.toInt();
    m_conn->Exec(QStringLiteral("INSERT INTO Customers VALUES (%1, 'عميل %1', 'Customer %1', %2)").arg(N).arg(N * 10));
    Refresh();
}

void DatabasePage::Retranslate()
{
    m_box->setTitle(BiStr(QStringLiteral("دوال الاتصال"), QStringLiteral("Connection helpers")));
    m_add->setText(BiStr(QStringLiteral("إضافة عميل"), QStringLiteral("Add a customer")));
    const QStringList Captions = {
        BiStr(QStringLiteral("عدد العملاء (DCount):"), QStringLiteral("Customers (DCount):")),
        BiStr(QStringLiteral("عدد الأصناف (DCount):"), QStringLiteral("Items (DCount):")),
        BiStr(QStringLiteral("مجموع الأرصدة (DSum):"), QStringLiteral("Total balance (DSum):")),
        BiStr(QStringLiteral("أعلى سعر (DMax):"), QStringLiteral("Highest price (DMax):")),
        BiStr(QStringLiteral("رقم العميل التالي (GetNextID):"), QStringLiteral("Next customer number (GetNextID):")),
        BiStr(QStringLiteral("رمز الصنف التالي (GetNextID):"), QStringLiteral("Next item code (GetNextID):")),
        BiStr(QStringLiteral("اسم العميل 1 (NameLookup):"), QStringLiteral("Customer 1 (NameLookup):")),
        BiStr(QStringLiteral("اسم الشركة (ReadSetting):"), QStringLiteral("Company (ReadSetting):")),
    };
    for (int I = 0; I < RowCount; ++I)
        m_captions[I]->setText(Captions[I]);
    Refresh();
}

void DatabasePage::Refresh()
{
    if (!m_conn->Connected())
        return;
    const QStringList Values = {
        QString::number(m_conn->DCount(QStringLiteral("Customers"), QString())),
        QString::number(m_conn->DCount(QStringLiteral("Items"), QString())),
        FormatFloat(QStringLiteral("#,##0.00"), m_conn->DSum(QStringLiteral("Customers"), QStringLiteral("Balance"), QString()).toDouble()),
        FormatFloat(QStringLiteral("#,##0.00"), m_conn->DMax(QStringLiteral("Items"), QStringLiteral("Price"), QString()).toDouble()),
        AsString(m_conn->GetNextID(QStringLiteral("Customers"), QStringLiteral("Cust_id"), QString())),
        AsString(m_conn->GetNextID(QStringLiteral("Items"), QStringLiteral("Code"), QString())),
        m_conn->NameLookup(QStringLiteral("Customers"), QStringLiteral("Cust_id = 1"), Application()->BiDiMode()),
        AsString(m_conn->ReadSetting(CompanySetting, QString())),
    };
    for (int I = 0; I < RowCount; ++I) {
        m_values[I]->setText(Values[I]);
        AlignToReadingSide(m_values[I]);
    }
}
