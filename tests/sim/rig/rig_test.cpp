#include "sim/device/Error.h"
#include "sim/device/FrameCodec.h"
#include "sim/line/Alarm.h"
#include "sim/line/Line.h"
#include "sim/rig/Rig.h"
#include "tests/sim/HostPort.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

using namespace test;
using sim::add_fault;
using sim::Entry;
using sim::Error;
using sim::FaultKind;
using sim::make_frame;
using sim::Rig;
using sim::RigOptions;
using sim::Summary;
using testing::ElementsAre;

namespace
{

using Counts = std::map<FaultKind, unsigned int>;

const QByteArray row_data(0x40, '\x5A');
const QByteArray row_request = make_frame(bytes("02 01 00 08 00") + row_data);
const QByteArray row_answer = make_frame(bytes("02"));
const QByteArray erase_request = make_frame(bytes("03 01 00 08 00"));
const QByteArray erase_answer = make_frame(bytes("03"));
const QByteArray reset_request = make_frame(bytes("00 00"));

/// A running device on a line, with faults.
class SimRig : public testing::Test
{
protected:
    void start(const std::vector<const char*>& faults = {})
    {
        for (const char* fault : faults) {
            add_fault(options.faults, QString::fromLatin1(fault));
        }
        options.device.entry = Entry::Version;
        host.reset();
        rig = std::make_unique<Rig>(*profile, options);
        host = std::make_unique<HostPort>(rig->device().port_path(), 57600);
    }

    /// The next thing to be answered after a request that isn't. That nothing else comes shows that
    /// the request was not answered.
    void expect_silence_about(const QByteArray& request)
    {
        host->send(request);
        EXPECT_EQ(host->ask(version_frame, version_answer), version_answer);
    }

    QByteArray memory(unsigned int address, unsigned int count) const
    {
        return rig->device().memory().read(address, count);
    }

    Counts counts() const { return rig->summary().faults; }

    QString write_file(const char* name, const QByteArray& content) const
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    QByteArray file_content(const QString& path) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QTemporaryDir folder;
    std::unique_ptr<const Profile> profile = sample_profile();
    RigOptions options;
    std::unique_ptr<Rig> rig;
    std::unique_ptr<HostPort> host;
};

} // namespace

TEST_F(SimRig, LeavesADeviceAloneWithoutFaults)
{
    start();
    EXPECT_EQ(host->ask(row_request, row_answer), row_answer);
    EXPECT_EQ(memory(0x1000, 0x40), row_data);
    EXPECT_EQ(rig->summary().seed, std::nullopt);
    EXPECT_EQ(counts(), Counts());
}

TEST_F(SimRig, LosesRequests)
{
    start({"lose-request@1"});
    expect_silence_about(erase_request);
    EXPECT_EQ(rig->summary().memory.pages_erased, 0U);
    EXPECT_EQ(counts(), (Counts{{FaultKind::LoseRequest, 1}}));
}

TEST_F(SimRig, SpoilsRequests)
{
    start({"corrupt-request@1"});
    expect_silence_about(erase_request);
    EXPECT_EQ(rig->summary().memory.pages_erased, 0U);
    EXPECT_EQ(counts(), (Counts{{FaultKind::CorruptRequest, 1}}));
}

TEST_F(SimRig, AltersRequestsSoThatTheirChecksumStillFits)
{
    start({"alter-request@1"});
    EXPECT_EQ(host->ask(row_request, row_answer), row_answer);
    EXPECT_EQ(memory(0x1000, 0x40), row_data.left(0x3E) + bytes("DA DA"));
    EXPECT_EQ(counts(), (Counts{{FaultKind::AlterRequest, 1}}));
}

TEST_F(SimRig, CountsARequestAsAlteredThatIsRefusedForIt)
{
    start({"alter-request@1"});
    expect_silence_about(erase_request); // its address is none of this device any more
    EXPECT_EQ(rig->summary().commands.refused(), 1U);
    EXPECT_EQ(counts(), (Counts{{FaultKind::AlterRequest, 1}}));
}

TEST_F(SimRig, CannotAlterAProbe)
{
    options.device.entry = Entry::Probe;
    add_fault(options.faults, QStringLiteral("alter-request@1"));
    rig = std::make_unique<Rig>(*profile, options);
    host = std::make_unique<HostPort>(rig->device().port_path(), 9600);
    EXPECT_EQ(host->ask(bytes("55"), bytes("51 56 01 23")), bytes("51 56 01 23"));
    EXPECT_EQ(counts(), Counts());
}

TEST_F(SimRig, LosesResponsesToWhatItHasDone)
{
    start({"lose-response@1"});
    expect_silence_about(row_request);
    EXPECT_EQ(memory(0x1000, 0x40), row_data);
    EXPECT_EQ(counts(), (Counts{{FaultKind::LoseResponse, 1}}));
}

