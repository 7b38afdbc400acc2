#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <deque>
#include <optional>

namespace sim
{

/// A burst of bytes in one direction.
struct Burst {
    QByteArray bytes;
    unsigned int baud = 0;
    /// Number of leading bytes whose time on the line has already passed, as for the echo of bytes
    /// that were sent.
    int passed = 0;
    bool whole = false; ///< arrives at once, when its last byte has passed
};

/// One direction of a paced line. Has no clock of its own: the caller passes times in, in
/// nanoseconds of any steady clock.
class PacedQueue
{
public:
    struct Due {
        QByteArray bytes;
        unsigned int baud = 0;
        qint64 due_ns = 0;
        bool last = false;   ///< ends its burst
        bool ending = false; ///< among the last bytes of its burst
    };

    /// The burst begins at `now_ns` or, if later, when everything before it has passed.
    void add(const Burst& burst, qint64 now_ns);
    /// The next bytes that have passed by `now_ns`.
    std::optional<Due> take(qint64 now_ns);
    /// When there will be something to take.
    std::optional<qint64> next_due_ns() const;
    /// That will be among the last bytes of its burst, for which a receiver waits.
    bool next_is_ending() const;

    bool is_empty() const { return m_waiting.empty(); }

    qint64 waiting_bytes() const { return m_waiting_bytes; }

    void clear();

private:
    void append(const Due& due);
    void add_slices(const QByteArray& bytes, unsigned int baud, qint64 start_ns);

    std::deque<Due> m_waiting;
    qint64 m_waiting_bytes = 0;
    qint64 m_free_ns = 0; ///< when the last byte accepted has passed
};

} // namespace sim
