// Kesh Sales: the settings form. The company's name and the currency's names in both
// languages, kept in the database's Settings table.
#pragma once
#include "demo_context.h"

#include <QWidget>
#include <memory>

namespace Demo {

class TSettingsForm : public QWidget
{
    Q_OBJECT
public:
    explicit TSettingsForm(TDemoContext& Context, QWidget* Parent = nullptr);
    ~TSettingsForm() override;

    /// Whether a field differs from the stored setting.
    bool Modified() const;
    /// Checks the fields and stores them; false (with the reason shown) when a name is missing.
    bool Save();
    /// Drops the changes and closes the form.
    void Cancel();

Q_SIGNALS:
    /// The settings were stored.
    void Saved();

protected:
    /// Refuses while a field holds a change that is neither saved nor cancelled.
    void closeEvent(QCloseEvent* Event) override;

private:
    void Load();

    std::unique_ptr<class TSettingsFormPrivate> const d;
};

} // namespace Demo