TEST_F(SimRig, SpoilsResponsesByOneBit)
{
    start({"corrupt-response@1"});
    host->send(row_request);
    const QByteArray damaged = host->receive(row_answer.size());
    int turned = 0;
    for (int i = 0; i < damaged.size(); ++i) {
        const int difference = damaged.at(i) ^ row_answer.at(i);
        turned += difference != 0 ? 1 : 0;
        EXPECT_EQ(difference & (difference - 1), 0) << "more than one bit of byte " << i;
    }
    EXPECT_EQ(turned, 1);
    EXPECT_EQ(counts(), (Counts{{FaultKind::CorruptResponse, 1}}));
}

TEST_F(SimRig, CutsResponsesShort)
{
    start({"truncate-response@1", "lose-response@2"});
    host->send(row_request);
    const QByteArray begin = host->receive(1);
    EXPECT_LT(begin.size(), row_answer.size());
    EXPECT_TRUE(row_answer.startsWith(begin));
    host->send(erase_request);
    EXPECT_EQ(host->ask(version_frame, version_answer), version_answer);
    EXPECT_EQ(counts(), (Counts{{FaultKind::TruncateResponse, 1}, {FaultKind::LoseResponse, 1}}));
}

TEST_F(SimRig, DelaysResponses)
{
    start({"delay-response:40@1"});
    const qint64 start_ns = sim::Alarm::now_ns();
    EXPECT_EQ(host->ask(row_request, row_answer), row_answer);
    EXPECT_GE(sim::Alarm::now_ns() - start_ns, 40 * 1000000);
    EXPECT_EQ(counts(), (Counts{{FaultKind::DelayResponse, 1}}));
}

TEST_F(SimRig, RepeatsResponses)
{
    start({"duplicate-response@1"});
    host->ask(row_request, row_answer + row_answer);
    EXPECT_THAT(host->pieces(), ElementsAre(row_answer, row_answer));
    EXPECT_EQ(counts(), (Counts{{FaultKind::DuplicateResponse, 1}}));
}

TEST_F(SimRig, MakesNoiseBeforeResponses)
{
    start({"noise@1"});
    host->send(row_request);
    ASSERT_TRUE(wait_until([this] { return host->received().endsWith(row_answer); }));
    const int noise = host->received().size() - row_answer.size();
    EXPECT_GE(noise, 1);
    EXPECT_LE(noise, 8);
    EXPECT_EQ(counts(), (Counts{{FaultKind::Noise, 1}}));
}

TEST_F(SimRig, AcknowledgesWrongly)
{
    start({"wrong-ack=1"});
    EXPECT_EQ(host->ask(row_request, make_frame(bytes("FD"))), make_frame(bytes("FD")));
    EXPECT_EQ(memory(0x1000, 0x40), row_data);
    EXPECT_EQ(host->ask(erase_request, make_frame(bytes("FC"))), make_frame(bytes("FC")));
    EXPECT_EQ(host->ask(version_frame, version_answer), version_answer);
    EXPECT_EQ(counts(), (Counts{{FaultKind::WrongAck, 2}}));
}

TEST_F(SimRig, PretendsToWrite)
{
    start({"phantom-write@2"});
    EXPECT_EQ(host->ask(erase_request, erase_answer), erase_answer);
    EXPECT_EQ(host->ask(row_request, row_answer), row_answer);
    EXPECT_EQ(memory(0x1000, 0x40), QByteArray(0x40, '\xFF'));
    EXPECT_EQ(counts(), (Counts{{FaultKind::PhantomWrite, 1}}));
}

TEST_F(SimRig, WritesHalfARow)
{
    start({"half-write=1"});
    EXPECT_EQ(host->ask(row_request, row_answer), row_answer);
    EXPECT_EQ(memory(0x1000, 0x40), row_data.left(0x20) + QByteArray(0x20, '\xFF'));
    EXPECT_EQ(counts(), (Counts{{FaultKind::HalfWrite, 1}}));
}

TEST_F(SimRig, CountsNoFaultOfAWriteThatIsRefusedAnyway)
{
    start({"phantom-write=1", "half-write=1"});
    expect_silence_about(make_frame(bytes("02 01 00 00 00") + row_data)); // the bootloader's row
    EXPECT_EQ(rig->summary().commands.refused(), 1U);
    EXPECT_EQ(counts(), Counts());
}

TEST_F(SimRig, HasBitsThatStick)
{
    start({"stuck-bits:0x1000:0x02:0", "stuck-bits:0x1001:0x01:1"});
    EXPECT_EQ(host->ask(row_request, row_answer), row_answer);
    EXPECT_EQ(memory(0x1000, 3), bytes("58 5B 5A"));
    const QByteArray read = bytes("01 01 00 08 00");
    const QByteArray worn_row = make_frame(read + bytes("58 5B"));
    EXPECT_EQ(host->ask(make_frame(read), worn_row), worn_row);
    EXPECT_EQ(counts(), (Counts{{FaultKind::StuckBits, 2}}));
}

