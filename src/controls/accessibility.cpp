// Kesh for Qt — the accessible interfaces of the controls that paint their own text: the
// label, the check box, the panel and the radio group tell assistive technology the text
// they show, their role, their state and their value, as Qt's own widgets do.
#include "check_box.h"
#include "label.h"
#include "panel.h"
#include "radio_group.h"

#include <QAccessibleWidget>

namespace Kesh {

namespace {

// The text a caption drawn with mnemonics reads as: "&&" is one "&", a lone "&" vanishes.
QString WithoutMnemonic(const QString& Text)
{
    QString out;
    out.reserve(Text.size());
    for (int i = 0; i < Text.size(); ++i) {
        if (Text[i] == QLatin1Char('&')) {
            if (++i >= Text.size())
                break;
        }
        out.append(Text[i]);
    }
    return out;
}

// The Alt+letter a caption drawn with mnemonics answers to; empty when none.
QString MnemonicKey(const QString& Text)
{
    for (int i = 0; i + 1 < Text.size(); ++i) {
        if (Text[i] != QLatin1Char('&'))
            continue;
        if (Text[i + 1] != QLatin1Char('&'))
            return QKeySequence(QKeyCombination(Qt::AltModifier, Qt::Key(Text[i + 1].toUpper().unicode())))
                .toString(QKeySequence::NativeText);
        ++i;
    }
    return QString();
}

class TAccessibleLabel : public QAccessibleWidget
{
public:
    explicit TAccessibleLabel(TQxCustomLabel* Label) : QAccessibleWidget(Label, QAccessible::StaticText) {}

    QString text(QAccessible::Text Kind) const override
    {
        const auto* label = static_cast<TQxCustomLabel*>(widget());
        const QString caption = label->GetCaption();
        switch (Kind) {
        case QAccessible::Name:
            return label->GetShowAccelChar() ? WithoutMnemonic(caption) : caption;
        case QAccessible::Accelerator:
            return label->GetShowAccelChar() && label->GetFocusControl() ? MnemonicKey(caption) : QString();
        default:
            return QAccessibleWidget::text(Kind);
        }
    }

    // The label names the control its accelerator focuses.
    QList<QPair<QAccessibleInterface*, QAccessible::Relation>> relations(QAccessible::Relation Match) const override
    {
        auto found = QAccessibleWidget::relations(Match);
        const auto* label = static_cast<TQxCustomLabel*>(widget());
        if ((Match & QAccessible::Labelled) && label->GetFocusControl()) {
            if (QAccessibleInterface* target = QAccessible::queryAccessibleInterface(label->GetFocusControl()))
                found.append({target, QAccessible::Labelled});
        }
        return found;
    }
};

class TAccessibleCheckBox : public QAccessibleWidget
{
public:
    explicit TAccessibleCheckBox(TQxCheckBox* Box) : QAccessibleWidget(Box, QAccessible::CheckBox) {}

    QString text(QAccessible::Text Kind) const override
    {
        // The caption is drawn as it is: an "&" is a character, not a mnemonic.
        if (Kind == QAccessible::Name)
            return Box()->text();
        if (Kind == QAccessible::Value)
            return Box()->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
        return QAccessibleWidget::text(Kind);
    }

    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.checkable = true;
        s.checked = Box()->isChecked();
        return s;
    }

    QStringList actionNames() const override { return QStringList{toggleAction()} + QAccessibleWidget::actionNames(); }
    void doAction(const QString& Name) override
    {
        if (Name != toggleAction())
            QAccessibleWidget::doAction(Name);
        else if (Box()->isEnabled())
            Box()->click();
    }

private:
    TQxCheckBox* Box() const { return static_cast<TQxCheckBox*>(widget()); }
};

class TAccessiblePanel : public QAccessibleWidget
{
public:
    explicit TAccessiblePanel(TQxCustomPanel* Panel) : QAccessibleWidget(Panel, QAccessible::Pane) {}

    QString text(QAccessible::Text Kind) const override
    {
        const auto* panel = static_cast<TQxCustomPanel*>(widget());
        if (Kind == QAccessible::Name)
            return WithoutMnemonic(panel->GetCaption());
        return QAccessibleWidget::text(Kind);
    }
};

class TAccessibleRadioGroup : public QAccessibleWidget
{
public:
    explicit TAccessibleRadioGroup(TQxRadioGroup* Group) : QAccessibleWidget(Group, QAccessible::Grouping) {}

    QString text(QAccessible::Text Kind) const override
    {
        const auto* group = static_cast<TQxRadioGroup*>(widget());
        if (Kind == QAccessible::Name)
            return WithoutMnemonic(group->title());
        if (Kind == QAccessible::Value) {
            const QStringList items = group->GetItems();
            const int index = group->GetItemIndex();
            return index >= 0 && index < items.size() ? WithoutMnemonic(items[index]) : QString();
        }
        return QAccessibleWidget::text(Kind);
    }
};

QAccessibleInterface* KeshAccessibleFactory(const QString&, QObject* Object)
{
    // Asked once per class of the object's ancestry, most derived first: the first answer
    // serves the library's classes and whatever a program derives from them.
    if (!Object || !Object->isWidgetType())
        return nullptr;
    if (auto* label = qobject_cast<TQxCustomLabel*>(Object))
        return new TAccessibleLabel(label);
    if (auto* box = qobject_cast<TQxCheckBox*>(Object))
        return new TAccessibleCheckBox(box);
    if (auto* panel = qobject_cast<TQxCustomPanel*>(Object))
        return new TAccessiblePanel(panel);
    if (auto* group = qobject_cast<TQxRadioGroup*>(Object))
        return new TAccessibleRadioGroup(group);
    return nullptr;
}

void InstallAccessibleFactory()
{
    QAccessible::installFactory(KeshAccessibleFactory);
}

} // namespace

Q_CONSTRUCTOR_FUNCTION(InstallAccessibleFactory)

} // namespace Kesh
