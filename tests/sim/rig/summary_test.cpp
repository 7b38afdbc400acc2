#include "sim/rig/Summary.h"

#include <QJsonDocument>
#include <gtest/gtest.h>

using sim::FaultKind;
using sim::json_of;
using sim::Replay;
using sim::Summary;
using sim::text_of;

namespace
{

Summary plain()
{
    Summary summary;
    summary.commands.count({sim::Command::Kind::Probe, "U"});
    summary.commands.count({sim::Command::Kind::Version, "v"});
    summary.commands.count({sim::Command::Kind::Version, "v"});
    summary.dropped_frames = 3;
    summary.bytes_from_host = 5000000000;
    summary.bytes_to_host = 5;
    summary.memory.pages_erased = 8;
    summary.memory.flash_rows_programmed = 9;
    summary.memory.cells_programmed_without_erase = 10;
    summary.memory.eeprom_writes = 11;
    return summary;
}

Summary full()
{
    Summary summary = plain();
    summary.lost_bytes = 6;
    summary.seed = 18446744073709551615U;
    summary.faults = {{FaultKind::Noise, 2}, {FaultKind::LoseRequest, 1}};
    summary.pace.emplace();
    summary.pace->lateness.add(30999);
    summary.pace->lateness.add(10000);
    summary.pace->use.add(7000000, 2000000);
    summary.pace->use.pass(10000000);
    summary.replayed = Summary::Replayed{4, 6, {{QByteArray("\x00\x02", 2), 40}, {"\x06", 1}}};
    summary.check = sim::MemoryImage::Comparison{true, QStringLiteral("it holds"), 7};
    summary.command = sim::CommandEnd{sim::CommandEnd::Kind::Exited, 8};
    return summary;
}

std::string text(const Summary& summary)
{
    return text_of(summary).join(QLatin1Char('\n')).toStdString();
}

std::string json(const Summary& summary)
{
    return QJsonDocument(json_of(summary)).toJson(QJsonDocument::Compact).toStdString();
}

const std::string line_text =
    "commands: 1 probe, 2 version, 0 reset, 0 read, 0 write, 0 erase, 0 unknown; 0 refused, "
    "1 repeated\n"
    "line: 5000000000 bytes from the host, 5 to the host, 3 frames dropped\n";

const std::string memory_text =
    "flash: 8 pages erased, 9 rows programmed, 10 cells programmed without erase\n"
    "EEPROM: 11 writes";

const std::string plain_text = line_text + memory_text;

} // namespace

TEST(SimSummary, ShowsAReaderWhatEveryRunHas)
{
    EXPECT_EQ(text(plain()), plain_text);
}

TEST(SimSummary, ShowsAReaderWhatOnlySomeRunsHave)
{
    EXPECT_EQ(text(full()), line_text +
                                "line: 6 bytes lost because the host left too much unread\n" +
                                memory_text +
                                "\nfaults with seed 18446744073709551615: 1 lose-request, 2 noise\n"
                                "pace: line busy for 7 of 8 ms, last bytes late by 20 us in the "
                                "mean and 30 us at most, of 2\n"
                                "replay: 4 of 6 recorded frames came\n"
                                "replay: not in the rest of the log, 40 times: 00 02\n"
                                "replay: not in the rest of the log, 1 times: 06\n"
                                "it holds\n"
                                "image: 7 bytes lie outside of the device's flash and EEPROM\n"
                                "command: ended with status 8");
}

TEST(SimSummary, ShowsAReaderThatNoFaultHappened)
{
    Summary summary = plain();
    summary.seed = 1;
    EXPECT_EQ(text(summary), plain_text + "\nfaults with seed 1: none");
}

TEST(SimSummary, SparesAReaderAllButTheFirstOfManyUnknownFrames)
{
    Summary summary = plain();
    summary.replayed = Summary::Replayed{0, 1, std::vector<Replay::Unmatched>(12, {"x", 1}), 5};
    const QStringList lines = text_of(summary);
    EXPECT_EQ(lines.filter(QStringLiteral("not in the rest of the log")).size(), 10);
    EXPECT_EQ(lines.last(), QStringLiteral("replay: and 7 others"));
}

TEST(SimSummary, ShowsAProgramWhatEveryRunHas)
{
    EXPECT_EQ(json(plain()),
              R"({"bytes_from_host":5000000000,"bytes_lost":0,"bytes_to_host":5,)"
              R"("commands":{"erase":0,"probe":1,"read":0,"reset":0,"unknown":0,"version":2,)"
              R"("write":0},"eeprom_writes":11,)"
              R"("flash":{"cells_programmed_without_erase":10,"pages_erased":8,)"
              R"("rows_programmed":9},"frames_dropped":3,"refused":0,"repeated":1})");
}

TEST(SimSummary, ShowsAProgramWhatOnlySomeRunsHave)
{
    EXPECT_EQ(json(full()),
              R"({"bytes_from_host":5000000000,"bytes_lost":6,"bytes_to_host":5,)"
              R"("check":{"matches":true,"outside":7,"report":"it holds"},)"
              R"("command":{"status":8},)"
              R"("commands":{"erase":0,"probe":1,"read":0,"reset":0,"unknown":0,"version":2,)"
              R"("write":0},"eeprom_writes":11,"faults":{"lose-request":1,"noise":2},)"
              R"("flash":{"cells_programmed_without_erase":10,"pages_erased":8,)"
              R"("rows_programmed":9},"frames_dropped":3,)"
              R"("pace":{"busy_us":7000,"last_bytes":2,"max_lateness_us":30,)"
              R"("mean_lateness_us":20,"span_us":8000},)"
              R"("refused":0,"repeated":1,)"
              R"("replay":{"further_unmatched":0,"matched":4,"recorded":6,)"
              R"("unmatched":[{"payload":"0002","times":40},{"payload":"06","times":1}]},)"
              R"("seed":"18446744073709551615"})");
}

TEST(SimSummary, ReportsHowACommandEnded)
{
    using Kind = sim::CommandEnd::Kind;
    Summary killed = plain();
    killed.command = sim::CommandEnd{Kind::Killed, 15};
    EXPECT_EQ(text(killed), plain_text + "\ncommand: killed by signal 15");
    EXPECT_NE(json(killed).find(R"("command":{"signal":15})"), std::string::npos);
    Summary not_started = plain();
    not_started.command = sim::CommandEnd{};
    EXPECT_EQ(text(not_started), plain_text + "\ncommand: not started");
    EXPECT_NE(json(not_started).find(R"("command":{"started":false})"), std::string::npos);
}
