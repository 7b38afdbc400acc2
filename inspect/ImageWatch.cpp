#include "inspect/ImageWatch.h"

#include "inspect/Figures.h"

#include <QRegularExpression>

#include <algorithm>

namespace inspect
{

namespace
{

using intel_hex::RecordOutcome;
using intel_hex::TextPosition;

const char* name_of(RecordOutcome missing)
{
    switch (missing) {
    case RecordOutcome::NoByteCount:
        return "byte count";
    case RecordOutcome::NoAddressHigh:
    case RecordOutcome::NoAddressLow:
        return "address";
    case RecordOutcome::NoType:
        return "type";
    case RecordOutcome::NoData:
        return "data";
    default:
        return "checksum";
    }
}

QString bytes_text(const QByteArray& data)
{
    return QString::fromLatin1(data.toHex(' ').toUpper());
}

} // namespace

void ImageWatch::take(const intel_hex::RecordReader& reader, const intel_hex::ParsedRecord& parsed,
                      const intel_hex::Record& record)
{
    const TextPosition from = reader.text_position();
    const TextPosition colon = reader.record_position();
    if (parsed.outcome == RecordOutcome::NoColon) {
        find(Code::NoFurtherRecord, from, QStringLiteral("No record begins after this text."));
        return;
    }
    m_skipped.take(reader);
    if (parsed.outcome == RecordOutcome::Complete) {
        take_complete(colon, record);
    } else {
        take_bad(reader, parsed.outcome);
    }
}

void ImageWatch::take_complete(const TextPosition& position, const intel_hex::Record& record)
{
    ++m_counts.at(static_cast<unsigned char>(record.type));
    switch (record.type) {
    case IntelHexFileRecordType::Data:
        if (m_start_in_force && !record.data.isEmpty()) {
            find(Code::StartAddressBeforeData, *m_start_in_force,
                 QStringLiteral("Data follow the start address 0x%1.")
                     .arg(*m_start_address, 8, 16, QLatin1Char('0')));
            m_start_in_force.reset();
        }
        break;
    case IntelHexFileRecordType::EndOfFile:
        break;
    case IntelHexFileRecordType::ExtendedSegmentAddress:
        find(Code::SegmentAddress, position,
             QStringLiteral("The address is segmented (type 2): %1.").arg(bytes_text(record.data)));
        break;
    case IntelHexFileRecordType::StartSegmentAddress:
        find(Code::SegmentStart, position,
             QStringLiteral("The start address is segmented (type 3): %1.")
                 .arg(bytes_text(record.data)));
        break;
    case IntelHexFileRecordType::ExtendedLinearAddress:
        take_linear_address(position, record);
        break;
    case IntelHexFileRecordType::StartLinearAddress:
        take_start_address(position, record);
        break;
    default:
        find(Code::UnknownType, position,
             QStringLiteral("The type is %1.").arg(static_cast<int>(record.type)));
        break;
    }
}

void ImageWatch::take_linear_address(const TextPosition& position, const intel_hex::Record& record)
{
    const QByteArray& data = record.data;
    m_start_in_force.reset();
    m_upper_address = intel_hex::upper_address_after(record, 0);
    if (data.size() != 2) {
        find(Code::AddressRecordLength, position,
             QStringLiteral("A type 4 record with %1.")
                 .arg(count_text(static_cast<quint64>(data.size()), "byte")));
    }
    if (data.size() >= 2 && static_cast<unsigned char>(data.at(1)) >= 0x80 &&
        static_cast<unsigned char>(data.at(0)) != 0xFF) {
        find(Code::AddressBit23, position,
             QStringLiteral("The upper address %1 is taken as FF %2.")
                 .arg(bytes_text(data.left(2)), bytes_text(data.mid(1, 1))));
    }
}

void ImageWatch::take_start_address(const TextPosition& position, const intel_hex::Record& record)
{
    const QByteArray& data = record.data;
    if (data.size() != 4) {
        find(Code::AddressRecordLength, position,
             QStringLiteral("A type 5 record with %1.")
                 .arg(count_text(static_cast<quint64>(data.size()), "byte")));
    }
    quint32 address = 0;
    for (int i = 0; i < 4; ++i) {
        address = address << 8 | (i < data.size() ? static_cast<unsigned char>(data.at(i)) : 0U);
    }
    m_start_address = address;
    m_start_in_force.reset();
    if (intel_hex::upper_address_after(record, 0) != m_upper_address) {
        m_start_in_force = position;
    }
}

void ImageWatch::take_bad(const intel_hex::RecordReader& reader, RecordOutcome outcome)
{
    const TextPosition colon = reader.record_position();
    const TextPosition stop = reader.position();
    if (outcome == RecordOutcome::ChecksumMismatch) {
        find(Code::RecordChecksum, {stop.line, stop.column - 2},
             QStringLiteral("The record that begins in column %1 has another sum.")
                 .arg(colon.column));
        return;
    }
    const auto next = reader.peek();
    const QString reason = QStringLiteral("in the %1 of the record that begins in column %2.")
                               .arg(QLatin1String(name_of(outcome)))
                               .arg(colon.column);
    if (!next || *next == '\n' || *next == '\r') {
        find(Code::RecordCutShort, stop,
             QStringLiteral("The %1 ends ").arg(QLatin1String(next ? "line" : "file")) + reason);
    } else {
        const auto code = static_cast<unsigned char>(*next);
        const QString shown = code > 0x20 && code < 0x7F ? QString(QLatin1Char(*next))
                                                         : QStringLiteral("the byte 0x%1")
                                                               .arg(static_cast<unsigned int>(code),
                                                                    2, 16, QLatin1Char('0'));
        find(Code::RecordBadDigit, stop, QStringLiteral("There is %1 ").arg(shown) + reason);
    }
}

void ImageWatch::take_rest(intel_hex::RecordReader& reader)
{
    intel_hex::Record record;
    while (!reader.is_at_end()) {
        const RecordOutcome outcome = reader.next(record).outcome;
        if (outcome == RecordOutcome::NoColon) {
            return;
        }
        if (outcome == RecordOutcome::Complete) {
            find(Code::RecordsAfterEnd, reader.record_position(),
                 QStringLiteral("The end record comes before this one."));
        }
    }
}

void ImageWatch::find(Code code, const TextPosition& position, const QString& message)
{
    Finding& finding = m_findings[code];
    if (finding.times++ == 0) {
        finding.message = message;
        finding.position = position;
    }
}

bool ImageWatch::has_refused() const
{
    return std::any_of(m_findings.begin(), m_findings.end(), [](const auto& finding) {
        return finding.first >= Code::RecordCutShort && finding.first <= Code::SegmentStart;
    });
}

namespace
{

/// Quoted for a shell.
QString quoted(const QString& path)
{
    static const QRegularExpression plain(
        QStringLiteral("^[A-Za-z0-9_./+,:@%][-A-Za-z0-9_./+,:@%]*$"));
    if (plain.match(path).hasMatch()) {
        return path;
    }
    QString text = path;
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("'\\''")) +
           QLatin1Char('\'');
}

/// What is to be done about segment records, in full; nothing for other problems.
QString conversion_of(Code code, const QString& file)
{
    if (code != Code::SegmentAddress && code != Code::SegmentStart) {
        return {};
    }
    return QStringLiteral(
               "Have the file made with 32-bit linear addresses, or convert it: srec_cat "
               "%1 -intel -o converted.hex -intel -address-length=4")
        .arg(quoted(file));
}

} // namespace

std::vector<Problem> ImageWatch::problems(const QString& file) const
{
    std::vector<Problem> problems = m_skipped.problems();
    for (const auto& [code, finding] : m_findings) {
        QString message = finding.message;
        if (finding.times > 1) {
            message += QStringLiteral(" %1 in all.").arg(count_text(finding.times, "place"));
        }
        problems.push_back({code,
                            message,
                            {file, finding.position.line, finding.position.column},
                            {},
                            conversion_of(code, file)});
    }
    return problems;
}

} // namespace inspect
