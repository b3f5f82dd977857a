#include "item_card_page.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include "ui_item_card_page.h"

#include <QBuffer>
#include <QFileDialog>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyle>

using namespace Kesh;

namespace {

// A small product picture in a given format, drawn here so the demo needs no files.
QByteArray Picture(const QColor& Color, const char* Format)
{
    QImage Image(160, 120, QImage::Format_RGB32);
    Image.fill(QColor(0xF4, 0xF1, 0xEA));
    QPainter P(&Image);
    P.setRenderHint(QPainter::Antialiasing);
    P.setBrush(Color);
    P.setPen(QPen(Color.darker(150), 3));
    P.drawRoundedRect(30, 25, 100, 70, 12, 12);
    P.setBrush(Color.lighter(140));
    P.drawEllipse(QPoint(80, 60), 20, 20);
    P.end();
    QByteArray Bytes;
    QBuffer Buffer(&Bytes);
    Buffer.open(QIODevice::WriteOnly);
    Image.save(&Buffer, Format);
    return Bytes;
}

} // namespace

ItemCardPage::ItemCardPage(const QString& DatabaseFile, QWidget* Parent)
    : DemoPage(Parent), m_conn(new TQxAdoConnection(this)), m_items(new TADOTable(this)), m_source(new TDataSource(this))
{
    // The card is made in Qt Designer (item_card_page.ui): every button knows its action and
    // every field its column there, and all name the data source "dsItems" made here.
    m_source->setObjectName(QStringLiteral("dsItems"));
    Ui::ItemCardPage Form;
    Form.setupUi(this);
    m_note = Form.lblNote;
    m_photo = Form.xPhoto;
    m_loadPhoto = Form.btnLoadPhoto;
    const std::pair<QAbstractButton*, QStyle::StandardPixmap> Icons[] = {
        {Form.btnFirst, QStyle::SP_MediaSkipBackward}, {Form.btnPrior, QStyle::SP_MediaSeekBackward},
        {Form.btnNext, QStyle::SP_MediaSeekForward}, {Form.btnLast, QStyle::SP_MediaSkipForward},
        {Form.btnAdd, QStyle::SP_FileDialogNewFolder}, {Form.btnEdit, QStyle::SP_FileDialogDetailedView},
        {Form.btnSave, QStyle::SP_DialogSaveButton}, {Form.btnCancel, QStyle::SP_DialogCancelButton},
        {Form.btnDelete, QStyle::SP_TrashIcon}};
    for (const auto& [Button, Icon] : Icons)
        Button->setIcon(style()->standardIcon(Icon));
    connect(m_loadPhoto, &QPushButton::clicked, this, &ItemCardPage::LoadPicture);
    // Built: the names are bound and the panel hooks its data source; opening the items
    // sets every state.
    EndLoading(this);
    OpenItems(DatabaseFile);
    Retranslate();
}

QString ItemCardPage::Title() const { return BiStr(QStringLiteral("بطاقة صنف"), QStringLiteral("Item card")); }

