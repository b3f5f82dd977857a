// Kesh Sales — what the list forms (customers, items) share: a grid with a footer over one
// table, a card of data-aware controls, the data-aware tool bar, the record browser for
// quick look-up and the record count in the footer.
#pragma once
#include <QPointer>
#include <QString>
#include <QWidget>

namespace Kesh {
class TDataSet;
class TDataSource;
class TQxAdoBrowser;
class TQxdbGrid;
class TQxdbGridFooter;
class TQxForm;
} // namespace Kesh
class QAbstractButton;

namespace Demo {

struct TDemoContext;

/// One grid column: its field in each language, its titles, width and whether the footer
/// totals it.
struct TGridColumn
{
    const char* FieldE;      ///< the field shown in English
    const char* FieldA;      ///< the field shown in Arabic (nullptr: FieldE)
    const char16_t* TitleA;
    const char* TitleE;
    int Width;
    bool Total = false;
    bool Stretch = false;    ///< takes the grid's free width
};

/// One column of the look-up browser.
struct TBrowserColumn
{
    const char* FieldE;
    const char* FieldA;      ///< nullptr: FieldE
    const char16_t* TitleA;
    const char* TitleE;
    int Width;
    bool Date = false;       ///< an integer date (yyyymmdd)
};

/// A top-level list form. The subclass builds its .ui, names its data source, then calls
/// Open with its dataset: the rest (grid, footer, tool bar icons, browser, keys) is here.
class TListForm : public QWidget
{
    Q_OBJECT

public:
    ~TListForm() override;

    Kesh::TDataSet* DataSet() const { return m_dataSet; }
    Kesh::TDataSource* Source() const { return m_source; }
    Kesh::TQxdbGrid* Grid() const { return m_grid; }
    Kesh::TQxdbGridFooter* Footer() const { return m_footer; }
    /// The look-up browser; nullptr unless the data is an SQL dataset on the context's connection.
    Kesh::TQxAdoBrowser* Browser() const { return m_browser; }
    Kesh::TQxForm* FormManager() const;

    /// Opens the browser (F4, the Find button) and moves to the record the user picks;
    /// true when it moved.
    bool Find();
    /// The number of records as the footer shows it.
    int RecordCount() const { return m_count; }

    /// Saves the browser of a list form with a search typed ("browser-" + Lang + ".png") and
    /// its filter dialog ("browser-filter-…") into Folder, printing the paths.
    static bool SaveBrowserShots(QWidget* Form, const QString& Folder, const QString& Lang);

protected:
    TListForm(TDemoContext& Context, QWidget* Parent);

    /// What the subclass's .ui gave: the grid and its footer, the control Enter in the grid
    /// goes to, the Find button. Plus the table, its key and the grid column that shows the
    /// record count.
    struct TParts
    {
        Kesh::TQxdbGrid* Grid = nullptr;
        Kesh::TQxdbGridFooter* Footer = nullptr;
        QWidget* FirstEdit = nullptr;
        QAbstractButton* FindButton = nullptr;
        QString Table, KeyField;
        int CountColumn = 0;
        const char16_t* CountA = nullptr;   ///< "%1 …" in Arabic
        const char* CountE = nullptr;       ///< "%1 …" in English
    };
    /// Builds the columns, binds the names of the .ui (EndLoading), opens DataSet and the
    /// browser of BrowserColumns (the key first) over the table.
    void Open(Kesh::TDataSet* DataSet, const TParts& Parts, std::initializer_list<TGridColumn> Columns,
              std::initializer_list<TBrowserColumn> BrowserColumns, const QString& BrowserA, const QString& BrowserE);

    void keyPressEvent(QKeyEvent* Event) override;

    TDemoContext& m_context;
    Kesh::TDataSource* m_source;

private:
    void BuildBrowser(std::initializer_list<TBrowserColumn> Columns, const QString& CaptionA, const QString& CaptionE);
    bool OnConnection() const;
    void Recount();
    void ShowCount();

    Kesh::TDataSet* m_dataSet = nullptr;
    Kesh::TQxdbGrid* m_grid = nullptr;
    Kesh::TQxdbGridFooter* m_footer = nullptr;
    Kesh::TQxAdoBrowser* m_browser = nullptr;
    QPointer<QWidget> m_firstEdit;
    TParts m_parts;
    int m_count = 0;
};

} // namespace Demo
