// Kesh for Qt — the exception family of the library.
#pragma once
#include "kesh_global.h"
#include <QByteArray>
#include <QString>
#include <exception>

namespace Kesh {

/// Base of every exception the library raises; carries the message shown to the user.
class KESH_EXPORT Exception : public std::exception
{
public:
    explicit Exception(const QString& Msg);
    ~Exception() override;
    const char* what() const noexcept override;
    QString Message;

private:
    QByteArray m_what;
};

/// The silent abort: ends the current operation without any message.
class KESH_EXPORT EAbort : public Exception
{
public:
    EAbort();
};

/// A text could not be converted to a value (StrToFloat, EncodeDate, …).
class KESH_EXPORT EConvertError : public Exception
{
public:
    using Exception::Exception;
};

/// An error of the dataset framework or of the database server.
class KESH_EXPORT EDatabaseError : public Exception
{
public:
    using Exception::Exception;
};

/// A stream (a stored list, a form's data) is truncated or not in the expected format.
class KESH_EXPORT EReadError : public Exception
{
public:
    using Exception::Exception;
};

/// The settings file could not be written.
class KESH_EXPORT EIniFileException : public Exception
{
public:
    using Exception::Exception;
};

/// Raises the silent abort exception.
[[noreturn]] KESH_EXPORT void Abort();

} // namespace Kesh
