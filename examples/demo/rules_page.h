// Demo page: a stock table whose dataset carries the editing rules (insert, delete, lock,
// confirmation), to be tried with the buttons and the check boxes.
#pragma once
#include "demo_page.h"

namespace Kesh {
class TDataSetModel;
class TQxAdoConnection;
class TQxAdoTable;
} // namespace Kesh
class QCheckBox;
class QLabel;
class QPushButton;
class QTableView;

class RulesPage : public DemoPage
{
    Q_OBJECT
public:
    explicit RulesPage(const QString& DatabaseFile, QWidget* Parent = nullptr);
    QString PageName() const override { return QStringLiteral("rules"); }
    QString Title() const override;
    void Retranslate() override;

    /// The messages that the page's rules show, by number, for the form's manager.
    enum Message { MsgLocked = 1, MsgConfirmDelete = 2 };

private:
    void CreateTable();
    void ApplyRules();
    void Insert();
    void AddOne();
    void Delete();
    void ZeroAll();
    void ShowTotal();
    void SelectCurrent();
    /// Runs an action; a refusal (the silent abort) ends it quietly, other errors are shown.
    void Guarded(const std::function<void()>& Action);

    Kesh::TQxAdoConnection* m_conn;
    Kesh::TQxAdoTable* m_stock;
    Kesh::TDataSetModel* m_model;
    QTableView* m_view;
    QCheckBox* m_allowInsert;
    QCheckBox* m_allowDelete;
    QCheckBox* m_confirm;
    QCheckBox* m_lock;
    QPushButton* m_insert;
    QPushButton* m_addOne;
    QPushButton* m_delete;
    QPushButton* m_zero;
    QLabel* m_total;
    QLabel* m_note;
};
