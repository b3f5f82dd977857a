#include "exceptions.h"

namespace Kesh {

Exception::Exception(const QString& Msg) : Message(Msg), m_what(Msg.toUtf8()) {}
Exception::~Exception() = default;
const char* Exception::what() const noexcept { return m_what.constData(); }

// The text is the one the original platform used; ShowError recognises it and stays silent.
EAbort::EAbort() : Exception(QStringLiteral("Operation aborted")) {}

void Abort() { throw EAbort(); }

} // namespace Kesh
