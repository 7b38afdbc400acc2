#pragma once

#include <QStringList>

namespace inspect
{

/// Collects what the product library writes to Qt's debug channel, and keeps it off the terminal,
/// while it lives. One at a time.
class CapturedMessages
{
public:
    CapturedMessages();
    ~CapturedMessages();
    CapturedMessages(const CapturedMessages&) = delete;
    CapturedMessages& operator=(const CapturedMessages&) = delete;

    /// The messages so far, without the quotes that the channel puts around text.
    const QStringList& messages() const;
};

} // namespace inspect
