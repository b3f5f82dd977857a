#include "db_image_panel.h"

#include "conversions.h"
#include "db_guard_p.h"
#include "messages.h"
#include "platform/data/dataset.h"
#include "platform/exceptions.h"
#include "platform/widgets.h"
#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QPointer>

namespace Kesh {

// ---- TQxdbImage

struct TQxdbImagePrivate
{
    QImage Picture;
    QString Format;
    bool Loading = false;
};

TQxdbImage::TQxdbImage(QWidget* Parent) : QLabel(Parent), TxFieldBinding(this), d(new TQxdbImagePrivate)
{
    setAlignment(Qt::AlignCenter);
    setMinimumSize(1, 1);
    setFrameShape(QFrame::StyledPanel);
    DataLink()->OnDataChange = [this](TFieldDataLink*) { DataChanged(); };
    DataLink()->OnActiveChange = DataLink()->OnDataChange;
}

TQxdbImage::~TQxdbImage() = default;

namespace {

// A binary column: a blob or a picture, not a memo (whose class descends from the blob).
bool IsBinary(const TField* Field)
{
    return Field && qobject_cast<const TBlobField*>(Field) && !qobject_cast<const TMemoField*>(Field);
}

} // namespace

void TQxdbImage::DataFieldChanged(const QString& Value)
{
    if (!Value.isEmpty() && DataLink()->DataSet() && DataLink()->Active() && !IsBinary(Field())) {
        DataLink()->SetFieldName(QString());
        DataChanged();
        RaiseError(QStringLiteral("Only TBlobField can be attached."), this);
    }
    NameAfterField(this, Value);
}
QImage TQxdbImage::Picture() const { return d->Picture; }
QString TQxdbImage::Format() const { return d->Format; }

QString TQxdbImage::FormatOf(const QByteArray& Data)
{
    if (Data.size() < 2)
        return QString();
    const quint16 W = quint16(quint8(Data[0]) | quint8(Data[1]) << 8);
    switch (W) {
    case 0x4D42: return QStringLiteral("bmp");
    case 0x0000: return QStringLiteral("ico");
    case 0x4947: return QStringLiteral("gif");
    case 0xCDD7: return QStringLiteral("wmf");
    case 0xD8FF: return QStringLiteral("jpeg");
    case 0x5089: return QStringLiteral("png");
    default: return QString();
    }
}

namespace {

// The picture in Data by Qt's reader of Format; null when it cannot be read.
QImage ReadPicture(const QByteArray& Data, const QString& Format)
{
    if (Format.isEmpty() || Format == QLatin1String("wmf"))
        return QImage();
    QBuffer Buffer;
    Buffer.setData(Data);
    Buffer.open(QIODevice::ReadOnly);
    QImageReader Reader(&Buffer, Format.toLatin1());
    return Reader.read();
}

} // namespace

void TQxdbImage::DataChanged()
{
    if (d->Loading)
        return;
    const TField* F = IsBinary(Field()) ? Field() : nullptr;
    if (!F || F->IsNull()) {
        ShowPicture(QImage(), QString());
        return;
    }
    const QByteArray Bytes = F->AsBytes();
    const QString Format = FormatOf(Bytes);
    const QImage Image = ReadPicture(Bytes, Format);
    ShowPicture(Image, Image.isNull() ? QString() : Format);
}

void TQxdbImage::ShowPicture(const QImage& Image, const QString& Format)
{
    const bool Changed = Image != d->Picture || Format != d->Format;
    d->Picture = Image;
    d->Format = Format;
    setAccessibleDescription(Format.toUpper());
    FitPicture();
    if (Changed)
        emit PictureChanged();
}

void TQxdbImage::FitPicture()
{
    if (d->Picture.isNull()) {
        clear();
        return;
    }
    const QSize Room = contentsRect().size();
    QImage Shown = d->Picture;
    if (Shown.width() > Room.width() || Shown.height() > Room.height())
        Shown = Shown.scaled(Room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    setPixmap(QPixmap::fromImage(Shown));
}

void TQxdbImage::resizeEvent(QResizeEvent* Event)
{
    QLabel::resizeEvent(Event);
    FitPicture();
}

void TQxdbImage::LoadFromFile(const QString& FileName)
{
    QFile File(FileName);
    if (!File.open(QIODevice::ReadOnly))
        RaiseError(BiStr(QStringLiteral("لا يمكن فتح الملف:\n%1"), QStringLiteral("Cannot open the file:\n%1")).arg(FileName), this);
    const QByteArray Bytes = File.readAll();
    const QString Format = FormatOf(Bytes);
    if (ReadPicture(Bytes, Format).isNull())
        RaiseError(BiStr(QStringLiteral("الملف ليس صورة من الأنواع المعروضة (BMP أو ICO أو GIF أو JPEG أو PNG):\n%1"),
                         QStringLiteral("The file is not a picture of a shown kind (BMP, ICO, GIF, JPEG or PNG):\n%1"))
                       .arg(FileName),
                   this);
    if (!IsBinary(Field()) || !DataLink()->Edit())
        RaiseError(BiStr(QStringLiteral("لا يمكن تعديل الصورة الآن."), QStringLiteral("The picture cannot be changed now.")), this);
    Field()->SetAsBytes(Bytes);
}

// ---- TQxdbPanel

struct TQxdbPanelPrivate
{
    TxEnabledWhenType EnabledWhen = txAllways;
    QPointer<TDataSource> DataSource;
    TDataSourceNotifyEvent OldStateChange;
};

TQxdbPanel::TQxdbPanel(QWidget* Parent) : TQxCustomPanel(Parent), d(new TQxdbPanelPrivate) {}

TQxdbPanel::~TQxdbPanel() = default;

TxEnabledWhenType TQxdbPanel::GetEnabledWhen() const { return d->EnabledWhen; }
void TQxdbPanel::SetEnabledWhen(TxEnabledWhenType Value) { d->EnabledWhen = Value; }
TDataSource* TQxdbPanel::GetDataSource() const { return d->DataSource; }
void TQxdbPanel::SetDataSource(TDataSource* Value) { d->DataSource = Value; }

void TQxdbPanel::Loaded()
{
    TQxCustomPanel::Loaded();
    if (!d->DataSource || IsDesigning(this))
        return;
    d->OldStateChange = d->DataSource->OnStateChange;
    // The source may outlive the panel: then it goes on calling its own handler alone.
    const QPointer<TQxdbPanel> Self = this;
    const TDataSourceNotifyEvent Old = d->OldStateChange;
    d->DataSource->OnStateChange = [Self, Old](TDataSource* Sender) {
        if (Self)
            Self->OnStateChange(Sender);
        else if (Old)
            Old(Sender);
    };
}

void TQxdbPanel::OnStateChange(TDataSource* Sender)
{
    const TDataSetState State = d->DataSource ? d->DataSource->State() : dsInactive;
    bool On = true;
    switch (d->EnabledWhen) {
    case txAllways: break;
    case txEditing: On = State == dsEdit || State == dsInsert; break;
    case txBrowsing: On = State == dsBrowse; break;
    case txBrowsingNotEmpty:
        On = State == dsBrowse && d->DataSource->DataSet() && d->DataSource->DataSet()->RecordCount() > 0;
        break;
    }
    setEnabled(On);
    update();
    if (d->OldStateChange)
        d->OldStateChange(Sender);
}

void TQxdbPanel::Refresh() { OnStateChange(d->DataSource); }

} // namespace Kesh
