#include "gang/ReportCommand.h"

#include "gang/ArgumentError.h"
#include "gang/OptionParser.h"
#include "gang/Report.h"
#include "gang/Session.h"
#include "util/Platform.h"

#include <QJsonDocument>

namespace gang
{

namespace
{

const char* const report_description =
    "zserial-gang report: sums up the records of any number of stations on standard output.\n\n"
    "A line that a crash has cut short is skipped.\n\n"
    "Exit status: 0, or 2 when a file cannot be read.";

const std::vector<OptionText>& report_options()
{
    static const std::vector<OptionText> texts = {
        {"help", "", "Show this help and exit."},
        {"json", "", "Print one object of JSON."},
        {"html", "", "Print one HTML page with everything in it."},
        {"serial-file", "file",
         "Look up the counter of serial numbers, too: a number that is in no record is void."},
    };
    return texts;
}

QByteArray printed(const Report& report, const OptionParser& parser)
{
    if (parser.has("json")) {
        return QJsonDocument(json_of(report)).toJson(QJsonDocument::Compact) + '\n';
    }
    return parser.has("html") ? html_of(report).toUtf8() : text_of(report).toLocal8Bit();
}

int print(const QByteArray& bytes)
{
    if (Platform::write_all(Platform::StandardStream::Output, bytes) !=
        Platform::WriteOutcome::Complete) {
        throw FileError(QStringLiteral("cannot write the report to standard output"));
    }
    return ExitAllOk;
}

} // namespace

int run_report(const QStringList& command_line)
{
    OptionParser parser(report_description, report_options(), "file", "file...");
    parser.parse(command_line);
    if (parser.has("help")) {
        return print(parser.help_text().toLocal8Bit());
    }
    if (parser.words().isEmpty() || (parser.has("json") && parser.has("html"))) {
        throw ArgumentError(
            QStringLiteral("report needs record files, and takes --json or --html but not both"));
    }
    RecordedRuns runs;
    for (const QString& file : parser.words()) {
        read_record(file, runs);
    }
    std::vector<GivenNumber> given;
    if (parser.has("serial-file")) {
        given = NumberFile(parser.value("serial-file")).given();
    }
    if (runs.skipped != 0) {
        print_error(QStringLiteral("skipped lines that are not records: %1").arg(runs.skipped));
    }
    return print(printed(report_on(runs, given), parser));
}

} // namespace gang
