// What every form of the demo is handed: the database connection and, when the demo was
// started with --server, the application server that serves its customers.
#pragma once
#include <QString>

namespace Kesh {
class TQxAdoConnection;
}

namespace Demo {

struct TDemoContext
{
    Kesh::TQxAdoConnection* Conn = nullptr;
    QString ServerUrl;
    QString ServerToken;
    bool Remote() const { return !ServerUrl.isEmpty(); }
};

} // namespace Demo
