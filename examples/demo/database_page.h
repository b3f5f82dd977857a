// Demo page: the connection helpers at work on a small SQLite database.
#pragma once
#include "demo_page.h"

class QFormLayout;
class QGroupBox;
class QLabel;
class QPushButton;

namespace Kesh {
class TQxAdoConnection;
}

class DatabasePage : public DemoPage
{
    Q_OBJECT
public:
    /// Opens (and on first start creates) the demo database at DatabaseFile.
    explicit DatabasePage(const QString& DatabaseFile, QWidget* Parent = nullptr);
    QString PageName() const override { return QStringLiteral("database-helpers"); }
    QString Title() const override;
    void Retranslate() override;

private:
    void CreateDatabase();
    void AddCustomer();
    void Refresh();

    Kesh::TQxAdoConnection* m_conn;
    QGroupBox* m_box;
    QFormLayout* m_form;
    QLabel* m_error;
    QPushButton* m_add;
    QVector<QLabel*> m_captions;
    QVector<QLabel*> m_values;
};
