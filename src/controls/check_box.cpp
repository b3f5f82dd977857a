// Kesh for Qt — the bilingual check box.
#include "check_box.h"
#include "accessibility_p.h"
#include "resources.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QSvgRenderer>

namespace Kesh {

struct TQxCheckBoxPrivate
{
    TFont Font;
    TxCheckBoxStyles Style = cbsStyle_1;
    // The linked control belongs to the form; it may go first.
    QPointer<QWidget> Control;
};

TQxCheckBox::TQxCheckBox(QWidget* Parent) : QAbstractButton(Parent), TxStyledCaption(1), d(new TQxCheckBoxPrivate)
{
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    resize(100, 16);
    TFont Font;
    Font.SetName(QStringLiteral("Tahoma"));
    Font.SetSize(8);
    Font.SetCharset(ARABIC_CHARSET);
    Font.SetColor(clNavy);
    SetFont(Font);
    InitBiFonts(Font);
    connect(this, &QAbstractButton::toggled, this, [this] { FollowChecked(); });
}

TQxCheckBox::~TQxCheckBox() = default;

void TQxCheckBox::SetCaption(const QString& Value)
{
    setText(Value);
    setShortcut(QKeySequence());  // the one QAbstractButton took from an "&" in the text
    NotifyAccessible(this, QAccessible::NameChanged);
}

TFont TQxCheckBox::GetFont() const { return d->Font; }

void TQxCheckBox::SetFont(const TFont& Value)
{
    d->Font = Value;
    ApplyFont(this, Value);
    update();
}

QWidget* TQxCheckBox::GetControl() const { return d->Control; }

void TQxCheckBox::SetControl(QWidget* Value)
{
    d->Control = Value;
    FollowChecked();
}

TxCheckBoxStyles TQxCheckBox::GetStyle() const { return d->Style; }

void TQxCheckBox::SetStyle(TxCheckBoxStyles Value)
{
    if (d->Style != Value) {
        d->Style = Value;
        update();
    }
}


QString TQxCheckBox::GlyphName() const
{
    return QStringLiteral("CheckBox%1_%2")
        .arg(int(d->Style) + 1)
        .arg(isChecked() ? QStringLiteral("ON") : QStringLiteral("OFF"));
}

QString TQxCheckBox::GlyphFile(const QString& Name)
{
    // The glyph files are stored under upper-case names; look them up once, by lower case.
    static const QHash<QString, QString> Files = [] {
        InitResources();
        QHash<QString, QString> Found;
        QDirIterator It(QStringLiteral(":/kesh"), {QStringLiteral("*.svg")}, QDir::Files);
        while (It.hasNext()) {
            const QString Path = It.next();
            Found.insert(QFileInfo(Path).completeBaseName().toLower(), Path);
        }
        return Found;
    }();
    return Files.value(Name.toLower());
}

QRect TQxCheckBox::GlyphRect() const
{
    const int X = BiDiMode() == bdRightToLeft ? width() - GlyphSize : 0;
    return QRect(X, 0, GlyphSize, GlyphSize);
}

QRect TQxCheckBox::TextRect() const
{
    return BiDiMode() == bdRightToLeft ? rect().adjusted(0, 0, -TextIndent, 0)
                                       : rect().adjusted(TextIndent, 0, 0, 0);
}

QSize TQxCheckBox::sizeHint() const
{
    const QFontMetrics Metrics(d->Font.Font(), this);
    const int TextWidth = Metrics.horizontalAdvance(text());
    return QSize(TextIndent + TextWidth + 2, qMax(GlyphSize, Metrics.height()));
}

void TQxCheckBox::Loaded()
{
    BiLoaded();
}

bool TQxCheckBox::event(QEvent* Event)
{
    if (Event->type() == QEvent::Polish)
        EndLoading();
    return QAbstractButton::event(Event);
}

void TQxCheckBox::changeEvent(QEvent* Event)
{
    QAbstractButton::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange)
        BiDirectionChanged(IsLoading());
}

void TQxCheckBox::paintEvent(QPaintEvent*)
{
    QPainter Painter(this);
    Painter.setLayoutDirection(layoutDirection());
    const bool RightToLeft = BiDiMode() == bdRightToLeft;
    const QRect Text = TextRect();
    // The side is fixed here, not left to Qt's mirroring of the alignment.
    const int Flags = Qt::AlignAbsolute | (RightToLeft ? Qt::AlignRight : Qt::AlignLeft)
        | Qt::AlignVCenter | Qt::TextWordWrap;
    DrawStyledText(&Painter, Text, Flags, text(), d->Font, TextLook(), isEnabled());

    QSvgRenderer Glyph(GlyphFile(GlyphName()));
    if (Glyph.isValid())
        Glyph.render(&Painter, QRectF(GlyphRect()));

    if (hasFocus()) {
        QStyleOptionFocusRect Option;
        Option.initFrom(this);
        Option.rect = Text;
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &Option, &Painter, this);
    }
}

void TQxCheckBox::keyPressEvent(QKeyEvent* Event)
{
    if ((Event->key() == Qt::Key_Return || Event->key() == Qt::Key_Enter)
        && !(Event->modifiers() & ~Qt::KeypadModifier)) {
        SelectNextControl(this, true);
        Event->accept();
        return;
    }
    QAbstractButton::keyPressEvent(Event);
}

// A click by mouse or key flips the state through here, before clicked() is emitted.
void TQxCheckBox::nextCheckState()
{
    QAbstractButton::nextCheckState();
    setFocus(Qt::OtherFocusReason);
}

void TQxCheckBox::FollowChecked()
{
    if (d->Control)
        d->Control->setEnabled(isChecked());
    update();
    if (QAccessible::isActive()) {
        QAccessible::State changed;
        changed.checked = true;
        QAccessibleStateChangeEvent event(this, changed);
        QAccessible::updateAccessibility(&event);
    }
}

TBiDiMode TQxCheckBox::BiLanguage() const { return BiDiMode(); }
void TQxCheckBox::ShowBiCaption(const QString& Caption) { SetCaption(Caption); }
void TQxCheckBox::ShowBiFont(const TFont& Font) { SetFont(Font); }

} // namespace Kesh
