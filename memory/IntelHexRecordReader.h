#pragma once

#include "memory/IntelHexRecord.h"

#include <QtGlobal>

#include <array>
#include <optional>

class QFile;

namespace intel_hex
{

/// A position in a text; both numbers count from 1. Lines end at "\n"; a column is a character of
/// one byte.
struct TextPosition {
    qint64 line = 1;
    qint64 column = 1;
};

/// Goes through the records of a file from its current position on. The file is read in blocks,
/// past QFile's own buffer and position. A read never waits for more than the current record needs:
/// a terminal or pipe may stop after the end record of its image.
class RecordReader
{
public:
    /// The file must be open for reading, unbuffered, and outlive the reader.
    explicit RecordReader(QFile& file);

    /// Skips line ends and spaces; true if that reaches the end of the file. A read error is not
    /// the end of the file.
    bool is_at_end();
    /// Skips all text up to the next colon and reads the record that it begins. Text that does not
    /// fit into the record is left to be read next.
    ParsedRecord next(Record& record);

    /// After a record that ended early: the character that did not fit, or none at the end of the
    /// file.
    std::optional<char> peek() const;

    /// Of the character to be read next.
    TextPosition position() const { return position_of(here()); }

    /// Of the first character, apart from spaces and line ends, in which the last record was
    /// searched for; that of its colon unless other text precedes it.
    TextPosition text_position() const { return position_of(m_text); }

    /// Of the colon of the record that was read last.
    TextPosition record_position() const { return position_of(m_record); }

    /// Where that text begins, in bytes from where the reading began, and how long it is up to the
    /// colon that was found.
    qint64 text_offset() const { return m_text.offset; }

    qint64 text_length() const { return m_record.offset - m_text.offset; }

private:
    /// A place as it is at hand: hardly any position is ever asked for.
    struct Mark {
        qint64 line = 1;
        qint64 line_offset = 0; ///< of the line's first character, from where the reading began
        qint64 offset = 0;
    };

    static TextPosition position_of(const Mark& mark)
    {
        return {mark.line, mark.offset - mark.line_offset + 1};
    }

    Mark here() const { return {m_line, m_line_offset, offset()}; }

    /// Whether anything else follows.
    bool skip_blanks();
    bool find_colon();
    /// Moves on within the block and counts the lines.
    void pass(const char* to);
    void begin_line();
    /// Fills the block up after what is left of it; whether anything came.
    bool refill();

    qint64 offset() const { return m_block_offset + (m_at - m_block.data()); }

    QFile& m_file;
    bool m_has_more = true;
    bool m_has_failed = false;
    std::array<char, 64 * 1024> m_block;
    const char* m_at = m_block.data();
    const char* m_end = m_block.data();
    qint64 m_block_offset = 0; ///< of the block's first character, from where the reading began
    qint64 m_line = 1;
    qint64 m_line_offset = 0; ///< of the first character of the line
    Mark m_text;
    Mark m_record; ///< the colon
};

} // namespace intel_hex
