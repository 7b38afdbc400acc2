#include "inspect/CapturedMessages.h"

#include <QtGlobal>

namespace inspect
{

namespace
{

QStringList& captured()
{
    static QStringList messages;
    return messages;
}

void capture(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    const bool quoted = text.size() > 1 && text.startsWith(QLatin1Char('"'));
    captured().append(quoted ? text.mid(1, text.size() - 2) : text);
}

QtMessageHandler former_handler = nullptr;

} // namespace

CapturedMessages::CapturedMessages()
{
    captured().clear();
    former_handler = qInstallMessageHandler(capture);
}

CapturedMessages::~CapturedMessages()
{
    qInstallMessageHandler(former_handler);
}

const QStringList& CapturedMessages::messages() const
{
    return captured();
}

} // namespace inspect