TEST_F(SimRig, LosesItsPowerAndKeepsItsMemory)
{
    start({"power-loss@2", "noise@3"});
    EXPECT_EQ(host->ask(row_request, row_answer), row_answer);
    host->send(erase_request);
    host->send(version_frame);
    ASSERT_TRUE(wait_until([this] { return rig->device().commands().size() == 3; }));
    EXPECT_EQ(memory(0x1000, 0x40), row_data);
    EXPECT_TRUE(rig->device().commands()[2].ignored);
    EXPECT_EQ(rig->device().line().bytes_to_host(), row_answer.size());
    EXPECT_EQ(counts(), (Counts{{FaultKind::PowerLoss, 1}}));
}

TEST_F(SimRig, VanishesFromTheHost)
{
    start({"unplug@2"});
    EXPECT_EQ(host->ask(row_request, row_answer), row_answer);
    host->send(erase_request);
    EXPECT_TRUE(wait_until([this] { return host->port().error() != QSerialPort::NoError; }));
    EXPECT_FALSE(QFile::exists(rig->device().port_path()));
    EXPECT_EQ(memory(0x1000, 0x40), row_data);
    EXPECT_EQ(counts(), (Counts{{FaultKind::Unplug, 1}}));
}

TEST_F(SimRig, HearsAndSaysNothingMoreOnceItHasVanished)
{
    options.device.echo = sim::Options::Echo::Apart;
    start({"unplug@1"});
    host->send(erase_request + row_request);
    EXPECT_TRUE(wait_until([this] { return host->port().error() != QSerialPort::NoError; }));
    EXPECT_EQ(memory(0x1000, 0x40), QByteArray(0x40, '\xFF'));
    EXPECT_EQ(rig->device().line().bytes_to_host(), 0);
}

TEST_F(SimRig, HearsDamagedBytes)
{
    start({"request-bytes=1"});
    host->send(version_frame);
    ASSERT_TRUE(
        wait_until([this] { return rig->device().heard().size() == version_frame.size(); }));
    EXPECT_EQ(rig->summary().commands.number_of(sim::Command::Kind::Version), 0U);
    EXPECT_EQ(counts(), (Counts{{FaultKind::RequestBytes, 6}}));
}

TEST_F(SimRig, SendsDamagedBytes)
{
    start({"response-bytes=1"});
    host->send(version_frame);
    const QByteArray damaged = host->receive(version_answer.size());
    for (int i = 0; i < damaged.size(); ++i) {
        EXPECT_NE(damaged.at(i), version_answer.at(i)) << i;
    }
    EXPECT_EQ(counts(), (Counts{{FaultKind::ResponseBytes, 8}}));
}

TEST_F(SimRig, DoesTheSameAgainForTheSameSeed)
{
    std::vector<QByteArray> received;
    for (int round = 0; round < 2; ++round) {
        options.faults = {};
        options.faults.seed = 7;
        start({"corrupt-response=0.5", "noise=0.5", "lose-request=0.2", "response-bytes=0.05"});
        for (int i = 0; i < 20; ++i) {
            host->send(version_frame);
        }
        ASSERT_TRUE(wait_until([this] { return rig->device().commands().size() == 20; }));
        const qint64 sent = rig->device().line().bytes_to_host();
        received.push_back(host->receive(static_cast<int>(sent)));
    }
    EXPECT_EQ(received[0], received[1]);
    EXPECT_EQ(counts().size(), 4U);
}

TEST_F(SimRig, SumsUpWhatWasHeardAndSaid)
{
    start();
    host->ask(version_frame, version_answer);
    host->ask(version_frame, version_answer);
    host->ask(erase_request, erase_answer);
    const Summary summary = rig->summary();
    EXPECT_EQ(summary.commands.number_of(sim::Command::Kind::Version), 2U);
    EXPECT_EQ(summary.commands.repeated(), 1U);
    EXPECT_EQ(summary.bytes_from_host, 2 * version_frame.size() + erase_request.size());
    EXPECT_EQ(summary.bytes_to_host, 2 * version_answer.size() + erase_answer.size());
    EXPECT_EQ(summary.memory.pages_erased, 1U);
    EXPECT_EQ(summary.dropped_frames, 0U);
    EXPECT_FALSE(summary.pace.has_value());
    EXPECT_FALSE(summary.replayed.has_value());
}

