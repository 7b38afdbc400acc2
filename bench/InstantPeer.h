#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>
#include <thread>

/// The far end of a pseudo-terminal that answers every frame at once, from a thread of its own, so
/// that only the host's time is measured.
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

    /// The path that the host opens.
    QString port_path() const;

private:
    void serve();
    void answer(const QByteArray& frame) const;

    Answers m_answers;
    int m_master = -1;
    int m_slave = -1; ///< kept open, so that a host closing its port is not a hang-up
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};
