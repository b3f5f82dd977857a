// Kesh for Qt — the grid's columns edited in Qt Designer: a list of columns and, beside
// it, the members of the one selected (field, titles and field names in both languages,
// width, alignments, colours, read-only, pick list, keyboard, fonts).
#pragma once
#include <QDialog>
#include <QJsonObject>
#include <QList>

class QLabel;
class QListWidget;

namespace KeshDesigner {

/// Edits columns in the grid's text form (TQxDBGridColumns::GetText). Every editor is
/// named after the member it edits ("FieldName", "Title._Caption_a" …); a member left at
/// its default is not stored.
class TColumnsEditor : public QDialog
{
    Q_OBJECT

public:
    /// Starts from Text (empty: no columns yet).
    explicit TColumnsEditor(const QString& Text, QWidget* Parent = nullptr);
    ~TColumnsEditor() override;

    /// The columns as the grid stores them; empty when there are none (the grid then
    /// makes its columns from the dataset's fields).
    QString Text() const;
    /// The reason the last value typed or the columns as a whole were refused ("" if none).
    QString Problem() const;
    /// Keeps the dialog open, the problem shown, while the last value typed was refused or
    /// the columns do not read back.
    void accept() override;

    void AddColumn();
    void DeleteColumn();
    /// Moves the selected column by Step places.
    void MoveColumn(int Step);

private:
    struct TEditor;
    void Select(int Row);
    void Store(const TEditor& Editor);
    void ShowProblem(const QString& Problem);
    QString Caption(const QJsonObject& Column) const;
    QString JoinedText() const;

    QList<QJsonObject> m_columns;
    QJsonObject m_fresh; ///< the members of a new column
    QList<TEditor*> m_editors;
    QListWidget* m_list;
    QLabel* m_problem;
    bool m_loading = false;
    bool m_refused = false; ///< the last value typed was not taken
};

} // namespace KeshDesigner
