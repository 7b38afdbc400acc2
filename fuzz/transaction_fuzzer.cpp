#include "device/ZarnSerialDevice.h"
#include "fuzz/Target.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <fcntl.h>
#include <memory>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

// The input is what a device puts on the line: its first byte selects the command; after that, the
// bytes up to each 0xFF are the answer to one attempt.

namespace
{

/// The far end of a line: answers whatever arrives with the next answer of the script.
class ScriptedPeer
{
public:
    ScriptedPeer()
    {
        termios raw{};
        ::cfmakeraw(&raw);
        must_hold(::openpty(&m_master, &m_slave, nullptr, &raw, nullptr) == 0);
        must_hold(::fcntl(m_master, F_SETFL, O_NONBLOCK) == 0);
        m_notifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] { answer(); });
    }

    QString port() const
    {
        std::array<char, 64> name{};
        must_hold(::ttyname_r(m_slave, name.data(), name.size()) == 0);
        return QString::fromLocal8Bit(name.data());
    }

    void play(const QByteArray& script) { m_pieces = script.split('\xFF'); }

private:
    void answer()
    {
        std::array<char, 4096> heard{};
        while (::read(m_master, heard.data(), heard.size()) > 0) {
        }
        const QByteArray piece = m_pieces.isEmpty() ? QByteArray() : m_pieces.takeFirst();
        // If the line does not accept all of it, the answer is truncated.
        const auto taken =
            ::write(m_master, piece.constData(), static_cast<std::size_t>(piece.size()));
        must_hold(taken <= piece.size());
    }

    int m_master = -1;
    int m_slave = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QList<QByteArray> m_pieces;
};

/// Created once: opening a port for every input would take most of the time.
struct Line {
    ScriptedPeer peer;
    ZarnSerialDevice device{peer.port(), nullptr, 115200, false, 0};
};

QByteArray command_for(std::uint8_t choice)
{
    static const std::array<QByteArray, 4> COMMANDS{
        QByteArray("\x00\x02", 2), QByteArray("\x01\x04\x00\x08\x00", 5),
        QByteArray("\x02\x01\x00\x08\x00\x55\x04", 7), QByteArray("\x03\x01\x00\x08\x00", 5)};
    return COMMANDS.at(choice % COMMANDS.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool silent = silence_debug_messages();
    static int argc = 1;
    static char name[] = "transaction_fuzzer";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
    static Line line;
    must_hold(silent);
    if (size == 0) {
        return 0;
    }
    constexpr unsigned short expected = 4;
    line.peer.play(bytes_of(data + 1, size - 1));
    QByteArray response;
    const bool done = line.device.open_port() &&
                      line.device.send_and_receive(command_for(*data), response, expected, 2, 2);
    must_hold(!done || response.size() == expected);
    return 0;
}
