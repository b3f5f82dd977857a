#include "item_card_page.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>

#include <QBuffer>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

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

// A caption in both languages, following the language switch by itself.
TQxLabel* Caption(const QString& Arabic, const QString& English)
{
    auto* Label = new TQxLabel;
    Label->SetAutoSize(false);  // the grid places it, never narrower than its text
    Label->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
    Label->SetCaptionA(Arabic);
    Label->SetCaptionE(English);
    return Label;
}

} // namespace

ItemCardPage::ItemCardPage(const QString& DatabaseFile, QWidget* Parent)
    : DemoPage(Parent), m_conn(new TQxAdoConnection(this)), m_items(new TADOTable(this)), m_source(new TDataSource(this))
{
    auto* Layout = new QVBoxLayout(this);
    m_note = new QLabel;
    m_note->setWordWrap(true);
    Layout->addWidget(m_note);
    BuildToolBar(Layout);
    Layout->addWidget(BuildCard(), 1);
    // Built: the panel hooks its data source now; opening the items sets every state.
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

// First, prior, next, last, add, edit, save, cancel, delete: each button is told its action
// and its data source, and enables itself; there is no code behind them.
void ItemCardPage::BuildToolBar(QBoxLayout* Layout)
{
    struct Action { TxActionType Type; QStyle::StandardPixmap Icon; const char* Arabic; const char* English; const char* Key; };
    const Action Actions[] = {
        {atFirst, QStyle::SP_MediaSkipBackward, "الأول", "First", "Ctrl+Home"},
        {atPrior, QStyle::SP_MediaSeekBackward, "السابق", "Prior", "Ctrl+PgUp"},
        {atNext, QStyle::SP_MediaSeekForward, "التالي", "Next", "Ctrl+PgDown"},
        {atLast, QStyle::SP_MediaSkipForward, "الأخير", "Last", "Ctrl+End"},
        {atAdd, QStyle::SP_FileDialogNewFolder, "إضافة", "Add", "Ctrl+N"},
        {atEdit, QStyle::SP_FileDialogDetailedView, "تعديل", "Edit", "Ctrl+E"},
        {atSave, QStyle::SP_DialogSaveButton, "حفظ", "Save", "Ctrl+S"},
        {atCancel, QStyle::SP_DialogCancelButton, "تراجع", "Cancel", "Ctrl+Z"},
        {atDelete, QStyle::SP_TrashIcon, "حذف", "Delete", "Ctrl+D"},
    };
    auto* Bar = new QHBoxLayout;
    Bar->setSpacing(2);
    for (const Action& A : Actions) {
        auto* Button = new TQxdbSpeedButton;
        Button->setObjectName(QStringLiteral("btn") + QLatin1String(A.English));
        Button->setIcon(style()->standardIcon(A.Icon));
        Button->SetCaptionA(QString::fromUtf8(A.Arabic));
        Button->SetCaptionE(QLatin1String(A.English));
        Button->SetHotKey(QKeySequence(QLatin1String(A.Key)));
        Button->SetAction(A.Type);
        Button->SetDataSource(m_source);
        Bar->addWidget(Button);
    }
    Bar->addStretch();
    Layout->addLayout(Bar);
}

QWidget* ItemCardPage::BuildCard()
{
    auto* Card = new QWidget;
    auto* Row = new QHBoxLayout(Card);
    // The fields sit on a panel that is usable only while the item is being edited.
    auto* Panel = new TQxdbPanel;
    Panel->BeginLoading();
    Panel->SetEnabledWhen(txEditing);
    Panel->SetDataSource(m_source);
    Panel->setFrameShape(QFrame::StyledPanel);
    auto* Grid = new QGridLayout(Panel);
    int Line = 0;
    auto Add = [&](TQxLabel* Label, QWidget* Control) {
        Grid->addWidget(Label, Line, 0);
        Grid->addWidget(Control, Line++, 1);
    };
    auto Edit = [this](const char* Field, int Size) {
        auto* E = new TQxdbEdit;
        E->SetFixedSize(Size);
        E->SetDataSource(m_source);
        E->SetDataField(QLatin1String(Field));
        return E;
    };
    auto* Number = new TQxdbText;
    Number->SetDataSource(m_source);
    Number->SetDataField(QStringLiteral("Item_id"));
    Add(Caption(QStringLiteral("رقم الصنف"), QStringLiteral("Item number")), Number);
    Add(Caption(QStringLiteral("الاسم بالعربية"), QStringLiteral("Arabic name")), Edit("Name_a", 2));
    Add(Caption(QStringLiteral("الاسم بالإنجليزية"), QStringLiteral("English name")), Edit("Name_e", 2));
    Add(Caption(QStringLiteral("السعر"), QStringLiteral("Price")), Edit("Price", 1));
    auto* Added = new TQxdbEditButton;
    Added->SetFixedSize(1);
    Added->SetDataSource(m_source);
    Added->SetDataField(QStringLiteral("Added"));
    Add(Caption(QStringLiteral("تاريخ الإضافة"), QStringLiteral("Added on")), Added);
    Add(Caption(QStringLiteral("يفتح الساعة"), QStringLiteral("Opens at")), Edit("Opens", 1));
    auto* Unit = new TQxdbFixedDropList;
    Unit->SetItems_a({QStringLiteral("قطعة"), QStringLiteral("علبة"), QStringLiteral("كيلوغرام")});
    Unit->SetItems_e({QStringLiteral("Piece"), QStringLiteral("Box"), QStringLiteral("Kilogram")});
    Unit->SetValues({QStringLiteral("pc"), QStringLiteral("box"), QStringLiteral("kg")});
    Unit->SetDataSource(m_source);
    Unit->SetDataField(QStringLiteral("Unit"));
    Add(Caption(QStringLiteral("الوحدة"), QStringLiteral("Unit")), Unit);
    auto* Active = new TQxdbCheckBox;
    Active->SetCaptionA(QStringLiteral("صنف فعال"));
    Active->SetCaptionE(QStringLiteral("Active item"));
    Active->setMinimumWidth(160);
    Active->SetValueChecked(QStringLiteral("Y"));
    Active->SetValueUnchecked(QStringLiteral("N"));
    Active->SetDataSource(m_source);
    Active->SetDataField(QStringLiteral("Active"));
    Grid->addWidget(Active, Line++, 1);
    auto* Kind = new TQxdbRadioGroup;
    Kind->SetCaptionA(QStringLiteral("النوع"));
    Kind->SetCaptionE(QStringLiteral("Kind"));
    Kind->SetItems_a({QStringLiteral("بضاعة"), QStringLiteral("خدمة"), QStringLiteral("مجموعة")});
    Kind->SetItems_e({QStringLiteral("Goods"), QStringLiteral("Service"), QStringLiteral("Package")});
    Kind->SetColumns(3);
    Kind->SetValues({QStringLiteral("G"), QStringLiteral("S"), QStringLiteral("P")});
    Kind->SetDataSource(m_source);
    Kind->SetDataField(QStringLiteral("Kind"));
    Grid->addWidget(Kind, Line++, 0, 1, 2);
    Grid->setRowStretch(Line, 1);
    Grid->setColumnStretch(1, 1);
    Row->addWidget(Panel, 3);
    // The picture from the blob column, and a button to store a picture file in it.
    auto* Side = new QVBoxLayout;
    m_photo = new TQxdbImage;
    m_photo->setMinimumSize(200, 160);
    m_photo->setAccessibleName(QStringLiteral("Item photo"));
    m_photo->SetDataSource(m_source);
    m_photo->SetDataField(QStringLiteral("Photo"));
    Side->addWidget(m_photo, 1);
    m_loadPhoto = new QPushButton;
    connect(m_loadPhoto, &QPushButton::clicked, this, &ItemCardPage::LoadPicture);
    Side->addWidget(m_loadPhoto);
    Row->addLayout(Side, 2);
    return Card;
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
