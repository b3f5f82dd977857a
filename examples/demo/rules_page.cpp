#include "rules_page.h"

#include <Kesh_AdoDB.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

using namespace Kesh;

RulesPage::RulesPage(const QString& DatabaseFile, QWidget* Parent)
    : DemoPage(Parent), m_conn(new TQxAdoConnection(this)), m_stock(new TQxAdoTable(this)), m_model(new TDataSetModel(this))
{
    m_conn->setObjectName(QStringLiteral("RulesDB"));
    m_stock->setObjectName(QStringLiteral("Stock"));
    auto* Layout = new QVBoxLayout(this);
    m_note = new QLabel;
    m_note->setWordWrap(true);
    Layout->addWidget(m_note);
    auto* Options = new QHBoxLayout;
    for (QCheckBox** Box : {&m_allowInsert, &m_allowDelete, &m_confirm, &m_lock}) {
        *Box = new QCheckBox;
        (*Box)->setChecked(true);
        Options->addWidget(*Box);
        connect(*Box, &QCheckBox::toggled, this, &RulesPage::ApplyRules);
    }
    Options->addStretch();
    Layout->addLayout(Options);
    m_view = new QTableView;
    m_view->setModel(m_model);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->horizontalHeader()->setStretchLastSection(true);
    Layout->addWidget(m_view);
    auto* Buttons = new QHBoxLayout;
    for (QPushButton** Button : {&m_insert, &m_addOne, &m_delete, &m_zero}) {
        *Button = new QPushButton;
        Buttons->addWidget(*Button);
    }
    Buttons->addStretch();
    m_total = new QLabel;
    Buttons->addWidget(m_total);
    Layout->addLayout(Buttons);
    connect(m_insert, &QPushButton::clicked, this, [this] { Guarded([this] { Insert(); }); });
    connect(m_addOne, &QPushButton::clicked, this, [this] { Guarded([this] { AddOne(); }); });
    connect(m_delete, &QPushButton::clicked, this, [this] { Guarded([this] { Delete(); }); });
    connect(m_zero, &QPushButton::clicked, this, [this] { Guarded([this] { ZeroAll(); }); });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] { SelectCurrent(); });

    Guarded([&] {
        m_conn->SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + DatabaseFile);
        m_conn->Open();
        if (!m_conn->TableExists(QStringLiteral("Stock")))
            CreateTable();
        m_stock->SetConnection(m_conn);
        m_stock->SetTableName(QStringLiteral("Stock"));
        m_stock->SetLockType(ltOptimistic);
        m_stock->SetLockedMsgID(MsgLocked);
        m_stock->SetConfirmMsgID(MsgConfirmDelete);
        m_stock->Open();
        m_model->SetDataSet(m_stock);
    });
    ApplyRules();
    Retranslate();
}

QString RulesPage::Title() const
{
    return BiStr(QStringLiteral("قواعد التحرير"), QStringLiteral("Editing rules"));
}

void RulesPage::CreateTable()
{
    m_conn->Exec(QStringLiteral(
        "CREATE TABLE Stock (Stock_id INTEGER PRIMARY KEY, Name_a VARCHAR(60), Name_e VARCHAR(60), Qty INTEGER, Locked BOOLEAN);"
        "INSERT INTO Stock VALUES (1, 'قلم حبر', 'Ink pen', 40, 0);"
        "INSERT INTO Stock VALUES (2, 'دفتر', 'Notebook', 25, 1);"
        "INSERT INTO Stock VALUES (3, 'حقيبة', 'Bag', 6, 0);"
        "INSERT INTO Stock VALUES (4, 'مسطرة', 'Ruler', 18, NULL)"));
}

void RulesPage::ApplyRules()
{
    m_stock->SetAllowInsert(m_allowInsert->isChecked());
    m_stock->SetAllowDelete(m_allowDelete->isChecked());
    m_stock->SetConfirmDel(m_confirm->isChecked());
    m_stock->SetLockedField(m_lock->isChecked() ? QStringLiteral("Locked") : QString());
}

void RulesPage::Insert()
{
    const int Id = m_conn->GetNextID(QStringLiteral("Stock"), QStringLiteral("Stock_id"), QString()).toInt();
    m_stock->Append();
    m_stock->FieldByName(QStringLiteral("Stock_id"))->SetAsInteger(Id);
    m_stock->FieldByName(QStringLiteral("Name_a"))->SetAsString(QStringLiteral("صنف %1").arg(Id));
    m_stock->FieldByName(QStringLiteral("Name_e"))->SetAsString(QStringLiteral("Item %1").arg(Id));
    m_stock->FieldByName(QStringLiteral("Qty"))->SetAsInteger(0);
    m_stock->FieldByName(QStringLiteral("Locked"))->SetAsBoolean(false);
    m_stock->Post();
}

void RulesPage::AddOne()
{
    m_stock->Edit();
    TField* Qty = m_stock->FieldByName(QStringLiteral("Qty"));
    Qty->SetAsInteger(Qty->AsInteger() + 1);
    m_stock->Post();
}

void RulesPage::Delete()
{
    m_stock->Delete();
}

void RulesPage::ZeroAll()
{
    m_stock->ApplyValue(QStringLiteral("Qty"), 0);
}

void RulesPage::SelectCurrent()
{
    const int Row = m_view->currentIndex().row();
    if (Row < 0 || !m_stock->Active())
        return;
    Guarded([&] { m_stock->MoveBy(Row - m_model->CurrentRow()); });
}

void RulesPage::ShowTotal()
{
    if (!m_stock->Active())
        return;
    m_total->setText(BiStr(QStringLiteral("مجموع الكميات (Sum): %1"), QStringLiteral("Total quantity (Sum): %1"))
                         .arg(FormatFloat(QStringLiteral("#,##0"), m_stock->Sum(QStringLiteral("Qty")))));
}

void RulesPage::Guarded(const std::function<void()>& Action)
{
    try {
        Action();
    } catch (const EAbort&) {
        if (m_stock->State() != dsBrowse && m_stock->Active())
            m_stock->Cancel();
    } catch (const Exception& E) {
        if (m_stock->State() != dsBrowse && m_stock->Active())
            m_stock->Cancel();
        ShowError(E.Message);
    }
    ShowTotal();
}

void RulesPage::Retranslate()
{
    m_note->setText(BiStr(QStringLiteral("الصنف «دفتر» مقفل. جرّب الإضافة والتعديل والحذف مع القواعد وبدونها."),
                          QStringLiteral("The row “Notebook” is locked. Try adding, changing and deleting with and without the rules.")));
    m_allowInsert->setText(BiStr(QStringLiteral("السماح بالإضافة"), QStringLiteral("Allow insert")));
    m_allowDelete->setText(BiStr(QStringLiteral("السماح بالحذف"), QStringLiteral("Allow delete")));
    m_confirm->setText(BiStr(QStringLiteral("تأكيد الحذف"), QStringLiteral("Confirm delete")));
    m_lock->setText(BiStr(QStringLiteral("عمود القفل"), QStringLiteral("Lock column")));
    m_insert->setText(BiStr(QStringLiteral("إضافة صنف"), QStringLiteral("Add an item")));
    m_addOne->setText(BiStr(QStringLiteral("زيادة الكمية"), QStringLiteral("Quantity + 1")));
    m_delete->setText(BiStr(QStringLiteral("حذف"), QStringLiteral("Delete")));
    m_zero->setText(BiStr(QStringLiteral("تصفير الكل (ApplyValue)"), QStringLiteral("Zero all (ApplyValue)")));
    ShowTotal();
}
