// Kesh for Qt — the grid's columns edited in Qt Designer.
#include "columns_editor.h"

#include "Kesh_dbGrid.h"
#include "colors.h"
#include "platform/exceptions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMetaEnum>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>
#include <functional>

namespace KeshDesigner {

namespace {

enum class TKind { Text, Number, Choice, Check, Tri, Color, Lines, Font };

using TItems = QList<QPair<QString, int>>;

// One member of a column and how it is edited. Optional members equal to Default (or left
// empty) are removed, as the grid stores only values that were assigned.
struct TMember
{
    const char* Key;
    const char* Label;
    TKind Kind;
    bool Optional = false;
    int Default = 0;
    int Low = 0, High = 0;
    TItems Items = {};
};

TItems EnumItems(const QMetaEnum& Enum)
{
    TItems Items = {};
    for (int I = 0; I < Enum.keyCount(); ++I)
        Items << qMakePair(QString::fromLatin1(Enum.key(I)), Enum.value(I));
    return Items;
}

const QList<TMember>& Members()
{
    using namespace Kesh::GridTypes;
    const TItems Align{{QStringLiteral("Left"), int(Qt::AlignLeft)}, {QStringLiteral("Right"), int(Qt::AlignRight)},
                       {QStringLiteral("Centre"), int(Qt::AlignHCenter)}};
    const TItems OptionalAlign = TItems{{QStringLiteral("(default)"), -1}} + Align;
    static const QList<TMember> List{
        {"FieldName", "Field", TKind::Text},
        {"Title._Caption_a", "Title (Arabic)", TKind::Text},
        {"Title._Caption_e", "Title (English)", TKind::Text},
        {"_BiDiField.FieldName_a", "Field in Arabic", TKind::Text},
        {"_BiDiField.FieldName_e", "Field in English", TKind::Text},
        {"Width", "Width", TKind::Number, true, -1, -1, 100000},
        {"_BiDiField.Align_a", "Alignment in Arabic", TKind::Choice, false, 0, 0, 0, Align},
        {"_BiDiField.Align_e", "Alignment in English", TKind::Choice, false, 0, 0, 0, Align},
        {"Title.Alignment", "Title alignment", TKind::Choice, true, -1, 0, 0, OptionalAlign},
        {"Color", "Colour", TKind::Color, true},
        {"Title.Color", "Title colour", TKind::Color, true},
        {"Readonly", "Read-only", TKind::Tri, true},
        {"Visible", "Visible", TKind::Check, true, 1},
        {"_TotalValue", "Total in the footer", TKind::Check, true, 0},
        {"_AutoSize", "Shares the free width", TKind::Check, true, 0},
        {"ButtonStyle", "Button", TKind::Choice, true, cbsAuto, 0, 0, EnumItems(QMetaEnum::fromType<TColumnButtonStyle>())},
        {"DropDownRows", "Drop-down rows", TKind::Number, true, 7, 0, 1000},
        {"PickList", "Pick list", TKind::Lines, true},
        {"_BiDiField.Keyboard", "Keyboard", TKind::Choice, false, 0, 0, 0, EnumItems(QMetaEnum::fromType<TxColumnKeyboard>())},
        {"Title._Font_a", "Title font (Arabic)", TKind::Font},
        {"Title._Font_e", "Title font (English)", TKind::Font},
        {"_BiDiField.Font_a", "Font in Arabic", TKind::Font},
        {"_BiDiField.Font_e", "Font in English", TKind::Font},
    };
    return List;
}

// Not stored: the member keeps its default.
QJsonValue Unset()
{
    return QJsonValue(QJsonValue::Undefined);
}

// The members of a column the library makes: what "Add" starts from.
QJsonObject FreshColumn()
{
    Kesh::TQxDBGridColumns Scratch;
    Scratch.Add();
    return QJsonDocument::fromJson(Scratch.GetText().toUtf8()).array().first().toObject();
}

} // namespace

// An editor of one member: shows a value (undefined: not stored) and takes the one typed,
// or says why it cannot.
struct TColumnsEditor::TEditor
{
    TMember Member;
    QWidget* Widget = nullptr;
    std::function<void(const QJsonValue&)> Show;
    std::function<QJsonValue(QString& Problem)> Take;
};

TColumnsEditor::TColumnsEditor(const QString& Text, QWidget* Parent)
    : QDialog(Parent), m_fresh(FreshColumn()), m_list(new QListWidget), m_problem(new QLabel)
{
    setWindowTitle(tr("Columns"));
    m_list->setObjectName(QStringLiteral("Columns"));
    m_problem->setObjectName(QStringLiteral("Problem"));
    m_problem->setStyleSheet(QStringLiteral("color: #b00000"));
    m_problem->setWordWrap(true);

    auto* Form = new QFormLayout;
    for (const TMember& Member : Members()) {
        auto* E = new TEditor{Member, nullptr, {}, {}};
        const QString Key = QString::fromLatin1(Member.Key);
        auto Changed = [this, E] { Store(*E); };
        switch (Member.Kind) {
        case TKind::Text:
        case TKind::Color:
        case TKind::Font: {
            auto* Line = new QLineEdit;
            if (Key.endsWith(QLatin1String("_a")))
                Line->setLayoutDirection(Qt::RightToLeft);
            connect(Line, &QLineEdit::textEdited, this, Changed);
            E->Widget = Line;
            E->Show = [Line, Member](const QJsonValue& V) {
                Line->setText(Member.Kind == TKind::Color && V.isDouble() ? Kesh::TColorToQColor(Kesh::TColor(V.toInt())).name() : V.toString());
            };
            E->Take = [Line, Member](QString& Problem) -> QJsonValue {
                const QString T = Line->text();
                if (Member.Kind == TKind::Text || (Member.Optional && T.trimmed().isEmpty()))
                    return Member.Kind == TKind::Text ? QJsonValue(T) : Unset();
                if (Member.Kind == TKind::Color) {
                    const QColor C = QColor::fromString(T.trimmed());
                    if (C.isValid())
                        return qint32(Kesh::QColorToTColor(C));
                    Problem = tr("\"%1\" is not a colour (a name or #rrggbb).").arg(T);
                    return Unset();
                }
                Kesh::TFont Font;
                if (Kesh::TryStrToFont(T, Font))
                    return T;
                Problem = tr("\"%1\" is not a font (Name,Size,$BBGGRR,Charset,Styles).").arg(T);
                return Unset();
            };
            break;
        }
        case TKind::Number: {
            auto* Spin = new QSpinBox;
            Spin->setRange(Member.Low, Member.High);
            if (Member.Default == Member.Low)
                Spin->setSpecialValueText(tr("(default)"));
            connect(Spin, &QSpinBox::valueChanged, this, Changed);
            E->Widget = Spin;
            E->Show = [Spin, Member](const QJsonValue& V) { Spin->setValue(V.toInt(Member.Default)); };
            E->Take = [Spin, Member](QString&) {
                return Spin->value() == Member.Default ? Unset() : QJsonValue(Spin->value());
            };
            break;
        }
        case TKind::Choice: {
            auto* Combo = new QComboBox;
            for (const auto& Item : Member.Items)
                Combo->addItem(Item.first, Item.second);
            connect(Combo, &QComboBox::activated, this, Changed);
            E->Widget = Combo;
            E->Show = [Combo, Member](const QJsonValue& V) {
                const int Value = V.toInt(Member.Default);
                if (Combo->findData(Value) < 0) // a value the list does not name: kept as it is
                    Combo->addItem(QString::number(Value), Value);
                Combo->setCurrentIndex(Combo->findData(Value));
            };
            E->Take = [Combo, Member](QString&) {
                const int Value = Combo->currentData().toInt();
                return Member.Optional && Value == Member.Default ? Unset() : QJsonValue(Value);
            };
            break;
        }
        case TKind::Check:
        case TKind::Tri: {
            auto* Box = new QCheckBox;
            Box->setTristate(Member.Kind == TKind::Tri); // partly checked: as the field says
            connect(Box, &QCheckBox::stateChanged, this, Changed);
            E->Widget = Box;
            E->Show = [Box, Member](const QJsonValue& V) {
                if (Member.Kind == TKind::Tri && V.isUndefined())
                    return Box->setCheckState(Qt::PartiallyChecked);
                Box->setCheckState(V.toInt(Member.Default) ? Qt::Checked : Qt::Unchecked);
            };
            E->Take = [Box, Member](QString&) {
                if (Box->checkState() == Qt::PartiallyChecked)
                    return Unset();
                const int Value = Box->isChecked();
                return Member.Kind == TKind::Check && Value == Member.Default ? Unset() : QJsonValue(Value);
            };
            break;
        }
        case TKind::Lines: {
            auto* Edit = new QPlainTextEdit;
            Edit->setFixedHeight(Edit->fontMetrics().lineSpacing() * 4 + 10);
            connect(Edit, &QPlainTextEdit::textChanged, this, Changed);
            E->Widget = Edit;
            E->Show = [Edit](const QJsonValue& V) {
                QStringList Lines;
                for (const QJsonValue& Line : V.toArray())
                    Lines << Line.toString();
                Edit->setPlainText(Lines.join(QLatin1Char('\n')));
            };
            E->Take = [Edit](QString&) {
                QStringList Lines = Edit->toPlainText().split(QLatin1Char('\n'));
                if (Lines.size() > 1 && Lines.last().isEmpty())
                    Lines.removeLast(); // the newline after the last item
                return Lines == QStringList{QString()} ? Unset() : QJsonValue(QJsonArray::fromStringList(Lines));
            };
            break;
        }
        }
        E->Widget->setObjectName(Key);
        Form->addRow(tr(Member.Label), E->Widget);
        m_editors << E;
    }

    auto* Members = new QWidget;
    Members->setObjectName(QStringLiteral("Members"));
    Members->setLayout(Form);
    auto* Scroll = new QScrollArea;
    Scroll->setWidget(Members);
    Scroll->setWidgetResizable(true);

    auto* Buttons = new QVBoxLayout;
    auto AddButton = [&](const QString& Name, const QString& Caption, std::function<void()> Action) {
        auto* B = new QPushButton(Caption);
        B->setObjectName(Name);
        B->setAutoDefault(false);
        connect(B, &QPushButton::clicked, this, Action);
        Buttons->addWidget(B);
    };
    AddButton(QStringLiteral("btnAdd"), tr("&Add"), [this] { AddColumn(); });
    AddButton(QStringLiteral("btnDelete"), tr("&Delete"), [this] { DeleteColumn(); });
    AddButton(QStringLiteral("btnUp"), tr("Move &up"), [this] { MoveColumn(-1); });
    AddButton(QStringLiteral("btnDown"), tr("Move do&wn"), [this] { MoveColumn(1); });
    Buttons->addStretch();

    auto* Box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    Box->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("btnOk"));
    Box->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("btnCancel"));
    connect(Box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(Box, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* Top = new QHBoxLayout;
    Top->addWidget(m_list, 2);
    Top->addLayout(Buttons);
    Top->addWidget(Scroll, 5);
    auto* Main = new QVBoxLayout(this);
    Main->addLayout(Top);
    Main->addWidget(m_problem);
    Main->addWidget(Box);
    resize(760, 520);

    QJsonParseError Error;
    const QJsonDocument Stored = QJsonDocument::fromJson(Text.toUtf8(), &Error);
    if (!Text.trimmed().isEmpty() && (Error.error != QJsonParseError::NoError || !Stored.isArray()))
        ShowProblem(tr("The grid's columns cannot be read; they are replaced when you press OK."));
    for (const QJsonValue& Column : Stored.array()) {
        m_columns << Column.toObject();
        m_list->addItem(Caption(m_columns.last()));
    }
    connect(m_list, &QListWidget::currentRowChanged, this, &TColumnsEditor::Select);
    m_list->setCurrentRow(m_columns.isEmpty() ? -1 : 0);
    Select(m_list->currentRow());
}

TColumnsEditor::~TColumnsEditor()
{
    qDeleteAll(m_editors);
}

QString TColumnsEditor::Caption(const QJsonObject& Column) const
{
    const QString Field = Column.value(QLatin1String("FieldName")).toString();
    return QStringLiteral("%1 — %2 / %3")
        .arg(Field.isEmpty() ? tr("(no field)") : Field, Column.value(QLatin1String("Title._Caption_e")).toString(),
             Column.value(QLatin1String("Title._Caption_a")).toString());
}

void TColumnsEditor::Select(int Row)
{
    m_loading = true;
    for (TEditor* E : std::as_const(m_editors)) {
        E->Show(Row >= 0 ? m_columns[Row].value(QLatin1String(E->Member.Key)) : Unset());
        E->Widget->setEnabled(Row >= 0);
    }
    m_loading = false;
}

void TColumnsEditor::Store(const TEditor& Editor)
{
    const int Row = m_list->currentRow();
    if (m_loading || Row < 0)
        return;
    QString Problem;
    const QJsonValue Value = Editor.Take(Problem);
    ShowProblem(Problem);
    m_refused = !Problem.isEmpty();
    if (m_refused)
        return; // the column keeps its value
    if (Value.isUndefined())
        m_columns[Row].remove(QLatin1String(Editor.Member.Key));
    else
        m_columns[Row].insert(QLatin1String(Editor.Member.Key), Value);
    m_list->item(Row)->setText(Caption(m_columns[Row]));
}

void TColumnsEditor::ShowProblem(const QString& Problem)
{
    m_problem->setText(Problem);
}

QString TColumnsEditor::Problem() const
{
    return m_problem->text();
}

void TColumnsEditor::AddColumn()
{
    const int Row = m_list->currentRow() + 1 > 0 ? m_list->currentRow() + 1 : int(m_columns.size());
    m_columns.insert(Row, m_fresh);
    m_list->insertItem(Row, Caption(m_fresh));
    m_list->setCurrentRow(Row);
}

void TColumnsEditor::DeleteColumn()
{
    const int Row = m_list->currentRow();
    if (Row < 0)
        return;
    {
        // The list moves its current row while the item goes: the editors follow after.
        const QSignalBlocker Quiet(m_list);
        delete m_list->takeItem(Row);
    }
    m_columns.removeAt(Row);
    Select(m_list->currentRow());
}

void TColumnsEditor::MoveColumn(int Step)
{
    const int Row = m_list->currentRow(), To = Row + Step;
    if (Row < 0 || To < 0 || To >= m_columns.size())
        return;
    m_columns.move(Row, To);
    {
        const QSignalBlocker Quiet(m_list);
        m_list->insertItem(To, m_list->takeItem(Row));
    }
    m_list->setCurrentRow(To);
    Select(To);
}

QString TColumnsEditor::JoinedText() const
{
    QJsonArray Columns;
    for (const QJsonObject& Column : m_columns)
        Columns << Column;
    return QString::fromUtf8(QJsonDocument(Columns).toJson(QJsonDocument::Compact));
}

QString TColumnsEditor::Text() const
{
    if (m_columns.isEmpty())
        return QString();
    // Read back by the library, so that the text is exactly what the grid writes.
    Kesh::TQxDBGridColumns Scratch;
    try {
        Scratch.SetText(JoinedText());
    } catch (const Kesh::Exception&) {
        return JoinedText();
    }
    return Scratch.GetText();
}

void TColumnsEditor::accept()
{
    Kesh::TQxDBGridColumns Scratch;
    try {
        if (!m_columns.isEmpty())
            Scratch.SetText(JoinedText());
    } catch (const Kesh::Exception& E) {
        ShowProblem(E.Message.section(QStringLiteral("\r\n"), -1));
        return;
    }
    if (!m_refused)
        QDialog::accept();
}

} // namespace KeshDesigner
