// Fuzzes the readers of the application server: a request body as it arrives (the nesting
// check and the JSON parser), then every packet reader on it: data packets, deltas,
// parameters, field lists and rows. A reader must return true or false, never crash, and
// what it accepts must survive being written and read again unchanged.
#include "platform/remote/data_packet.h"
#include <cstdint>
#include <cstdlib>

using namespace Kesh;

namespace {

void Check(bool Ok)
{
    if (!Ok)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    const QByteArray Text(reinterpret_cast<const char*>(Data), int(Size));
    QJsonObject O;
    QString Error;
    if (!DataPacket::ParseObject(Text, 32, O, Error))
        return 0;

    TDataPacket Packet;
    if (DataPacket::DecodePacket(O, Packet, Error)) {
        TDataPacket Again;
        Check(DataPacket::DecodePacket(DataPacket::EncodePacket(Packet), Again, Error));
        Check(Again.Rows.size() == Packet.Rows.size() && Again.Fields.Count() == Packet.Fields.Count());
    }
    TFieldDefs Fields;
    QList<TDeltaRecord> Delta;
    if (DataPacket::DecodeDelta(O.value(QStringLiteral("delta")).toObject(), Fields, Delta, Error)) {
        for (const TDeltaRecord& R : Delta)
            R.Changed();
        TFieldDefs Fields2;
        QList<TDeltaRecord> Delta2;
        Check(DataPacket::DecodeDelta(DataPacket::EncodeDelta(Fields, Delta), Fields2, Delta2, Error));
        Check(Delta2.size() == Delta.size());
    }
    QList<TPacketParam> Params;
    if (DataPacket::DecodeParams(O.value(QStringLiteral("params")), Params, Error)) {
        QList<TPacketParam> Again;
        Check(DataPacket::DecodeParams(DataPacket::EncodeParams(Params), Again, Error));
        Check(Again.size() == Params.size());
    }
    QStringList Keys;
    TRecordValues Row;
    if (DataPacket::DecodeFields(O.value(QStringLiteral("fields")), Fields, Keys, Error))
        DataPacket::DecodeRow(O.value(QStringLiteral("row")), Fields, Row, Error);
    return 0;
}