TEST_F(SimRig, ReportsItsLatenessWhenItPaces)
{
    options.device.paced = true;
    start();
    host->ask(version_frame, version_answer);
    ASSERT_TRUE(rig->summary().pace.has_value());
    EXPECT_EQ(rig->summary().pace->lateness.count(), 2);
}

TEST_F(SimRig, TracesEachCommandAtOnce)
{
    const QString trace = folder.filePath(QStringLiteral("trace"));
    start({"lose-response@2"});
    rig->start_trace(trace);
    host->ask(version_frame, version_answer);
    host->send(row_request);
    ASSERT_TRUE(wait_until([this] { return rig->device().commands().size() == 2; }));
    const QList<QByteArray> lines = file_content(trace).split('\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0].mid(lines[0].indexOf(' ') + 1),
              "#1 57600 version request=6 answer=version sent=8 faults=none payload=0002");
    EXPECT_EQ(lines[1].mid(lines[1].indexOf(' ') + 1),
              "#2 57600 write flash count=1 address=0x00001000 data=64 request=73 answer=ack "
              "sent=0 faults=lose-response payload=0201000800" +
                  row_data.toHex());
    for (const QByteArray& line : {lines[0], lines[1]}) {
        const QByteArray stamp = line.left(line.indexOf(' '));
        EXPECT_EQ(stamp.size() - stamp.indexOf('.'), 4) << stamp.toStdString();
        EXPECT_GE(stamp.toDouble(), 0.0);
    }
    EXPECT_GE(lines[1].left(lines[1].indexOf(' ')).toDouble(),
              lines[0].left(lines[0].indexOf(' ')).toDouble());
}

TEST_F(SimRig, AnswersAsTheLogDoes)
{
    start();
    rig->start_replay(write_file("log", "\nTX:" + version_frame.toHex() +
                                            "\nTX:" + version_frame.toHex() +
                                            "\nRX:010203\nTX:" + reset_request.toHex()));
    host->send(version_frame); // recorded without an answer
    EXPECT_EQ(host->ask(version_frame, "\x01\x02\x03"), "\x01\x02\x03");
    host->send(erase_request);
    host->send(reset_request);
    ASSERT_TRUE(wait_until([this] { return rig->device().commands().size() == 4; }));
    EXPECT_EQ(host->received(), "\x01\x02\x03");
    const Summary summary = rig->summary();
    ASSERT_TRUE(summary.replayed.has_value());
    EXPECT_EQ(summary.replayed->matched, 3);
    EXPECT_EQ(summary.replayed->recorded, 3);
    ASSERT_EQ(summary.replayed->unmatched.size(), 1U);
    EXPECT_EQ(summary.replayed->unmatched[0].payload, bytes("03 01 00 08 00"));
}

TEST_F(SimRig, AnswersAProbeByItselfWhenItReplays)
{
    options.device.entry = Entry::Probe;
    rig = std::make_unique<Rig>(*profile, options);
    rig->start_replay(write_file("log", "\nTX:" + version_frame.toHex() + "\nRX:010203"));
    host = std::make_unique<HostPort>(rig->device().port_path(), 9600);
    EXPECT_EQ(host->ask(bytes("55"), bytes("51 56 01 23")), bytes("51 56 01 23"));
    host->set_baud(57600);
    EXPECT_EQ(host->ask(version_frame, "\x01\x02\x03"), "\x01\x02\x03");
}

TEST_F(SimRig, StaysSilentBesideALogToo)
{
    options.device.entry = Entry::Silent;
    rig = std::make_unique<Rig>(*profile, options);
    rig->start_replay(write_file("log", "\nTX:" + version_frame.toHex() + "\nRX:010203"));
    host = std::make_unique<HostPort>(rig->device().port_path(), 57600);
    host->send(version_frame);
    ASSERT_TRUE(wait_until([this] { return rig->device().commands().size() == 1; }));
    EXPECT_EQ(rig->device().line().bytes_to_host(), 0);
}

TEST_F(SimRig, LetsFaultsHappenToRecordedAnswersToo)
{
    start({"lose-request@1", "duplicate-response@2"});
    rig->start_replay(write_file("log", "\nTX:" + erase_request.toHex() + "\nRX:010203\nTX:" +
                                            erase_request.toHex() + "\nRX:040506"));
    host->send(erase_request); // does not get to the recorded device
    EXPECT_EQ(host->ask(erase_request, "\x01\x02\x03\x01\x02\x03"), "\x01\x02\x03\x01\x02\x03");
}

TEST_F(SimRig, RefusesWhatItCannotUse)
{
    start();
    EXPECT_THROW(rig->start_trace(folder.filePath(QStringLiteral("nowhere/trace"))), Error);
    EXPECT_THROW(rig->start_replay(folder.filePath(QStringLiteral("missing"))), Error);
    EXPECT_THROW(start({"stuck-bits:0x10000:1:1"}), Error);
}
