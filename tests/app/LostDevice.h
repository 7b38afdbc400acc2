#pragma once

#include "sim/device/SimulatedDevice.h"
#include "sim/line/Descriptor.h"
#include "tests/app/QuadTest.h"

#include <QTimer>

namespace test
{

/// When and how a device is lost.
struct Loss {
    enum class Of { Power, Line };

    /// Within the command at which it happens.
    enum class Moment {
        Unheard,      ///< the device has not read it; as long as it has power
        Undone,       ///< it is not carried out
        Unanswered,   ///< it is carried out, and nothing of the answer is sent
        HalfAnswered, ///< it is carried out, and half of the answer has arrived
        Repeated,     ///< neither it nor some of its repetitions are carried out
    };

    Of of = Of::Power;
    Moment moment = Moment::Undone;
    /// The first command being 1; 0 for never. A repetition is the same command.
    std::size_t command = 0;
};

/// A device that is lost at one of its commands. No other device gets the name of its port as
/// long as it lives.
class LostDevice
{
public:
    LostDevice(const Profile& profile, sim::Entry entry, Loss loss);

    QString port_path() const { return m_device.port_path(); }

    sim::DeviceMemory& memory() { return m_device.memory(); }

    bool has_heard_anything() const { return m_number != 0; }

    /// The framed commands that have reached it, without repetitions.
    Commands commands() const;

private:
    using Reply = std::vector<sim::Delivery>;

    bool is_at_loss() const { return m_number == m_loss.command; }

    QByteArray hear(const QByteArray& bytes);
    bool is_heard() const;
    Reply reply(const QByteArray& answer);
    Reply last_reply(const QByteArray& answer);
    void unplug_when_read();

    Loss m_loss;
    sim::SimulatedDevice m_device;
    sim::Descriptor m_name_keeper;
    std::size_t m_number = 0;
    std::size_t m_repetitions = 0; ///< of the last command
    QByteArray m_last_heard;
    bool m_is_lost = false;
    QTimer m_reading_host;
};

} // namespace test
