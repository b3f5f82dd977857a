// Kesh for Qt — a picture from a binary column, and a panel enabled by a dataset's state.
#pragma once
#include "db_buttons.h"
#include "panel.h"
#include "field_binding.h"
#include <QImage>
#include <QLabel>
#include <memory>

namespace Kesh {

/// Shows the picture held in a blob field. The format is read from the first two bytes, so
/// one column may hold several: "BM" bitmap, 00 00 icon, "GI" GIF, FF D8 JPEG, 89 50 PNG;
/// D7 CD (a placeable metafile, which Qt cannot draw) and anything else show nothing, and
/// the field's bytes are never changed by showing them. The picture is scaled down to fit,
/// keeping its proportions.
class KESH_EXPORT TQxdbImage : public QLabel, public TxFieldBinding
{
    Q_OBJECT
    KESH_FIELD_BINDING_PROPERTIES(_DataField, _DataSource)
    Q_PROPERTY(QImage Picture READ Picture NOTIFY PictureChanged USER true)
    Q_PROPERTY(QString Format READ Format NOTIFY PictureChanged)
public:
    explicit TQxdbImage(QWidget* Parent = nullptr);
    ~TQxdbImage() override;

    /// The picture shown (null when none).
    QImage Picture() const;
    /// Qt's name of the format shown ("bmp", "ico", "gif", "jpeg", "png"), empty when none.
    QString Format() const;

    /// The Qt format named by the first two bytes of Data, or an empty string ("wmf" for a
    /// placeable metafile, which is recognised but not shown).
    static QString FormatOf(const QByteArray& Data);

    /// Stores the bytes of FileName in the field (the dataset goes into edit mode; nothing is
    /// posted) when the file is a picture of a format the control shows; refuses any other
    /// file with a bilingual message and a silent abort.
    void LoadFromFile(const QString& FileName);

Q_SIGNALS:
    void PictureChanged();

protected:
    void resizeEvent(QResizeEvent* Event) override;
    void BindingChanged() override { DataChanged(); }
    /// Only a blob (binary) field can be attached: any other shows "Only TBlobField can be
    /// attached.", keeps no field and aborts silently.
    void DataFieldChanged(const QString& Value) override;

private:
    void DataChanged();
    void ShowPicture(const QImage& Image, const QString& Format);
    void FitPicture();
    std::unique_ptr<struct TQxdbImagePrivate> const d;
};

/// A bilingual panel enabled by its data source's state with the rules of the data-aware
/// buttons: txAllways, txEditing (dsEdit or dsInsert), txBrowsing (dsBrowse),
/// txBrowsingNotEmpty (dsBrowse with rows); disabling the panel disables what lies on it.
///
/// The panel hooks the data source's OnStateChange in Loaded (a panel built by a form
/// description, ended by EndLoading), keeping the handler the source had and calling it
/// after its own. A panel created in code after that is not hooked: call Refresh after
/// changing _EnabledWhen or _DataSource.
class KESH_EXPORT TQxdbPanel : public TQxCustomPanel
{
    Q_OBJECT
    Q_PROPERTY(Kesh::DbButtonTypes::TxEnabledWhenType _EnabledWhen READ GetEnabledWhen WRITE SetEnabledWhen)
    Q_PROPERTY(Kesh::TDataSource* _DataSource READ GetDataSource WRITE SetDataSource)
public:
    explicit TQxdbPanel(QWidget* Parent = nullptr);
    ~TQxdbPanel() override;

    TxEnabledWhenType GetEnabledWhen() const;
    void SetEnabledWhen(TxEnabledWhenType Value);
    TDataSource* GetDataSource() const;
    void SetDataSource(TDataSource* Value);

    /// Sets Enabled from the source's state by _EnabledWhen, repaints, then calls the
    /// source's previous handler with Sender.
    void OnStateChange(TDataSource* Sender);
    /// Runs OnStateChange (the previous handler gets the data source as Sender).
    void Refresh();

protected:
    void Loaded() override;

private:
    std::unique_ptr<struct TQxdbPanelPrivate> const d;
};

} // namespace Kesh