void ItemCardPage::OpenItems(const QString& DatabaseFile)
{
    try {
        m_conn->SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + DatabaseFile);
        m_conn->Open();
        // Persistent fields: the integer date and time columns get their own classes.
        (new TIntegerField(m_items))->SetFieldName(QStringLiteral("Item_id"));
        for (const char* Name : {"Name_a", "Name_e", "Active", "Kind", "Unit"})
            (new TStringField(m_items))->SetFieldName(QLatin1String(Name));
        auto* Price = new TFloatField(m_items);
        Price->SetFieldName(QStringLiteral("Price"));
        Price->SetDisplayFormat(QStringLiteral("#,##0.00"));
        Price->SetEditFormat(QStringLiteral("0.00"));
        (new TQxDateField(m_items))->SetFieldName(QStringLiteral("Added"));
        auto* Opens = new TQxTimeField(m_items);
        Opens->SetFieldName(QStringLiteral("Opens"));
        Opens->SetFormat24(false);
        (new TBlobField(m_items))->SetFieldName(QStringLiteral("Photo"));
        m_items->SetConnection(m_conn);
        m_items->SetTableName(QStringLiteral("ItemCard"));
        m_items->SetLockType(ltOptimistic);
        // A new item gets the next number and today's date.
        m_items->OnNewRecord = [this](TDataSet* Ds) {
            Ds->FieldByName(QStringLiteral("Item_id"))->SetAsInteger(
                m_conn->GetNextID(QStringLiteral("ItemCard"), QStringLiteral("Item_id"), QString()).toInt());
            Ds->FieldByName(QStringLiteral("Added"))->SetAsDateTime(Date());
            Ds->FieldByName(QStringLiteral("Active"))->SetAsString(QStringLiteral("Y"));
            Ds->FieldByName(QStringLiteral("Kind"))->SetAsString(QStringLiteral("G"));
            Ds->FieldByName(QStringLiteral("Unit"))->SetAsString(QStringLiteral("pc"));
        };
        const bool Fresh = !m_conn->TableExists(QStringLiteral("ItemCard"));
        if (Fresh)
            m_conn->Exec(QStringLiteral("CREATE TABLE ItemCard (Item_id INTEGER PRIMARY KEY, Name_a VARCHAR(60), "
                                        "Name_e VARCHAR(60), Price FLOAT, Added INTEGER, Opens SMALLINT, Active VARCHAR(1), "
                                        "Kind VARCHAR(1), Unit VARCHAR(3), Photo BLOB)"));
        m_items->Open();
        if (Fresh)
            CreateTable();
        m_source->SetDataSet(m_items);
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
}

// The first items, written through the dataset (the pictures are bytes of three formats).
void ItemCardPage::CreateTable()
{
    struct Item { const char* Arabic; const char* English; double Price; int Added; int Opens; const char* Active;
                  const char* Kind; const char* Unit; QColor Color; const char* Format; };
    const Item Items[] = {
        {"قلم حبر", "Ink pen", 12.5, 20240305, 830, "Y", "G", "pc", QColor(0x2E, 0x5E, 0xAA), "PNG"},
        {"دفتر", "Notebook", 7.25, 14450901, 1430, "Y", "G", "box", QColor(0xC0, 0x39, 0x2B), "JPEG"},
        {"صيانة", "Servicing", 150, 20231120, 900, "N", "S", "pc", QColor(0x27, 0x8E, 0x5A), "BMP"},
    };
    for (const Item& I : Items) {
        m_items->Append();
        m_items->FieldByName(QStringLiteral("Name_a"))->SetAsString(QString::fromUtf8(I.Arabic));
        m_items->FieldByName(QStringLiteral("Name_e"))->SetAsString(QLatin1String(I.English));
        m_items->FieldByName(QStringLiteral("Price"))->SetAsFloat(I.Price);
        m_items->FieldByName(QStringLiteral("Added"))->SetAsInteger(I.Added);
        m_items->FieldByName(QStringLiteral("Opens"))->SetAsInteger(I.Opens);
        m_items->FieldByName(QStringLiteral("Active"))->SetAsString(QLatin1String(I.Active));
        m_items->FieldByName(QStringLiteral("Kind"))->SetAsString(QLatin1String(I.Kind));
        m_items->FieldByName(QStringLiteral("Unit"))->SetAsString(QLatin1String(I.Unit));
        m_items->FieldByName(QStringLiteral("Photo"))->SetAsBytes(Picture(I.Color, I.Format));
        m_items->Post();
    }
    m_items->First();
}

void ItemCardPage::LoadPicture()
{
    const QString File = QFileDialog::getOpenFileName(this, m_loadPhoto->text(), QString(),
                                                      QStringLiteral("Pictures (*.png *.jpg *.jpeg *.bmp *.gif *.ico)"));
    if (File.isEmpty())
        return;
    try {
        m_photo->LoadFromFile(File);
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
}

void ItemCardPage::Retranslate()
{
    m_note->setText(BiStr(QStringLiteral("الأزرار والحقول مرتبطة بالجدول؛ الحقول قابلة للتحرير بعد «تعديل» أو «إضافة» فقط."),
                          QStringLiteral("The buttons and fields are bound to the table; the fields can be edited only after Edit or Add.")));
    m_loadPhoto->setText(BiStr(QStringLiteral("تحميل صورة…"), QStringLiteral("Load a picture…")));
}
