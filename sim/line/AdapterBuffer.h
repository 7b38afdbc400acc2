#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>

namespace sim
{

/// How a USB adapter passes on bytes from the device: a full packet goes to the host at once, a
/// short one if it has not been filled within the latency time. The caller supplies the time.
class AdapterBuffer
{
public:
    static constexpr int packet_size = 62; ///< payload of a full-speed USB packet

    /// With a latency of 0 everything goes to the host at once.
    explicit AdapterBuffer(qint64 latency_ns) : m_latency_ns(latency_ns) {}

    /// Takes bytes and returns the full packets that they complete, one after the other.
    QByteArray add(const QByteArray& bytes, qint64 now_ns);
    /// The short packet, once its time is up; empty before.
    QByteArray expire(qint64 now_ns);

    /// When the short packet's time is up.
    std::optional<qint64> deadline_ns() const { return m_deadline_ns; }

    /// Bytes of the short packet.
    int size() const { return m_rest.size(); }

    void clear();

private:
    qint64 m_latency_ns;
    QByteArray m_rest;
    std::optional<qint64> m_deadline_ns;
};

} // namespace sim
