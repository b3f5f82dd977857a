// Kesh for Qt — the host application object and the application class.
#pragma once
#include "kesh_global.h"
#include <QApplication>
#include <QObject>
#include <QString>
#include <functional>

namespace Kesh {

Q_NAMESPACE_EXPORT(KESH_EXPORT)

/// Reading direction of the application or of a control; only bdRightToLeft is right to left.
enum TBiDiMode { bdLeftToRight, bdRightToLeft, bdRightToLeftNoAlign, bdRightToLeftReadingOnly };
Q_ENUM_NS(TBiDiMode)

/// The host object: the one switch that decides the language of everything the library shows.
class KESH_EXPORT THostApplication : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Kesh::TBiDiMode BiDiMode READ BiDiMode WRITE SetBiDiMode NOTIFY BiDiModeChanged)
    Q_PROPERTY(QString ExeName READ ExeName WRITE SetExeName)
    Q_PROPERTY(QString BiDiKeyboard READ BiDiKeyboard WRITE SetBiDiKeyboard)
    Q_PROPERTY(QString NonBiDiKeyboard READ NonBiDiKeyboard WRITE SetNonBiDiKeyboard)

public:
    TBiDiMode BiDiMode() const { return m_biDiMode; }
    /// Also sets QGuiApplication::layoutDirection when a GUI application exists.
    void SetBiDiMode(TBiDiMode Value);

    /// The executable's full path: QCoreApplication::applicationFilePath() unless set.
    QString ExeName() const;
    void SetExeName(const QString& Value) { m_exeName = Value; }

    QString BiDiKeyboard() const { return m_biDiKeyboard; }
    void SetBiDiKeyboard(const QString& Value) { m_biDiKeyboard = Value; }
    QString NonBiDiKeyboard() const { return m_nonBiDiKeyboard; }
    void SetNonBiDiKeyboard(const QString& Value) { m_nonBiDiKeyboard = Value; }

    /// Shows an error message; set by the message layer. Defaults to stderr.
    std::function<void(const QString&)> ShowException;

Q_SIGNALS:
    void BiDiModeChanged(Kesh::TBiDiMode Mode);

private:
    friend KESH_EXPORT THostApplication* Application();
    THostApplication();
    TBiDiMode m_biDiMode = bdLeftToRight;
    QString m_exeName;
    QString m_biDiKeyboard;
    QString m_nonBiDiKeyboard;
};

/// The process-wide host object.
KESH_EXPORT THostApplication* Application();

/// A QApplication that swallows the silent abort and shows every other library exception.
class KESH_EXPORT TQxApplication : public QApplication
{
    Q_OBJECT
public:
    TQxApplication(int& argc, char** argv);
    bool notify(QObject* Receiver, QEvent* Event) override;
};

} // namespace Kesh
