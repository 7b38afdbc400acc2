#pragma once

#include <QStringList>

namespace inspect
{

/// Collects the messages of the product library on Qt's debug channel while it lives, and keeps
/// them off the terminal. Only one may exist at a time.
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
