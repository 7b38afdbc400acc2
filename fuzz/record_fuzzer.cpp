#include "fuzz/Target.h"
#include "memory/IntelHexRecord.h"
#include "memory/IntelHexText.h"

namespace
{

/// Checks that writing a complete record's content gives its digits in upper case.
void must_be_written_alike(const intel_hex::Record& record, const QByteArray& text)
{
    QByteArray written;
    intel_hex::append_record(written, record.type, record.address, record.data.constData(),
                             record.data.size());
    must_hold(written == ':' + text.toUpper() + '\n');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using intel_hex::RecordOutcome;
    const QByteArray text = bytes_of(data, size);
    intel_hex::Record record;
    const auto parsed = intel_hex::parse_record(text.begin(), text.end(), record);
    must_hold(parsed.outcome != RecordOutcome::NoColon);
    must_hold(parsed.consumed >= 0 && parsed.consumed <= text.size());
    const QByteArray taken = text.left(static_cast<int>(parsed.consumed));
    must_hold(taken.size() <= intel_hex::record_length(taken));
    if (parsed.outcome == RecordOutcome::Complete) {
        must_be_written_alike(record, taken);
    }
    // Parsing only the characters that were taken gives the same outcome.
    intel_hex::Record again;
    const auto repeated = intel_hex::parse_record(taken.begin(), taken.end(), again);
    must_hold(repeated.outcome == parsed.outcome && repeated.consumed == parsed.consumed);
    must_hold(again.data == record.data);
    return 0;
}
