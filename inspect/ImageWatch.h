#pragma once

#include "inspect/Problem.h"
#include "inspect/SkippedText.h"
#include "memory/IntelHexRecordReader.h"

#include <array>
#include <map>
#include <optional>
#include <vector>

namespace inspect
{

/// Checks each record of an image while the uploader's own code loads it.
class ImageWatch
{
public:
    explicit ImageWatch(const QString& path) : m_skipped(path) {}

    void take(const intel_hex::RecordReader& reader, const intel_hex::ParsedRecord& parsed,
              const intel_hex::Record& record);

    /// Checks the text after the end record.
    void take_rest(intel_hex::RecordReader& reader);

    /// Complete records up to the end record, by type.
    const std::array<quint64, 256>& counts() const { return m_counts; }

    bool has_ended() const { return count(IntelHexFileRecordType::EndOfFile) != 0; }

    /// Whether a record has made the uploader stop.
    bool has_refused() const;

    /// The entry point that the last type 5 record names.
    std::optional<quint32> start_address() const { return m_start_address; }

    /// The problems so far, each code once, with the number of further places.
    std::vector<Problem> problems(const QString& file) const;

private:
    /// The first place of a problem, and how many there are.
    struct Finding {
        QString message;
        intel_hex::TextPosition position;
        quint64 times = 0;
    };

    quint64 count(IntelHexFileRecordType type) const
    {
        return m_counts.at(static_cast<unsigned char>(type));
    }

    void take_complete(const intel_hex::TextPosition& position, const intel_hex::Record& record);
    void take_linear_address(const intel_hex::TextPosition& position,
                             const intel_hex::Record& record);
    void take_start_address(const intel_hex::TextPosition& position,
                            const intel_hex::Record& record);
    void take_bad(const intel_hex::RecordReader& reader, intel_hex::RecordOutcome outcome);
    void find(Code code, const intel_hex::TextPosition& position, const QString& message);

    std::array<quint64, 256> m_counts{};
    SkippedText m_skipped;
    std::optional<quint32> m_start_address;
    unsigned int m_upper_address = 0; ///< without the type 5 records
    /// The type 5 record that would move data now.
    std::optional<intel_hex::TextPosition> m_start_in_force;
    std::map<Code, Finding> m_findings;
};

} // namespace inspect
