#include "app/Console.h"

#include <QEventLoop>
#include <QTimer>

#include <cstdio>

QCoreApplication* a = nullptr;
QTextStream out(stdout, QIODevice::ReadWrite);
QFile serial_record;

namespace
{

void record(const char* direction, const QByteArray& frame)
{
    if (serial_record.isOpen()) {
        serial_record.write(direction + frame.toHex());
        serial_record.flush();
    }
}

} // namespace

/// The end of every wait for an answer wakes the dispatcher once more than needed, and GLib's also
/// each time that the port is written to. The poll that this costs is expensive on a terminal.
void make_application(int& argc, char** argv)
{
    qputenv("QT_NO_GLIB", "1");
    a = new QCoreApplication(argc, argv);
}

void slot_error(QString error)
{
    QTextStream stream(stdout);
    stream << error << "\n";
}

void end_application()
{
    delete a;
    a = nullptr;
}

/// Without a text stream of its own: creating one reopens standard output, and the device waits for
/// its next row meanwhile.
void slot_progress(unsigned int processed, unsigned int total)
{
    const unsigned int percentage = total == 0 ? 0 : processed * 100U / total;
    std::printf("\rProgress %u%%", percentage);
    (void)std::fflush(stdout);
}

bool open_frame_log(const QString& name)
{
    serial_record.setFileName(name);
    return serial_record.open(QIODevice::Append);
}

void slot_command_received(QByteArray frame)
{
    record("\nRX:", frame);
}

void slot_command_transmitted(QByteArray frame)
{
    record("\nTX:", frame);
}

void process_events_handler()
{
    QCoreApplication::processEvents();
}

void let_pending_events_pass()
{
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer); // a coarse one may be 5 % early
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(closing_ms);
    loop.exec();
}
