#include "TableProtocol.h"

#include "AccountProtocol.h"
#include "Payload.h"

namespace TableProtocol {

namespace {

constexpr auto LINE_FIELDS = [](auto &payload, SLine &line) {
    payload.Number(line.uiTableID);
    payload.Text(line.strText, MAX_LINE_LENGTH);
    payload.Text(line.strNickname, AccountProtocol::MAX_NICKNAME_LENGTH);
    payload.Number(line.ucIsObserver);
};

constexpr auto NUMBER = [](auto &payload, quint32 &number) { payload.Number(number); };

} // namespace

QByteArray EncodeLine(const char *tag, const SLine &line)
{
    return Payload::Encode(tag, line, LINE_FIELDS);
}

QByteArray EncodeLeave(quint32 tableID)
{
    return Payload::Encode(LEAVE, tableID, NUMBER);
}

bool DecodeLine(const char *tag, const QByteArray &payload, SLine &line)
{
    SLine read;
    if (!Payload::Decode(tag, payload, read, LINE_FIELDS) || read.strText.isEmpty())
        return false;
    line = read;
    return true;
}

bool DecodeLeave(const QByteArray &payload, quint32 &tableID)
{
    return Payload::Decode(LEAVE, payload, tableID, NUMBER);
}

} // namespace TableProtocol
