#include "sim/line/AdapterBuffer.h"

namespace sim
{

QByteArray AdapterBuffer::add(const QByteArray& bytes, qint64 now_ns)
{
    if (m_latency_ns == 0) {
        return bytes;
    }
    m_rest.append(bytes);
    QByteArray full = m_rest.left(m_rest.size() / packet_size * packet_size);
    m_rest.remove(0, full.size());
    if (m_rest.isEmpty()) {
        m_deadline_ns.reset();
    } else if (!full.isEmpty() || !m_deadline_ns) {
        m_deadline_ns = now_ns + m_latency_ns;
    }
    return full;
}

QByteArray AdapterBuffer::expire(qint64 now_ns)
{
    if (!m_deadline_ns || *m_deadline_ns > now_ns) {
        return {};
    }
    QByteArray packet = m_rest;
    clear();
    return packet;
}

void AdapterBuffer::clear()
{
    m_rest.clear();
    m_deadline_ns.reset();
}

} // namespace sim
