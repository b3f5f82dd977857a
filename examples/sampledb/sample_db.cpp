#include "sample_db.h"

#include <Kesh_AdoDB.h>

#include <QDate>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QVector>

using namespace Kesh;

namespace Demo {
namespace {

struct TNamePair
{
    const char* Arabic;
    const char* English;
};

// Customers are every kind of business with every name: 10 × 30 = 300.
const TNamePair BusinessKinds[] = {
    {"مؤسسة", "Est."}, {"شركة", "Company"}, {"مكتبة", "Bookshop"}, {"مطاعم", "Restaurants"},
    {"صيدلية", "Pharmacy"}, {"مخابز", "Bakeries"}, {"متجر", "Store"}, {"معرض", "Showroom"},
    {"ورشة", "Workshop"}, {"مركز", "Center"},
};
const TNamePair BusinessNames[] = {
    {"النور", "Al Noor"}, {"الأمل", "Al Amal"}, {"المعرفة", "Al Maarifa"}, {"الشفاء", "Al Shifa"},
    {"السنابل", "Al Sanabel"}, {"الرياض", "Al Riyadh"}, {"الفجر", "Al Fajr"}, {"البركة", "Al Baraka"},
    {"الواحة", "Al Waha"}, {"النخيل", "Al Nakheel"}, {"الهدى", "Al Huda"}, {"الريان", "Al Rayyan"},
    {"الصفا", "Al Safa"}, {"المروة", "Al Marwa"}, {"الأندلس", "Al Andalus"}, {"القمة", "Al Qimma"},
    {"الخليج", "Al Khaleej"}, {"الجزيرة", "Al Jazeera"}, {"الرشيد", "Al Rasheed"}, {"الياسمين", "Al Yasmeen"},
    {"الزهراء", "Al Zahraa"}, {"السلام", "Al Salam"}, {"الوفاء", "Al Wafa"}, {"الإتقان", "Al Itqan"},
    {"الضياء", "Al Diyaa"}, {"المستقبل", "Al Mustaqbal"}, {"الأصالة", "Al Asala"}, {"التقدم", "Al Taqaddum"},
    {"الرواد", "O'Brien & Al Rowad"}, {"البيان", "Al Bayan"},
};

const TNamePair Cities[] = {
    {"الرياض", "Riyadh"}, {"جدة", "Jeddah"}, {"مكة المكرمة", "Makkah"}, {"المدينة المنورة", "Madinah"},
    {"الدمام", "Dammam"}, {"الطائف", "Taif"}, {"أبها", "Abha"}, {"تبوك", "Tabuk"},
};

struct TUnit
{
    const char* Id;
    const char* Arabic;
    const char* English;
};
const TUnit Units[] = {
    {"PCS", "حبة", "Piece"}, {"BOX", "علبة", "Box"}, {"KG", "كيلو", "Kilogram"}, {"M", "متر", "Metre"}, {"L", "لتر", "Litre"},
};

struct TProduct
{
    const char* Arabic;
    const char* English;
    const char* Unit;
    int PriceCents;
};
// Items are every product in five grades: 40 × 5 = 200.
const TProduct Products[] = {
    {"قلم حبر", "Ink pen", "PCS", 1275}, {"دفتر", "Notebook", "PCS", 825}, {"حقيبة مدرسية", "School bag", "PCS", 9500},
    {"مسطرة", "Ruler", "PCS", 450}, {"ممحاة", "Eraser", "PCS", 175}, {"آلة حاسبة", "Calculator", "PCS", 6500},
    {"ورق طباعة", "Printing paper", "BOX", 12000}, {"حبر طابعة", "Printer ink", "PCS", 18500}, {"ملف", "Folder", "PCS", 650},
    {"دباسة", "Stapler", "PCS", 2200}, {"أرز", "Rice", "KG", 790}, {"سكر", "Sugar", "KG", 425}, {"شاي", "Tea", "BOX", 1850},
    {"قهوة", "Coffee", "KG", 6400}, {"زيت زيتون", "Olive oil", "L", 3800}, {"حليب", "Milk", "L", 625}, {"تمر", "Dates", "KG", 3500},
    {"عسل", "Honey", "KG", 12000}, {"ماء", "Water", "BOX", 1400}, {"عصير", "Juice", "L", 975}, {"قماش قطن", "Cotton fabric", "M", 2800},
    {"قماش حرير", "Silk fabric", "M", 14000}, {"خيط", "Thread", "PCS", 325}, {"سجادة", "Carpet", "PCS", 45000},
    {"ستارة", "Curtain", "M", 5500}, {"مصباح", "Lamp", "PCS", 7500}, {"سلك كهربائي", "Electric cable", "M", 480},
    {"مفتاح كهربائي", "Light switch", "PCS", 1150}, {"مروحة", "Fan", "PCS", 21000}, {"مكيف", "Air conditioner", "PCS", 235000},
    {"صابون", "Soap", "BOX", 2400}, {"منظف", "Detergent", "L", 1650}, {"مناديل", "Tissues", "BOX", 1225}, {"عطر", "Perfume", "PCS", 26000},
    {"بخور", "Incense", "BOX", 9500}, {"كوب", "Cup", "PCS", 850}, {"صحن", "Plate", "PCS", 1400}, {"ملعقة", "Spoon", "PCS", 375},
    {"إبريق", "Kettle", "PCS", 8900}, {"سلة", "Basket", "PCS", 1950},
};
const struct
{
    TNamePair Name;
    int PricePercent;
} Grades[] = {
    {{"اقتصادي", "economy"}, 65}, {{"صغير", "small"}, 80}, {{"وسط", "medium"}, 100}, {{"كبير", "large"}, 130}, {{"ممتاز", "premium"}, 160},
};

QString Money(qint64 Cents)
{
    const QString Sign = Cents < 0 ? QStringLiteral("-") : QString();
    const qint64 A = qAbs(Cents);
    return Sign + QString::number(A / 100) + QLatin1Char('.') + QString::number(A % 100).rightJustified(2, QLatin1Char('0'));
}

QString Quantity(qint64 Milli)
{
    return QString::number(Milli / 1000) + QLatin1Char('.') + QString::number(Milli % 1000).rightJustified(3, QLatin1Char('0'));
}

int IntDate(const QDate& D)
{
    return D.year() * 10000 + D.month() * 100 + D.day();
}

// Inserts Rows into Table a hundred at a time through one prepared multi-row statement:
// a round trip per hundred rows on a server, and bound values throughout.
class TBulkInsert
{
public:
    TBulkInsert(QSqlDatabase Db, const QString& Table, const QStringList& Columns)
        : m_db(Db), m_table(Table), m_columns(Columns)
    {
    }
    void Add(const QVariantList& Row)
    {
        Q_ASSERT(Row.size() == m_columns.size());
        m_rows << Row;
        if (m_rows.size() == Batch)
            Flush();
    }
    void Flush()
    {
        if (m_rows.isEmpty())
            return;
        QSqlQuery& Query = m_rows.size() == Batch ? m_full : m_tail;
        if (m_rows.size() != Batch || !m_fullReady) {
            Query = QSqlQuery(m_db);
            if (!Query.prepare(Statement(m_rows.size())))
                TADOConnection::RaiseSqlError(Query.lastError(), m_table);
            m_fullReady = m_fullReady || m_rows.size() == Batch;
        }
        int I = 0;
        for (const QVariantList& Row : qAsConst(m_rows))
            for (const QVariant& V : Row)
                Query.bindValue(I++, V);
        if (!Query.exec())
            TADOConnection::RaiseSqlError(Query.lastError(), m_table);
        m_rows.clear();
    }

private:
    static constexpr int Batch = 100;
    QString Statement(int Rows) const
    {
        QStringList Marks(m_columns.size(), QStringLiteral("?"));
        const QString One = QLatin1Char('(') + Marks.join(QLatin1Char(',')) + QLatin1Char(')');
        return QStringLiteral("INSERT INTO ") + m_table + QStringLiteral(" (") + m_columns.join(QLatin1Char(','))
            + QStringLiteral(") VALUES ") + QStringList(Rows, One).join(QLatin1Char(','));
    }
    QSqlDatabase m_db;
    QString m_table;
    QStringList m_columns;
    QVector<QVariantList> m_rows;
    QSqlQuery m_full, m_tail;
    bool m_fullReady = false;
};

void Run(QSqlDatabase Db, const QString& Sql)
{
    QSqlQuery Query(Db);
    if (!Query.exec(Sql))
        TADOConnection::RaiseSqlError(Query.lastError(), Sql);
}

void FillSettings(TQxAdoConnection* Conn)
{
    const struct
    {
        TSettingId Id;
        const char* Name;
        const char* Value;
    } Rows[] = {
        {SetCompanyA, "Company name (Arabic)", "شركة كيش التجارية"},
        {SetCompanyE, "Company name (English)", "Kesh Trading Company"},
        // The Arabic words of an amount need the name's four forms: one, two, three to ten, eleven and up.
        {SetCurrencyA, "Currency (Arabic: one|two|3-10|11+)", "ريال|ريالان|ريالات|ريالا"},
        {SetCurrencyE, "Currency (English)", "Riyal"},
        {SetSubUnitA, "Sub-unit (Arabic)", "هللة"},
        {SetSubUnitE, "Sub-unit (English)", "Halala"},
    };
    TBulkInsert Insert(Conn->Database(), QStringLiteral("Settings"),
                       {QStringLiteral("Setting_id"), QStringLiteral("Setting_name"), QStringLiteral("Setting_value")});
    for (const auto& Row : Rows)
        Insert.Add({int(Row.Id), QString::fromUtf8(Row.Name), QString::fromUtf8(Row.Value)});
    Insert.Flush();
}

void FillLists(QSqlDatabase Db, QRandomGenerator& Random, QVector<int>& ItemPrices)
{
    TBulkInsert CityRows(Db, QStringLiteral("Cities"), {QStringLiteral("City_id"), QStringLiteral("Name_a"), QStringLiteral("Name_e")});
    int Id = 0;
    for (const TNamePair& City : Cities)
        CityRows.Add({++Id, QString::fromUtf8(City.Arabic), QString::fromUtf8(City.English)});
    CityRows.Flush();

    TBulkInsert UnitRows(Db, QStringLiteral("Units"), {QStringLiteral("Unit_id"), QStringLiteral("Name_a"), QStringLiteral("Name_e")});
    for (const TUnit& Unit : Units)
        UnitRows.Add({QString::fromLatin1(Unit.Id), QString::fromUtf8(Unit.Arabic), QString::fromUtf8(Unit.English)});
    UnitRows.Flush();

    TBulkInsert ItemRows(Db, QStringLiteral("Items"),
                         {QStringLiteral("Item_id"), QStringLiteral("Code"), QStringLiteral("Name_a"), QStringLiteral("Name_e"),
                          QStringLiteral("Unit_id"), QStringLiteral("Price"), QStringLiteral("Stock"), QStringLiteral("Active")});
    Id = 0;
    for (const TProduct& Product : Products)
        for (const auto& Grade : Grades) {
            const int Price = Product.PriceCents * Grade.PricePercent / 100;
            ItemPrices << Price;
            ++Id;
            ItemRows.Add({Id, QStringLiteral("I%1").arg(Id, 4, 10, QLatin1Char('0')),
                          QString::fromUtf8(Product.Arabic) + QLatin1Char(' ') + QString::fromUtf8(Grade.Name.Arabic),
                          QString::fromUtf8(Product.English) + QStringLiteral(", ") + QString::fromUtf8(Grade.Name.English),
                          QString::fromLatin1(Product.Unit), Money(Price), int(Random.bounded(500)), Id % 37 != 0});
        }
    ItemRows.Flush();
}

// Invoices from the start of 2024 to today, about five lines each; a credit invoice adds
// to its customer's balance. Invoices older than a month are posted.
void FillInvoices(QSqlDatabase Db, QRandomGenerator& Random, const QVector<int>& ItemPrices, int CustomerCount,
                  int LineCount, QVector<qint64>& Balances)
{
    TBulkInsert Headers(Db, QStringLiteral("Invoices"),
                        {QStringLiteral("Inv_id"), QStringLiteral("Inv_date"), QStringLiteral("Cust_id"), QStringLiteral("Payment"),
                         QStringLiteral("Posted"), QStringLiteral("Notes"), QStringLiteral("Total")});
    TBulkInsert Lines(Db, QStringLiteral("InvoiceLines"),
                      {QStringLiteral("Line_id"), QStringLiteral("Inv_id"), QStringLiteral("Item_id"), QStringLiteral("Qty"),
                       QStringLiteral("Price"), QStringLiteral("Line_total")});
    const QDate First(2024, 1, 1);
    const QDate Today = QDate::currentDate();
    const qint64 Days = qMax<qint64>(1, First.daysTo(Today));
    const int Expected = qMax(1, LineCount / 5);
    const char Payments[] = {'C', 'C', 'R', 'R', 'R', 'K'};
    int LineId = 0;
    for (int Inv = 1; LineId < LineCount; ++Inv) {
        const QDate Date = First.addDays(qMin(Days, Days * (Inv - 1) / Expected));
        const int Customer = 1 + int(Random.bounded(CustomerCount));
        const char Payment = Payments[Random.bounded(int(sizeof Payments))];
        const int Count = qMin(LineCount - LineId, 1 + int(Random.bounded(9)));
        qint64 Total = 0;
        for (int L = 0; L < Count; ++L) {
            const int Item = 1 + int(Random.bounded(ItemPrices.size()));
            // Whole pieces mostly; weights and lengths in quarters.
            const qint64 Milli = Random.bounded(4) == 0 ? 250 * (1 + Random.bounded(40)) : 1000 * (1 + Random.bounded(20));
            const qint64 Price = ItemPrices[Item - 1];
            const qint64 LineTotal = (Milli * Price + 500) / 1000;
            Total += LineTotal;
            Lines.Add({++LineId, Inv, Item, Quantity(Milli), Money(Price), Money(LineTotal)});
        }
        if (Payment == 'R')
            Balances[Customer - 1] += Total;
        Headers.Add({Inv, IntDate(Date), Customer, QString(QLatin1Char(Payment)), Date.daysTo(Today) > 30,
                     Inv % 50 == 0 ? QStringLiteral("تسليم في الفرع / Delivered at the branch") : QString(), Money(Total)});
    }
    Headers.Flush();
    Lines.Flush();
}

void FillCustomers(QSqlDatabase Db, QRandomGenerator& Random, const QVector<qint64>& Balances)
{
    TBulkInsert Rows(Db, QStringLiteral("Customers"),
                     {QStringLiteral("Cust_id"), QStringLiteral("Name_a"), QStringLiteral("Name_e"), QStringLiteral("City_id"),
                      QStringLiteral("Phone"), QStringLiteral("Credit_limit"), QStringLiteral("Balance"), QStringLiteral("Joined"),
                      QStringLiteral("Active"), QStringLiteral("Notes")});
    int Id = 0;
    for (const TNamePair& Name : BusinessNames)
        for (const TNamePair& Kind : BusinessKinds) {
            ++Id;
            const int City = 1 + int(Random.bounded(int(std::size(Cities))));
            const QDate Joined = QDate(2015, 1, 1).addDays(Random.bounded(3600));
            Rows.Add({Id, QString::fromUtf8(Kind.Arabic) + QLatin1Char(' ') + QString::fromUtf8(Name.Arabic),
                      QString::fromUtf8(Name.English) + QLatin1Char(' ') + QString::fromUtf8(Kind.English), City,
                      QStringLiteral("05%1").arg(Random.bounded(100000000), 8, 10, QLatin1Char('0')),
                      Money(100000 * (1 + Random.bounded(50))), Money(Balances[Id - 1]), IntDate(Joined), Id % 23 != 0,
                      Id % 10 == 0 ? QStringLiteral("عميل منذ سنوات / A long-standing customer") : QString()});
        }
    Rows.Flush();
}

} // namespace

void CreateSampleTables(TQxAdoConnection* Conn)
{
    const bool Postgres = Conn->Database().driverName() == QLatin1String("QPSQL");
    const QString Blob = Postgres ? QStringLiteral("BYTEA") : QStringLiteral("BLOB");
    // The record browser's quick search is LIKE 'prefix%' ordered by the name: on SQLite
    // an index serves it only in the NOCASE collation, on PostgreSQL only a pattern index.
    const QString Name = Postgres ? QStringLiteral("VARCHAR(80)") : QStringLiteral("VARCHAR(80) COLLATE NOCASE");
    const QString Pattern = Postgres ? QStringLiteral(" text_pattern_ops") : QString();
    const QString Statements[] = {
        QStringLiteral("CREATE TABLE Cities (City_id INTEGER PRIMARY KEY, Name_a VARCHAR(40) NOT NULL, Name_e VARCHAR(40) NOT NULL)"),
        QStringLiteral("CREATE TABLE Customers (Cust_id INTEGER PRIMARY KEY, Name_a %1 NOT NULL, Name_e %1 NOT NULL, "
                       "City_id INTEGER, Phone VARCHAR(20), Credit_limit NUMERIC(12,2), Balance NUMERIC(14,2), Joined INTEGER, "
                       "Active BOOLEAN, Notes VARCHAR(200))").arg(Name),
        QStringLiteral("CREATE INDEX Customers_Name_a ON Customers (Name_a%1)").arg(Pattern),
        QStringLiteral("CREATE INDEX Customers_Name_e ON Customers (Name_e%1)").arg(Pattern),
        QStringLiteral("CREATE TABLE Units (Unit_id VARCHAR(3) PRIMARY KEY, Name_a VARCHAR(20), Name_e VARCHAR(20))"),
        QStringLiteral("CREATE TABLE Items (Item_id INTEGER PRIMARY KEY, Code VARCHAR(12) NOT NULL UNIQUE, Name_a %1 NOT NULL, "
                       "Name_e %1 NOT NULL, Unit_id VARCHAR(3), Price NUMERIC(12,2), Stock INTEGER, Active BOOLEAN, Photo %2)")
            .arg(Name, Blob),
        QStringLiteral("CREATE INDEX Items_Name_a ON Items (Name_a%1)").arg(Pattern),
        QStringLiteral("CREATE INDEX Items_Name_e ON Items (Name_e%1)").arg(Pattern),
        QStringLiteral("CREATE TABLE Invoices (Inv_id INTEGER PRIMARY KEY, Inv_date INTEGER NOT NULL, Cust_id INTEGER NOT NULL, "
                       "Payment VARCHAR(1) NOT NULL, Posted BOOLEAN NOT NULL, Notes VARCHAR(200), Total NUMERIC(14,2))"),
        QStringLiteral("CREATE INDEX Invoices_Cust_id ON Invoices (Cust_id)"),
        QStringLiteral("CREATE INDEX Invoices_Inv_date ON Invoices (Inv_date)"),
        QStringLiteral("CREATE TABLE InvoiceLines (Line_id INTEGER PRIMARY KEY, Inv_id INTEGER NOT NULL, Item_id INTEGER NOT NULL, "
                       "Qty NUMERIC(12,3) NOT NULL, Price NUMERIC(12,2) NOT NULL, Line_total NUMERIC(14,2) NOT NULL)"),
        QStringLiteral("CREATE INDEX InvoiceLines_Inv_id ON InvoiceLines (Inv_id)"),
        QStringLiteral("CREATE TABLE Settings (Setting_id INTEGER PRIMARY KEY, Setting_name VARCHAR(100), Setting_value VARCHAR(255))"),
    };
    Conn->FinishPendingFetches();
    for (const QString& Sql : Statements)
        if (!Sql.startsWith(QLatin1String("CREATE TABLE Settings")) || !Conn->TableExists(QStringLiteral("Settings")))
            Run(Conn->Database(), Sql);
}

int NextId(TQxAdoConnection* Conn, const QString& Table, const QString& Field)
{
    return Conn->GetNextID(Table, Field, QString()).toInt();
}

void EnsureSampleDatabase(TQxAdoConnection* Conn, int InvoiceLines)
{
    if (!Conn->Connected())
        Conn->Open();
    if (Conn->TableExists(QStringLiteral("Customers")))
        return;
    const bool HadSettings = Conn->TableExists(QStringLiteral("Settings"));
    Conn->BeginTrans();
    try {
        CreateSampleTables(Conn);
        QRandomGenerator Random(20261124);
        QVector<int> ItemPrices;
        FillLists(Conn->Database(), Random, ItemPrices);
        const int CustomerCount = int(std::size(BusinessNames) * std::size(BusinessKinds));
        QVector<qint64> Balances(CustomerCount, 0);
        FillInvoices(Conn->Database(), Random, ItemPrices, CustomerCount, qMax(0, InvoiceLines), Balances);
        FillCustomers(Conn->Database(), Random, Balances);
        if (!HadSettings)
            FillSettings(Conn);
        Conn->CommitTrans();
    } catch (...) {
        Conn->RollbackTrans();
        throw;
    }
}

} // namespace Demo
