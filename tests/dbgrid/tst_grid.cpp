// The grid on screen: its cursor is the dataset's, rows are read lazily, cells, titles and
// fixed columns painted in their colours and mirrored under right to left, the keyboard,
// multi-selection, dropped files and the per-column keyboard layout.
#include "grid_fixture.h"
#include "dialog_helper.h"
#include "colors.h"
#include "platform/keyboard.h"
#include <QAbstractButton>
#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QStyleOptionViewItem>
#include <QTimer>
#include <QUrl>

using namespace Kesh;
using namespace GridTest;

class TestGrid : public QObject
{
    Q_OBJECT

    TRecordingKeyboard* m_keyboard = nullptr;

private Q_SLOTS:
    void initTestCase()
    {
        auto K = std::make_unique<TRecordingKeyboard>(QStringLiteral("00000409"));
        m_keyboard = K.get();
        SetKeyboardBackend(std::move(K));
    }

    void modelAndLazyReading()
    {
        auto Ds = Items(3000);
        Form F(Ds.get());
        QAbstractItemModelTester Tester(F.Grid->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QVERIFY(F.Show());
        QCOMPARE(F.Grid->model()->columnCount(), 5);
        QCOMPARE(F.Grid->model()->index(2, 1).data().toString(), QStringLiteral("Item 3"));
        Ds->Last();
        QCOMPARE(F.Grid->currentIndex().row(), 2999);
        QVERIFY(F.Grid->rowAt(F.Grid->viewport()->height() - 10) >= 2990 || F.Grid->rowAt(F.Grid->viewport()->height() - 10) == -1);
    }

    void cursorBothWays()
    {
        auto Ds = Items(50);
        Form F(Ds.get());
        QVERIFY(F.Show());
        QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, {}, F.Cell(4, 1));
        QCOMPARE(Ds->RecNo(), 5);
        Ds->Next();
        QCOMPARE(F.Grid->currentIndex().row(), 5);
        QCOMPARE(F.Grid->currentIndex().column(), 1);
        QTest::keyClick(F.Grid, Qt::Key_Down);
        QCOMPARE(Ds->RecNo(), 7);
        QTest::keyClick(F.Grid, Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(Ds->RecNo(), 50);
        QCOMPARE(F.Grid->currentIndex().row(), 49);
        QTest::keyClick(F.Grid, Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(Ds->RecNo(), 1);
        QTest::keyClick(F.Grid, Qt::Key_PageDown);
        QVERIFY(Ds->RecNo() > 5);
        QCOMPARE(F.Grid->currentIndex().row(), Ds->RecNo() - 1);
    }

    void colours()
    {
        auto Ds = Items(8);
        Form F(Ds.get());
        F.Grid->SetRowBiColor(true);
        F.Grid->GetColumns()->Items(2)->SetColor(0x00FF00);
        F.Grid->_OnCellColor = [](QObject*, int Column, TColor& Font, TColor& Cell) {
            if (Column == 3) {
                Font = clRed;
                Cell = 0x0000AA;
            }
        };
        QVERIFY(F.Show());
        // Rows 0, 2, 4 white and 1, 3, 5 darker by 16 in column 0 (row 0 is current: look at 2..5).
        for (int Row = 2; Row < 6; ++Row)
            QCOMPARE(F.CellColor(Row, 0), Row % 2 ? QColor(0xEF, 0xEF, 0xEF) : QColor(Qt::white));
        QCOMPARE(F.CellColor(2, 2), QColor(0, 255, 0));
        QCOMPARE(F.CellColor(3, 2), QColor(0, 239, 0));
        QCOMPARE(F.CellColor(3, 3), Rgb(0x0000AA));
        // The current cell of a focused grid is highlighted, and takes no colour of the hook.
        F.Grid->SetSelectedIndex(3);
        QCOMPARE(F.CellColor(0, 3), Rgb(clHighlight));
        // Multi-selected rows are highlighted whole.
        F.Grid->SetOptions(F.Grid->GetOptions() | dgMultiSelect);
        F.Grid->SelectedRows()->SetRowSelected(4, true);
        QCOMPARE(F.CellColor(4, 0), Rgb(clHighlight));
        QCOMPARE(F.CellColor(4, 4), Rgb(clHighlight));
        // A disabled grid draws its text grey, so no hook colour either.
        F.Grid->setEnabled(false);
        QCOMPARE(F.CellColor(3, 3), Rgb(0xE0E8EC - 0x101010));
    }

    void fixedColumns_data() { AddRtlRows(); }
    void fixedColumns()
    {
        QFETCH(bool, rtl);
        auto Ds = Items(5);
        Form F(Ds.get());
        F.Grid->SetViewRecordNo(true);
        F.Grid->SetFixedColor(0x00FFFF);
        F.RightToLeft(rtl);
        QVERIFY(F.Show());
        QVERIFY(F.Grid->GetOptions() & dgIndicator);
        QCOMPARE(F.Grid->IndicatorOffset(), 2);
        const QHeaderView* V = F.Grid->verticalHeader();
        QCOMPARE(V->width(), 11 + 48);
        // The fixed columns stand at the reading start: left, or right under right to left.
        const QRect Data = F.Grid->viewport()->geometry();
        if (rtl)
            QVERIFY(V->geometry().left() >= Data.right());
        else
            QVERIFY(V->geometry().right() <= Data.left());
        // The indicator glyph (black) of the current row sits in the outer 11 pixels.
        const QImage Image = F.Image();
        const QRect Row0 = QRect(V->mapTo(F.Grid, QPoint(0, V->sectionViewportPosition(0))), QSize(V->width(), V->sectionSize(0)));
        int BlackOuter = 0, BlackInner = 0;
        for (int Y = Row0.top(); Y <= Row0.bottom(); ++Y)
            for (int X = Row0.left(); X <= Row0.right(); ++X) {
                const bool Outer = rtl ? X > Row0.right() - 11 : X < Row0.left() + 11;
                if (Image.pixelColor(X, Y) == QColor(Qt::black))
                    ++(Outer ? BlackOuter : BlackInner);
            }
        QVERIFY2(BlackOuter > 5, qPrintable(QString::number(BlackOuter)));
        // The fixed colour shows in both parts.
        QCOMPARE(Image.pixelColor(rtl ? Row0.right() - 1 : Row0.left() + 1, Row0.top() + 2), QColor(255, 255, 0));
        // Widths clamp; leaving dgIndicator leaves the record-number column alone.
        F.Grid->SetViewRecNoWidth(5);
        QCOMPARE(F.Grid->GetViewRecNoWidth(), 20);
        F.Grid->SetViewRecNoWidth(500);
        QCOMPARE(F.Grid->GetViewRecNoWidth(), 200);
        F.Grid->SetOptions(F.Grid->GetOptions() & ~dgIndicator);
        QCOMPARE(F.Grid->IndicatorOffset(), 1);
        QCOMPARE(F.Grid->verticalHeader()->sizeHint().width(), 200);
        F.Grid->SetViewRecordNo(true);
        QCOMPARE(F.Grid->IndicatorOffset(), 2);
        F.Grid->SetViewRecordNo(false);
        QCOMPARE(F.Grid->IndicatorOffset(), 1);
        QVERIFY(F.Grid->GetOptions() & dgIndicator);
    }

    void appendedRecordNumber()
    {
        // An appended record not yet posted shows RecordCount + 1: the same picture as once it
        // is posted at the end, and not the picture of the row above it.
        auto Ds = Items(3);
        Form F(Ds.get());
        F.Grid->SetViewRecordNo(true);
        QVERIFY(F.Show());
        QHeaderView* V = F.Grid->verticalHeader();
        auto Number = [&](int Row) {
            const QImage Image = V->grab().toImage();
            return Image.copy(11, V->sectionViewportPosition(Row), 48, V->sectionSize(Row));
        };
        const QImage Third = Number(2);
        Ds->Append();
        Ds->FieldByName(QStringLiteral("Id"))->SetAsInteger(4);
        QCOMPARE(Ds->RecNo(), -1);
        const QImage Unposted = Number(3);
        Ds->Post();
        QCOMPARE(Ds->RecNo(), 4);
        QCOMPARE(Unposted, Number(3));
        QVERIFY(Unposted != Third);
    }

    void enterMovesOn()
    {
        auto Ds = Items(5);
        Form F(Ds.get());
        QVERIFY(F.Show());
        F.Grid->SetSelectedIndex(3);
        QTest::keyClick(F.Grid, Qt::Key_Return);
        QCOMPARE(F.Grid->SelectedIndex(), 4);
        QTest::keyClick(F.Grid, Qt::Key_Return);
        QCOMPARE(F.Grid->SelectedIndex(), 0);
        QCOMPARE(Ds->RecNo(), 2);
        int Seen = -1;
        F.Grid->OnKeyDown = [&](QObject*, int& Key, Qt::KeyboardModifiers) { Seen = Key; };
        QTest::keyClick(F.Grid, Qt::Key_Return);
        QCOMPARE(Seen, 0);  // the user's handler runs after, with the key cleared
        F.Grid->SetOptions(F.Grid->GetOptions() | dgRowSelect);
        QTest::keyClick(F.Grid, Qt::Key_Return);
        QCOMPARE(Seen, int(Qt::Key_Return));
        QCOMPARE(F.Grid->SelectedIndex(), 1);
    }

    void multiSelect()
    {
        auto Ds = Items(12);
        Form F(Ds.get());
        F.Grid->SetOptions(F.Grid->GetOptions() | dgMultiSelect);
        QVERIFY(F.Show());
        for (int Row : {5, 2, 9})
            QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, Qt::ControlModifier, F.Cell(Row, 0));
        TQxBookmarkList* Sel = F.Grid->SelectedRows();
        QCOMPARE(Sel->Count(), 3);
        auto IdOf = [&](const QByteArray& Mark) {
            Ds->GotoBookmark(Mark);
            return Ds->FieldByName(QStringLiteral("Id"))->AsInteger();
        };
        QCOMPARE(IdOf(Sel->Items(0)), 3);
        QCOMPARE(IdOf(Sel->Items(1)), 6);
        QCOMPARE(IdOf(Sel->Items(2)), 10);
        // Find of an absent bookmark: false, with its insertion place.
        Ds->SetRecNo(5);
        int Index = -1;
        QVERIFY(!Sel->Find(Ds->Bookmark(), Index));
        QCOMPARE(Index, 1);
        // Ctrl+click again unselects; a plain click clears; Shift+click selects a range.
        QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, Qt::ControlModifier, F.Cell(5, 0));
        QCOMPARE(Sel->Count(), 2);
        QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, {}, F.Cell(1, 0));
        QCOMPARE(Sel->Count(), 0);
        QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, Qt::ShiftModifier, F.Cell(4, 0));
        QCOMPARE(Sel->Count(), 4);
        QVERIFY(Sel->CurrentRowSelected());
        // Shift+Down extends, Shift+Up takes back.
        QTest::keyClick(F.Grid, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(Sel->Count(), 5);
        QTest::keyClick(F.Grid, Qt::Key_Up, Qt::ShiftModifier);
        QCOMPARE(Sel->Count(), 4);
        // Delete removes exactly the selected records.
        Sel->Delete();
        QCOMPARE(Sel->Count(), 0);
        QCOMPARE(Ds->RecordCount(), 8);
        QVERIFY(!Ds->Locate(QStringLiteral("Id"), 3));
        QVERIFY(Ds->Locate(QStringLiteral("Id"), 1));
        QVERIFY(Ds->Locate(QStringLiteral("Id"), 6));
        // Closing clears the list; asking a closed grid raises.
        QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, Qt::ControlModifier, F.Cell(0, 0));
        QCOMPARE(Sel->Count(), 1);
        Ds->Close();
        QCOMPARE(Sel->Count(), 0);
        QVERIFY_THROWS_EXCEPTION(EInvalidGridOperation, Sel->CurrentRowSelected());
    }

    void droppedFiles_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::newRow("three") << QStringList{"/tmp/a.txt", "/tmp/b c.png", "/tmp/ج.pdf"};
        QTest::newRow("one") << QStringList{"/tmp/only.csv"};
    }
    void droppedFiles()
    {
        QFETCH(QStringList, files);
        auto Ds = Items(2);
        Form F(Ds.get());
        QVERIFY(F.Show());
        int Calls = 0, Count = 0;
        QString Joined;
        F.Grid->_OnDropFile = [&](QObject* Sender, int N, const QString& Names) {
            QCOMPARE(Sender, F.Grid);
            ++Calls;
            Count = N;
            Joined = Names;
        };
        QMimeData Data;
        QList<QUrl> Urls;
        for (const QString& File : files)
            Urls << QUrl::fromLocalFile(File);
        Data.setUrls(Urls);
        const QPoint At = F.Cell(0, 0);
        QDragEnterEvent Enter(At, Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(F.Grid->viewport(), &Enter);
        QVERIFY(Enter.isAccepted());
        QDropEvent Drop(At, Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(F.Grid->viewport(), &Drop);
        QCOMPARE(Calls, 1);
        QCOMPARE(Count, files.size());
        QCOMPARE(Joined, files.join(QLatin1Char('|')));
        // Without a handler a drop is refused.
        F.Grid->_OnDropFile = nullptr;
        QDragEnterEvent Again(At, Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(F.Grid->viewport(), &Again);
        QVERIFY(!Again.isAccepted());
    }

    void columnKeyboard_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("keyboard");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("expected");
        QTest::newRow("integer, Arabic asked") << 2 << int(kxArabic) << false << "00000409";
        QTest::newRow("time, Arabic") << 4 << int(kxArabic) << false << "00000401";
        QTest::newRow("string, English") << 1 << int(kxEnglish) << true << "00000409";
        QTest::newRow("string, direction rtl") << 1 << int(kxBiDiMode) << true << "00000401";
        QTest::newRow("string, direction ltr") << 1 << int(kxBiDiMode) << false << "00000409";
    }
    void columnKeyboard()
    {
        QFETCH(int, column);
        QFETCH(int, keyboard);
        QFETCH(bool, rtl);
        QFETCH(QString, expected);
        auto Ds = Items(3);
        Form F(Ds.get());
        F.RightToLeft(rtl);
        QVERIFY(F.Show());
        ActivateKeyboardLayout(QStringLiteral("00000401"));
        F.Grid->GetColumns()->Items(column)->GetBiDiField()->SetKeyboard(TxColumnKeyboard(keyboard));
        int Entered = 0, Left = 0;
        F.Grid->OnColEnter = [&](QObject*) { ++Entered; };
        F.Grid->OnColExit = [&](QObject*) { ++Left; };
        F.Grid->SetSelectedIndex(column);
        QCOMPARE(ActiveKeyboardLayout(), expected);
        QCOMPARE(Entered, 1);
        QCOMPARE(Left, 1);
        // Leaving for another control brings the screen's default layout back.
        QLineEdit Other(&F.Window);
        Other.show();
        Other.setFocus();
        QCOMPARE(ActiveKeyboardLayout(), DefaultKeyboardLayout());
    }

    void titlesAndClicks()
    {
        auto Ds = Items(3);
        Form F(Ds.get());
        TQxColumn* Clicked = nullptr;
        F.Grid->OnTitleClick = [&](TQxColumn* C) { Clicked = C; };
        TQxColumn* Cell = nullptr;
        F.Grid->OnCellClick = [&](TQxColumn* C) { Cell = C; };
        QVERIFY(F.Show());
        QHeaderView* H = F.Grid->horizontalHeader();
        QTest::mouseClick(H->viewport(), Qt::LeftButton, {}, QPoint(H->sectionViewportPosition(2) + 10, H->height() / 2));
        QCOMPARE(Clicked, F.Grid->GetColumns()->Items(2));
        QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, {}, F.Cell(1, 3));
        QCOMPARE(Cell, F.Grid->GetColumns()->Items(3));
        // A title width dragged by the user is kept by the column.
        H->resizeSection(1, 150);
        QCOMPARE(F.Grid->GetColumns()->Items(1)->GetWidth(), 150);
        // Dragging a title moves the column.
        int From = -1, To = -1;
        F.Grid->OnColumnMoved = [&](QObject*, int A, int B) { From = A; To = B; };
        H->moveSection(0, 2);
        QCOMPARE(From, 0);
        QCOMPARE(To, 2);
        QCOMPARE(F.Grid->GetColumns()->Items(2)->GetFieldName(), QStringLiteral("Id"));
        QCOMPARE(F.Grid->model()->index(0, 2).data().toString(), QStringLiteral("1"));
    }

    // Titles: with dgTitleHotTrack the title under the mouse is 16 lighter until the mouse
    // leaves; with dgTitleClick a pressed title's caption is drawn 1 pixel further in.
    void titleHotTrackAndPress_data()
    {
        QTest::addColumn<bool>("hotTrack");
        QTest::addColumn<bool>("titleClick");
        QTest::addColumn<bool>("rtl");
        QTest::newRow("both") << true << true << false;
        QTest::newRow("both, rtl") << true << true << true;
        QTest::newRow("neither") << false << false << false;
    }
    void titleHotTrackAndPress()
    {
        QFETCH(bool, hotTrack);
        QFETCH(bool, titleClick);
        QFETCH(bool, rtl);
        auto Ds = Items(3);
        Form F(Ds.get());
        F.Option(dgTitleHotTrack, hotTrack);
        F.Option(dgTitleClick, titleClick);
        F.RightToLeft(rtl);
        QVERIFY(F.Show());
        QHeaderView* H = F.Grid->horizontalHeader();
        // A background pixel of title I (clear of its caption and edges), and its caption.
        auto Title = [&](int I) {
            const int X = H->sectionViewportPosition(I);
            return H->viewport()->grab(QRect(X, 0, H->sectionSize(I), H->height())).toImage();
        };
        auto Background = [&](int I) { return Title(I).pixelColor(3, H->height() - 4); };
        auto Ink = [](const QImage& Image) {  // the box of the caption's dark pixels
            QRect Box;
            for (int Y = 0; Y < Image.height(); ++Y)
                for (int X = 2; X < Image.width() - 2; ++X)
                    if (Image.pixelColor(X, Y).lightness() < 100)
                        Box |= QRect(X, Y, 1, 1);
            return Box;
        };
        const QColor Normal[] = {Background(0), Background(1), Background(2)};
        QCOMPARE(Normal[1], Rgb(F.Grid->GetColumns()->Items(1)->GetTitle()->GetColor()));
        const QPoint On1(H->sectionViewportPosition(1) + H->sectionSize(1) / 2, H->height() / 2);
        QTest::mouseMove(H->viewport(), On1);
        QTRY_COMPARE(Background(1), hotTrack ? Rgb(ChangeColor(F.Grid->GetColumns()->Items(1)->GetTitle()->GetColor(), 16))
                                             : Normal[1]);
        QCOMPARE(Background(0), Normal[0]);
        QCOMPARE(Background(2), Normal[2]);
        QEvent Leave(QEvent::Leave);
        QApplication::sendEvent(H->viewport(), &Leave);
        QCOMPARE(Background(1), Normal[1]);

        const QRect Up = Ink(Title(1));
        QVERIFY(!Up.isEmpty());
        QTest::mousePress(H->viewport(), Qt::LeftButton, {}, On1);
        const QRect Down = Ink(Title(1));
        QTest::mouseRelease(H->viewport(), Qt::LeftButton, {}, On1);
        QCOMPARE(Down, titleClick ? Up.translated(1, 1) : Up);
        QCOMPARE(Ink(Title(1)), Up);
    }

    // dgAlwaysShowEditor: the focused grid always has its editor open on the current cell,
    // following the cell as the user moves, unless editing is off or the grid read-only.
    void alwaysShowEditor_data()
    {
        QTest::addColumn<bool>("always");
        QTest::addColumn<bool>("editing");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<bool>("shown");
        QTest::newRow("on") << true << true << false << true;
        QTest::newRow("off") << false << true << false << false;
        QTest::newRow("on, editing off") << true << false << false << false;
        QTest::newRow("on, read-only grid") << true << true << true << false;
    }
    void alwaysShowEditor()
    {
        QFETCH(bool, always);
        QFETCH(bool, editing);
        QFETCH(bool, readOnly);
        QFETCH(bool, shown);
        auto Ds = Items(10);
        Form F(Ds.get());
        F.Option(dgAlwaysShowEditor, always);
        F.Option(dgEditing, editing);
        F.Grid->SetReadOnly(readOnly);
        QVERIFY(F.Show());
        F.Grid->SetSelectedIndex(1);
        auto EditorText = [&]() -> QString {
            auto* Editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
            return F.Grid->EditorMode() && Editor ? Editor->text() : QStringLiteral("(no editor)");
        };
        QTRY_COMPARE(EditorText(), shown ? QStringLiteral("Item 1") : QStringLiteral("(no editor)"));
        // Moving down from within the editor: the editor follows to the next record.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        QTRY_COMPARE(Ds->RecNo(), 2);
        QTRY_COMPARE(EditorText(), shown ? QStringLiteral("Item 2") : QStringLiteral("(no editor)"));
        QCOMPARE(Ds->State(), dsBrowse);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTRY_COMPARE(EditorText(), shown ? QStringLiteral("2") : QStringLiteral("(no editor)"));
        QCOMPARE(Ds->State(), dsBrowse);
        // Focus leaving and coming back.
        QLineEdit Other(&F.Window);
        Other.show();
        Other.setFocus();
        QTRY_VERIFY(!F.Grid->EditorMode());
        QCOMPARE(Ds->State(), dsBrowse);
        F.Grid->setFocus();
        QTRY_COMPARE(EditorText(), shown ? QStringLiteral("2") : QStringLiteral("(no editor)"));
        QCOMPARE(Ds->State(), dsBrowse);  // an editor open is not yet an edit
    }

    // A column's PopupMenu comes up for a right click on the column's cells; other columns
    // keep the grid's own context menu behaviour.
    void columnPopupMenu_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("edge");  // -1 near the cell's left edge, 1 near its right, 0 centre
        QTest::addColumn<bool>("shown");
        for (const bool Rtl : {false, true}) {
            const char* Dir = Rtl ? "rtl" : "ltr";
            QTest::addRow("%s, column with a menu", Dir) << Rtl << 1 << 0 << true;
            QTest::addRow("%s, its left edge", Dir) << Rtl << 1 << -1 << true;
            QTest::addRow("%s, its right edge", Dir) << Rtl << 1 << 1 << true;
            QTest::addRow("%s, column without", Dir) << Rtl << 2 << 0 << false;
            QTest::addRow("%s, left of it", Dir) << Rtl << (Rtl ? 2 : 0) << 1 << false;
        }
    }
    void columnPopupMenu()
    {
        QFETCH(bool, rtl);
        QFETCH(int, column);
        QFETCH(int, edge);
        QFETCH(bool, shown);
        auto Ds = Items(5);
        Form F(Ds.get());
        QMenu Menu;
        Menu.addAction(QStringLiteral("Copy"));
        F.Grid->GetColumns()->Items(1)->SetPopupMenu(&Menu);
        F.RightToLeft(rtl);
        QVERIFY(F.Show());
        const QRect Cell = F.Grid->visualRect(F.Grid->model()->index(2, column));
        const QPoint At(edge < 0 ? Cell.left() + 2 : edge > 0 ? Cell.right() - 2 : Cell.center().x(), Cell.center().y());
        QWidget* Popup = nullptr;
        QTimer::singleShot(0, [&] {
            Popup = QApplication::activePopupWidget();
            if (Popup)
                Popup->close();
        });
        // As a right click gives it: to the widget under the mouse, in its coordinates.
        QContextMenuEvent Event(QContextMenuEvent::Mouse, At, F.Grid->viewport()->mapToGlobal(At));
        QApplication::sendEvent(F.Grid->viewport(), &Event);
        QCoreApplication::processEvents();
        QCOMPARE(Popup, shown ? static_cast<QWidget*>(&Menu) : nullptr);
    }

    // An open editor's text goes into its own cell, whichever cell the user goes to next.
    void editorTextStaysInItsCell_data()
    {
        QTest::addColumn<QString>("typed");   // empty: the editor opened by F2, left as it was
        QTest::addColumn<QString>("leave");   // click (another row and column), column (same row), down
        for (const char* Typed : {"", "Zed"})
            for (const char* Leave : {"click", "column", "down"})
                QTest::addRow("%s, %s", *Typed ? "typed" : "untouched", Leave) << QString::fromLatin1(Typed)
                                                                               << QString::fromLatin1(Leave);
    }
    void editorTextStaysInItsCell()
    {
        QFETCH(QString, typed);
        QFETCH(QString, leave);
        auto Ds = Items(10);
        Form F(Ds.get());
        QVERIFY(F.Show());
        F.Grid->SetSelectedIndex(1);
        QTest::keyClick(F.Grid, Qt::Key_F2);
        QVERIFY(F.Grid->EditorMode());
        QCOMPARE(Ds->State(), dsBrowse);  // opening the editor changes nothing yet
        auto* Editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        QVERIFY(Editor);
        if (!typed.isEmpty()) {
            Editor->selectAll();
            QTest::keyClicks(Editor, typed);
            QCOMPARE(Ds->State(), dsEdit);
        }
        if (leave == QLatin1String("click"))
            QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, {}, F.Cell(3, 2));
        else if (leave == QLatin1String("column"))
            QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, {}, F.Cell(0, 2));
        else
            QTest::keyClick(Editor, Qt::Key_Down);
        QTRY_VERIFY(!F.Grid->EditorMode());
        if (Ds->State() != dsBrowse)
            Ds->Post();
        QStringList Names, Qtys;
        for (Ds->First(); !Ds->Eof(); Ds->Next()) {
            Names << Ds->FieldByName(QStringLiteral("Name"))->AsString();
            Qtys << Ds->FieldByName(QStringLiteral("Qty"))->AsString();
        }
        QStringList WantNames, WantQtys;
        for (int I = 1; I <= 10; ++I) {
            WantNames << QStringLiteral("Item %1").arg(I);
            WantQtys << QString::number(I);
        }
        if (!typed.isEmpty())
            WantNames[0] = typed;
        QCOMPARE(Names, WantNames);
        QCOMPARE(Qtys, WantQtys);
    }

    // dgColLines and dgRowLines each draw their own lines only, in both directions; an open
    // editor covers its whole cell.
    void gridLines_data()
    {
        QTest::addColumn<bool>("cols");
        QTest::addColumn<bool>("rows");
        QTest::addColumn<bool>("rtl");
        for (const bool Rtl : {false, true})
            for (int Mode = 0; Mode < 4; ++Mode)
                QTest::addRow("%s%s%s", Mode & 1 ? "columns " : "", Mode & 2 ? "rows " : "", Rtl ? "rtl" : "ltr")
                    << bool(Mode & 1) << bool(Mode & 2) << Rtl;
    }
    void gridLines()
    {
        QFETCH(bool, cols);
        QFETCH(bool, rows);
        QFETCH(bool, rtl);
        auto Ds = Items(10);
        Form F(Ds.get());
        F.Option(dgColLines, cols);
        F.Option(dgRowLines, rows);
        F.RightToLeft(rtl);
        QVERIFY(F.Show());
        QStyleOptionViewItem Option;
        Option.initFrom(F.Grid);
        const QColor Line(QRgb(F.Grid->style()->styleHint(QStyle::SH_Table_GridLineColor, &Option, F.Grid)));
        const QImage Image = F.Grid->viewport()->grab().toImage();
        const QRect A = F.Grid->visualRect(F.Grid->model()->index(2, 0));
        const QRect B = F.Grid->visualRect(F.Grid->model()->index(2, 1));
        const QRect Below = F.Grid->visualRect(F.Grid->model()->index(3, 0));
        auto LineBetween = [&](int From, int To, bool Vertical, int At) {
            for (int P = std::min(From, To); P <= std::max(From, To); ++P)
                if (Image.pixelColor(Vertical ? P : At, Vertical ? At : P) == Line)
                    return true;
            return false;
        };
        // Between the two cells of a row (B after A in the reading direction), and between rows.
        QCOMPARE(LineBetween(rtl ? B.right() : A.right(), rtl ? A.left() : B.left(), true, A.top() + 2), cols);
        QCOMPARE(LineBetween(A.bottom(), Below.top(), false, A.left() + 3), rows);

        F.Grid->SetSelectedIndex(1);
        QTest::keyClick(F.Grid, Qt::Key_F2);
        QWidget* Editor = QApplication::focusWidget();
        QVERIFY(F.Grid->EditorMode() && Editor);
        QCOMPARE(Editor->geometry(), F.Grid->visualRect(F.Grid->currentIndex()));
    }

    void recordNumberTitle_data() { AddRtlRows(); }
    void recordNumberTitle()
    {
        // The corner holds the record-number title: its pixels differ between "No." and "م",
        // and both draw something in the title font's colour.
        QFETCH(bool, rtl);
        auto Ds = Items(3);
        Form F(Ds.get());
        F.Grid->SetViewRecordNo(true);
        F.RightToLeft(rtl);
        QVERIFY(F.Show());
        QAbstractButton* Corner = F.Grid->findChild<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(Corner);
        const QImage Image = Corner->grab().toImage();
        int Purple = 0;
        for (int Y = 0; Y < Image.height(); ++Y)
            for (int X = 0; X < Image.width(); ++X)
                if (Image.pixelColor(X, Y).red() > 90 && Image.pixelColor(X, Y).green() < 60)
                    ++Purple;
        QVERIFY2(Purple > 3, qPrintable(QString::number(Purple)));
    }
};

QTEST_MAIN(TestGrid)
#include "tst_grid.moc"
