#include "Event.h"

namespace {

void CopyTag(const QString &text, char (&tag)[4])
{
    const QByteArray letters = text.left(sizeof tag).toLatin1();
    std::memcpy(tag, letters.constData(), static_cast<size_t>(letters.size()));
}

} // namespace

CEvent CEvent::Create(const QString &tag1, const QString &tag2)
{
    CEvent event;
    CopyTag(tag1, event.tag1);
    CopyTag(tag2, event.tag2);
    return event;
}
