#include "inspect/SilentLibrary.h"

namespace inspect
{

SilentLibrary::SilentLibrary()
    : m_former_handler(
          qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {}))
{
}

SilentLibrary::~SilentLibrary()
{
    qInstallMessageHandler(m_former_handler);
}

} // namespace inspect
