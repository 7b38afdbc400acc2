#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <thread>

/// The far end of a pseudo-terminal that answers every frame at once with the same bytes, from a
/// thread of its own, so that what is left to measure is the host.
class InstantPeer
{
public:
    explicit InstantPeer(QByteArray answer);
    ~InstantPeer();
    InstantPeer(const InstantPeer&) = delete;
    InstantPeer& operator=(const InstantPeer&) = delete;

    /// What the host opens.
    QString port_path() const;

private:
    void serve();

    QByteArray m_answer;
    int m_master = -1;
    int m_slave = -1; ///< kept open, so that a host that closes its port is no hang-up
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};
