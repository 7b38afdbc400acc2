#pragma once

#include <QtGlobal>

namespace inspect
{

/// Keeps what the product library says on Qt's debug channel off the terminal while it lives.
class SilentLibrary
{
public:
    SilentLibrary();
    ~SilentLibrary();
    SilentLibrary(const SilentLibrary&) = delete;
    SilentLibrary& operator=(const SilentLibrary&) = delete;

private:
    QtMessageHandler m_former_handler;
};

} // namespace inspect
