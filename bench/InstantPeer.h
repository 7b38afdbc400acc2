#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>
#include <thread>

/// The far end of a pseudo-terminal that answers every frame at once, from a thread of its own, so
/// that what is left to measure is the host.
class InstantPeer
{
public:
    /// Makes the frame that answers a frame; an empty one leaves it unanswered. Runs on the peer's
    /// thread.
    using Answers = std::function<QByteArray(const QByteArray& frame)>;

    explicit InstantPeer(Answers answers);
    ~InstantPeer();
    InstantPeer(const InstantPeer&) = delete;
    InstantPeer& operator=(const InstantPeer&) = delete;

    /// What the host opens.
    QString port_path() const;

private:
    void serve();
    void answer(const QByteArray& frame) const;

    Answers m_answers;
    int m_master = -1;
    int m_slave = -1; ///< kept open, so that a host that closes its port is no hang-up
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};
