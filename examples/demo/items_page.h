// Demo page: the items table in the data grid, with bilingual columns, the indicator and
// record-number columns, row colours, a footer of totals, multi-selection and remembered widths.
#pragma once
#include "demo_page.h"

namespace Kesh {
class TDataSource;
class TQxAdoConnection;
class TQxdbGrid;
class TQxdbGridFooter;
class TADOQuery;
} // namespace Kesh
class QLabel;
class QPushButton;

class ItemsPage : public DemoPage
{
    Q_OBJECT
public:
    explicit ItemsPage(const QString& DatabaseFile, QWidget* Parent = nullptr);
    ~ItemsPage() override;
    QString PageName() const override { return QStringLiteral("items"); }
    QString Title() const override;
    void Retranslate() override;

private:
    void PrepareTable();
    void BuildColumns();
    void DeleteSelected();

    Kesh::TQxAdoConnection* m_conn;
    Kesh::TADOQuery* m_query;
    Kesh::TDataSource* m_source;
    Kesh::TQxdbGrid* m_grid;
    Kesh::TQxdbGridFooter* m_footer;
    QPushButton* m_delete;
    QLabel* m_hint;
    QLabel* m_error;
};
