// Kesh for Qt — the components of the widget box, with their icons drawn here.
#include "kesh_designer.h"

#include "Kesh_Controls.h"
#include "Kesh_dbControls.h"
#include "Kesh_AdoDB.h"
#include "Kesh_dbGrid.h"

#include <QPainter>
#include <QPainterPath>

namespace KeshDesigner {

namespace {

const QColor Ink(0x20, 0x30, 0x60), Face(0xF0, 0xF0, 0xF0), Sand(0xFA, 0xF0, 0xC8), Accent(0x1E, 0x78, 0xC8);

// The frame of a one-line box: white field, dark border.
void Box(QPainter& P, const QRectF& R, const QColor& Fill = Qt::white)
{
    P.setPen(QPen(Ink, 1.2));
    P.setBrush(Fill);
    P.drawRoundedRect(R, 2, 2);
}

void Text(QPainter& P, const QRectF& R, const QString& S, int Pixels, bool Bold = false, const QColor& C = Ink)
{
    QFont F(QStringLiteral("Sans Serif"));
    F.setPixelSize(Pixels);
    F.setBold(Bold);
    P.setFont(F);
    P.setPen(C);
    P.drawText(R, Qt::AlignCenter, S);
}

// A raised button face.
void Button(QPainter& P, const QRectF& R)
{
    QLinearGradient G(R.topLeft(), R.bottomLeft());
    G.setColorAt(0, Qt::white);
    G.setColorAt(1, QColor(0xC8, 0xCC, 0xD4));
    P.setPen(QPen(Ink, 1.2));
    P.setBrush(G);
    P.drawRoundedRect(R, 3, 3);
}

void Tick(QPainter& P, const QRectF& R, const QColor& C = Accent)
{
    QPainterPath Path;
    Path.moveTo(R.left() + R.width() * 0.15, R.top() + R.height() * 0.55);
    Path.lineTo(R.left() + R.width() * 0.42, R.top() + R.height() * 0.8);
    Path.lineTo(R.left() + R.width() * 0.88, R.top() + R.height() * 0.2);
    P.setPen(QPen(C, 2.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    P.setBrush(Qt::NoBrush);
    P.drawPath(Path);
}

// Bilingual mark: "ع" over "A" at the right of an icon.
void Bilingual(QPainter& P, const QRectF& R)
{
    Text(P, QRectF(R.left(), R.top(), R.width() / 2, R.height()), QStringLiteral("A"), 10, true);
    Text(P, QRectF(R.center().x(), R.top(), R.width() / 2, R.height()), QString(QChar(0x0639)), 11, true, Accent);
}

void EditIcon(QPainter& P)
{
    Box(P, QRectF(2, 9, 28, 14));
    Text(P, QRectF(4, 9, 18, 14), QStringLiteral("ab"), 10);
    P.setPen(QPen(Accent, 1.5));
    P.drawLine(QPointF(22, 12), QPointF(22, 20));
}

void EditButtonIcon(QPainter& P)
{
    Box(P, QRectF(2, 9, 28, 14));
    Text(P, QRectF(3, 9, 14, 14), QStringLiteral("ab"), 9);
    Button(P, QRectF(19, 11, 9, 10));
    Text(P, QRectF(19, 9, 9, 12), QStringLiteral("..."), 8, true);
}

void TimeEditIcon(QPainter& P)
{
    Box(P, QRectF(2, 9, 28, 14));
    Text(P, QRectF(3, 9, 18, 14), QStringLiteral("9:30"), 8);
    P.setPen(QPen(Accent, 1.3));
    P.setBrush(Qt::white);
    P.drawEllipse(QPointF(25, 16), 4.5, 4.5);
    P.drawLine(QPointF(25, 16), QPointF(25, 13));
    P.drawLine(QPointF(25, 16), QPointF(27, 17));
}

void DropListIcon(QPainter& P)
{
    Box(P, QRectF(2, 9, 28, 14));
    Bilingual(P, QRectF(3, 9, 16, 14));
    Button(P, QRectF(20, 10, 9, 12));
    QPolygonF Arrow{QPointF(22, 14.5), QPointF(27, 14.5), QPointF(24.5, 18)};
    P.setPen(Qt::NoPen);
    P.setBrush(Ink);
    P.drawPolygon(Arrow);
}

// A drop list filled from a table: a small grid of rows before the arrow.
void TableDropListIcon(QPainter& P)
{
    Box(P, QRectF(2, 9, 28, 14));
    P.setPen(QPen(Accent, 1));
    P.setBrush(QColor(0xDC, 0xEA, 0xF8));
    P.drawRect(QRectF(5, 11, 12, 10));
    for (int Y : {14, 17})
        P.drawLine(QPointF(5, Y + 0.5), QPointF(17, Y + 0.5));
    P.drawLine(QPointF(9.5, 11), QPointF(9.5, 21));
    Button(P, QRectF(20, 10, 9, 12));
    QPolygonF Arrow{QPointF(22, 14.5), QPointF(27, 14.5), QPointF(24.5, 18)};
    P.setPen(Qt::NoPen);
    P.setBrush(Ink);
    P.drawPolygon(Arrow);
}

void LabelIcon(QPainter& P)
{
    P.setPen(Qt::NoPen);
    P.setBrush(Sand);
    P.drawRect(QRectF(2, 8, 28, 16));
    Text(P, QRectF(3, 9, 28, 16), QStringLiteral("A"), 13, true, QColor(0x80, 0x80, 0x80)); // the shade
    Bilingual(P, QRectF(2, 8, 28, 16));
}

void SpeedButtonIcon(QPainter& P)
{
    Button(P, QRectF(5, 5, 22, 22));
    QPolygonF Bolt{QPointF(18, 8), QPointF(11, 17), QPointF(16, 17), QPointF(13, 25), QPointF(21, 14), QPointF(16, 14)};
    P.setPen(QPen(Ink, 0.8));
    P.setBrush(QColor(0xF0, 0xB0, 0x20));
    P.drawPolygon(Bolt);
}

void BitBtnIcon(QPainter& P)
{
    Button(P, QRectF(1, 7, 30, 18));
    Tick(P, QRectF(4, 10, 10, 12), QColor(0x20, 0x90, 0x30));
    Text(P, QRectF(14, 7, 16, 18), QStringLiteral("Ok"), 9, true);
}

void IconButtonIcon(QPainter& P)
{
    Button(P, QRectF(1, 7, 30, 18));
    QPainterPath Star;
    for (int I = 0; I < 10; ++I) {
        const double Angle = -M_PI / 2 + I * M_PI / 5, Radius = I % 2 ? 2.6 : 6.0;
        const QPointF Point(9 + Radius * std::cos(Angle), 16 + Radius * std::sin(Angle));
        I ? Star.lineTo(Point) : Star.moveTo(Point);
    }
    Star.closeSubpath();
    P.setPen(QPen(Ink, 0.8));
    P.setBrush(QColor(0xF0, 0xB0, 0x20));
    P.drawPath(Star);
    Bilingual(P, QRectF(15, 9, 15, 14));
}

void CheckBoxIcon(QPainter& P)
{
    Box(P, QRectF(3, 9, 14, 14));
    Tick(P, QRectF(4, 10, 12, 12));
    Text(P, QRectF(18, 9, 13, 14), QString(QChar(0x0639)), 11, true, Accent);
}

void PanelIcon(QPainter& P)
{
    QLinearGradient G(QPointF(2, 0), QPointF(30, 0));
    G.setColorAt(0, Qt::white);
    G.setColorAt(1, QColor(0xD4, 0xD0, 0xCA));
    P.setPen(Qt::NoPen);
    P.setBrush(G);
    P.drawRect(QRectF(2, 6, 28, 20));
    P.setPen(QPen(Qt::white, 1.5));
    P.drawLine(QPointF(2, 26), QPointF(2, 6));
    P.drawLine(QPointF(2, 6), QPointF(30, 6));
    P.setPen(QPen(QColor(0x70, 0x70, 0x70), 1.5));
    P.drawLine(QPointF(30, 6), QPointF(30, 26));
    P.drawLine(QPointF(30, 26), QPointF(2, 26));
    Bilingual(P, QRectF(4, 9, 24, 14));
}

void ImageIcon(QPainter& P)
{
    P.setPen(QPen(Ink, 1.2));
    P.setBrush(QColor(0xE8, 0xF2, 0xFC));
    P.drawRect(QRectF(3, 5, 26, 22));
    P.setPen(Qt::NoPen);
    P.setBrush(QColor(0xF0, 0xB0, 0x20));
    P.drawEllipse(QPointF(22, 11), 3, 3);
    P.setBrush(QColor(0x30, 0x90, 0x50));
    P.drawPolygon(QPolygonF{QPointF(4, 26), QPointF(13, 13), QPointF(19, 21), QPointF(22, 18), QPointF(28, 26)});
}

// A grid: a title row, an indicator column and lines of cells.
void GridIcon(QPainter& P)
{
    P.setPen(QPen(Ink, 1));
    P.setBrush(Qt::white);
    P.drawRect(QRectF(2.5, 4.5, 27, 22));
    P.setPen(Qt::NoPen);
    P.setBrush(QColor(0xC8, 0xD4, 0xE4));
    P.drawRect(QRectF(3, 5, 26, 5));
    P.drawRect(QRectF(3, 5, 5, 21));
    P.setPen(QPen(QColor(0x90, 0x98, 0xA8), 0.8));
    for (double Y : {10.5, 15.5, 20.5})
        P.drawLine(QPointF(3, Y), QPointF(29, Y));
    for (double X : {8.5, 17.5})
        P.drawLine(QPointF(X, 5), QPointF(X, 26));
    P.setPen(Qt::NoPen);
    P.setBrush(Ink);
    P.drawPolygon(QPolygonF{QPointF(4, 11.5), QPointF(7, 13), QPointF(4, 14.5)}); // the current row
}

// The footer: the grid's last lines over a panel of totals.
void GridFooterIcon(QPainter& P)
{
    P.setPen(QPen(QColor(0x90, 0x98, 0xA8), 0.8));
    P.setBrush(Qt::white);
    P.drawRect(QRectF(2.5, 3.5, 27, 11));
    P.drawLine(QPointF(2.5, 9), QPointF(29.5, 9));
    QLinearGradient G(QPointF(0, 16), QPointF(0, 28));
    G.setColorAt(0, Qt::white);
    G.setColorAt(1, QColor(0xCA, 0xD0, 0xD4));
    P.setPen(QPen(Ink, 1));
    P.setBrush(G);
    P.drawRect(QRectF(2.5, 16.5, 27, 11));
    Text(P, QRectF(3, 16, 12, 12), QString(QChar(0x03A3)), 10, true, Accent);
    Text(P, QRectF(14, 16, 15, 12), QStringLiteral("99"), 8, true);
}

void RadioGroupIcon(QPainter& P)
{
    P.setPen(QPen(Ink, 1));
    P.setBrush(Qt::NoBrush);
    P.drawRoundedRect(QRectF(2, 5, 28, 24), 2, 2);
    P.setPen(Qt::NoPen);
    P.setBrush(Qt::white);
    P.drawRect(QRectF(6, 2, 12, 6));
    Text(P, QRectF(5, 0, 14, 9), QStringLiteral("ع/A"), 6, true, Accent);
    for (int I = 0; I < 2; ++I) {
        const QPointF C(9, 14 + I * 8);
        P.setPen(QPen(Ink, 1));
        P.setBrush(Qt::white);
        P.drawEllipse(C, 3, 3);
        if (I == 0) {
            P.setPen(Qt::NoPen);
            P.setBrush(Accent);
            P.drawEllipse(C, 1.5, 1.5);
        }
        P.setPen(QPen(Ink, 1.5));
        P.drawLine(QPointF(15, C.y()), QPointF(27, C.y()));
    }
}

// A data-aware component: its plain look with a small database drum at the lower right.
std::function<void(QPainter&)> WithData(void (*Base)(QPainter&))
{
    return [Base](QPainter& P) {
        P.save();
        P.translate(0, -3);
        P.scale(0.86, 0.86);
        Base(P);
        P.restore();
        const QRectF Drum(20, 19, 11, 12);
        P.setPen(QPen(QColor(0x10, 0x50, 0x20), 1));
        P.setBrush(QColor(0x40, 0xB0, 0x50));
        P.drawRect(QRectF(Drum.left(), Drum.top() + 2, Drum.width(), Drum.height() - 4));
        P.drawEllipse(QRectF(Drum.left(), Drum.bottom() - 4, Drum.width(), 4));
        P.setBrush(QColor(0x80, 0xE0, 0x90));
        P.drawEllipse(QRectF(Drum.left(), Drum.top(), Drum.width(), 4));
    };
}

template <class W>
std::function<QWidget*(QWidget*)> Maker()
{
    return [](QWidget* Parent) -> QWidget* { return new W(Parent); };
}

} // namespace

const QList<TComponent>& Components()
{
    static const char Controls[] = "Kesh_Controls";
    static const char ControlsHeader[] = "Kesh_Controls.h";
    static const char Data[] = "Kesh_dbControls";
    static const char DataHeader[] = "Kesh_dbControls.h";
    static const char Grid[] = "Kesh_dbGrid";
    static const char GridHeader[] = "Kesh_dbGrid.h";
    static const char Ado[] = "Kesh_AdoDB";
    static const char AdoHeader[] = "Kesh_AdoDB.h";
    static const QList<TComponent> List{
        {"Kesh::TQxEdit", Controls, ControlsHeader,
         "Data-entry edit: standard widths, Enter/Up/Down between fields, integer or number typing",
         {101, 21}, false, Maker<Kesh::TQxEdit>(), EditIcon},
        {"Kesh::TQxEditButton", Controls, ControlsHeader,
         "Data-entry edit with a \"...\" button at its trailing edge and a hot key",
         {101, 21}, false, Maker<Kesh::TQxEditButton>(), EditButtonIcon},
        {"Kesh::TQxTimeEdit", Controls, ControlsHeader,
         "Time edit: hours and minutes typed as text, held as an integer time",
         {101, 21}, false, Maker<Kesh::TQxTimeEdit>(), TimeEditIcon},
        {"Kesh::TQxFixedDropList", Controls, ControlsHeader,
         "Fixed drop list: Arabic and English captions over hidden keys",
         {101, 21}, false, Maker<Kesh::TQxFixedDropList>(), DropListIcon},
        {"Kesh::TQxLabel", Controls, ControlsHeader,
         "Bilingual label: Arabic and English caption and font, plain, embossed or shadowed",
         {101, 21}, false, Maker<Kesh::TQxLabel>(), LabelIcon},
        {"Kesh::TQxSpeedButton", Controls, ControlsHeader,
         "Bilingual tool-bar button that takes no focus, with a form-wide hot key",
         {23, 22}, false, Maker<Kesh::TQxSpeedButton>(), SpeedButtonIcon},
        {"Kesh::TQxBitBtn", Controls, ControlsHeader,
         "Bilingual push button with a glyph, caption, font and hint in both languages",
         {75, 25}, false, Maker<Kesh::TQxBitBtn>(), BitBtnIcon},
        {"Kesh::TQxIconButton", Controls, ControlsHeader,
         "Bilingual push button showing an icon beside its caption",
         {75, 25}, false, Maker<Kesh::TQxIconButton>(), IconButtonIcon},
        {"Kesh::TQxCheckBox", Controls, ControlsHeader,
         "Bilingual check box with its own glyph sets and styled caption; can enable a linked control",
         {100, 16}, false, Maker<Kesh::TQxCheckBox>(), CheckBoxIcon},
        {"Kesh::TQxPanel", Controls, ControlsHeader,
         "Bilingual panel with a plain or gradient face; holds other controls",
         {185, 41}, true, Maker<Kesh::TQxPanel>(), PanelIcon},
        {"Kesh::TQxRadioGroup", Controls, ControlsHeader,
         "Bilingual radio group: title and items in Arabic and English, laid out in columns",
         {185, 105}, false, Maker<Kesh::TQxRadioGroup>(), RadioGroupIcon},

        {"Kesh::TQxdbEdit", Data, DataHeader,
         "Data-aware edit: shows and writes one field of its data source",
         {101, 21}, false, Maker<Kesh::TQxdbEdit>(), WithData(EditIcon)},
        {"Kesh::TQxdbEditButton", Data, DataHeader,
         "Data-aware edit with a \"...\" button",
         {101, 21}, false, Maker<Kesh::TQxdbEditButton>(), WithData(EditButtonIcon)},
        {"Kesh::TQxdbText", Data, DataHeader,
         "Data-aware label: shows one field of its data source",
         {101, 21}, false, Maker<Kesh::TQxdbText>(), WithData(LabelIcon)},
        {"Kesh::TQxdbFixedDropList", Data, DataHeader,
         "Data-aware fixed drop list: writes the key of the chosen caption into its field",
         {101, 21}, false, Maker<Kesh::TQxdbFixedDropList>(), WithData(DropListIcon)},
        {"Kesh::TQxdbCheckBox", Data, DataHeader,
         "Data-aware check box: checked and unchecked values of its field",
         {100, 16}, false, Maker<Kesh::TQxdbCheckBox>(), WithData(CheckBoxIcon)},
        {"Kesh::TQxdbRadioGroup", Data, DataHeader,
         "Data-aware radio group: one value of its field per item",
         {185, 105}, false, Maker<Kesh::TQxdbRadioGroup>(), WithData(RadioGroupIcon)},
        {"Kesh::TQxdbSpeedButton", Data, DataHeader,
         "Dataset action on a tool-bar button: save, cancel, add, edit, delete, move, refresh",
         {23, 22}, false, Maker<Kesh::TQxdbSpeedButton>(), WithData(SpeedButtonIcon)},
        {"Kesh::TQxdbBitBtn", Data, DataHeader,
         "Dataset action on a bilingual push button, enabled by the dataset's state",
         {75, 25}, false, Maker<Kesh::TQxdbBitBtn>(), WithData(BitBtnIcon)},
        {"Kesh::TQxdbIconButton", Data, DataHeader,
         "Dataset action on a bilingual icon button",
         {75, 25}, false, Maker<Kesh::TQxdbIconButton>(), WithData(IconButtonIcon)},
        {"Kesh::TQxdbImage", Data, DataHeader,
         "Data-aware picture: shows and stores the picture of a blob field",
         {105, 105}, false, Maker<Kesh::TQxdbImage>(), WithData(ImageIcon)},
        {"Kesh::TQxdbPanel", Data, DataHeader,
         "Data-aware panel: enables the controls on it by its dataset's state",
         {185, 41}, true, Maker<Kesh::TQxdbPanel>(), WithData(PanelIcon)},

        {"Kesh::TQxdbGrid", Grid, GridHeader,
         "Data grid: bilingual columns, multi-row selection, a footer of column totals",
         {320, 120}, false, Maker<Kesh::TQxdbGrid>(), GridIcon},
        {"Kesh::TQxdbGridFooter", Grid, GridHeader,
         "Footer of a data grid: one total label under each column (name it in the grid's _FooterName)",
         {320, 21}, false, Maker<Kesh::TQxdbGridFooter>(), GridFooterIcon},

        {"Kesh::TQxAdoDropList", Ado, AdoHeader,
         "Drop list of a table's rows: the name in the user's language, the key as its value",
         {101, 21}, false, Maker<Kesh::TQxAdoDropList>(), TableDropListIcon},
        {"Kesh::TQxAdoLookupDropList", Ado, AdoHeader,
         "Data-aware drop list of a table's rows: writes the chosen key into its field",
         {101, 21}, false, Maker<Kesh::TQxAdoLookupDropList>(), WithData(TableDropListIcon)},
    };
    return List;
}

} // namespace KeshDesigner
