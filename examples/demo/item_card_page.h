// Demo page: an item card edited with data-aware controls and a tool bar of data-aware
// buttons that needs no code.
#pragma once
#include "demo_page.h"

namespace Kesh {
class TADOTable;
class TDataSource;
class TQxAdoConnection;
class TQxdbImage;
} // namespace Kesh
class QLabel;
class QPushButton;

class ItemCardPage : public DemoPage
{
    Q_OBJECT
public:
    explicit ItemCardPage(const QString& DatabaseFile, QWidget* Parent = nullptr);
    QString PageName() const override { return QStringLiteral("item-card"); }
    QString Title() const override;
    void Retranslate() override;

private:
    void OpenItems(const QString& DatabaseFile);
    void CreateTable();
    void LoadPicture();

    Kesh::TQxAdoConnection* m_conn;
    Kesh::TADOTable* m_items;
    Kesh::TDataSource* m_source;
    Kesh::TQxdbImage* m_photo = nullptr;
    QPushButton* m_loadPhoto = nullptr;
    QLabel* m_note = nullptr;
};
