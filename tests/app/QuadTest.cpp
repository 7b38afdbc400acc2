#include "tests/app/QuadTest.h"

#include "tests/support/Bytes.h"
#include "tests/support/HexRecords.h"

namespace test
{

namespace
{

constexpr int bytes_per_record = 16;
constexpr unsigned int row_size = 0x20;
constexpr unsigned int eeprom_start = 0x1000;

QByteArray records(const std::vector<Piece>& pieces, const QByteArray& before_each)
{
    QByteArray text;
    for (const Piece& piece : pieces) {
        for (int i = 0; i < piece.bytes.size(); i += bytes_per_record) {
            text += before_each + hex_record(0, piece.address + static_cast<unsigned int>(i),
                                             piece.bytes.mid(i, bytes_per_record));
        }
    }
    return text + end_record;
}

/// `head`, then the address in three bytes, low byte first.
std::string command(const char* head, unsigned int word_address)
{
    QByteArray address;
    for (unsigned int shift = 0; shift < 24; shift += 8) {
        address.append(static_cast<char>(word_address >> shift & 0xFFU));
    }
    return head + small_digits(address);
}

QByteArray given_up(const char* error, std::size_t after)
{
    const int times = static_cast<int>(after);
    return "giving up after having made " + QByteArray::number(times) + " attempts, with errors (" +
           QByteArray(error).repeated(times) + ")\n";
}

} // namespace

const char* const reset = "0000";

QByteArray image_file(const std::vector<Piece>& pieces)
{
    return records(pieces, {});
}

std::string saved_file(const std::vector<Piece>& pieces)
{
    return records(pieces, ":020000040000FA\n").toStdString();
}

Commands operator+(Commands first, const Commands& rest)
{
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}

std::string read_flash(unsigned int address)
{
    return command("0110", address);
}

std::string write_flash(unsigned int address, const QByteArray& row)
{
    return command("0201", address) + small_digits(row);
}

std::string erase_page(unsigned int address)
{
    return command("0301", address);
}

std::string read_eeprom(unsigned int address)
{
    return command("0410", address - eeprom_start);
}

std::string write_eeprom(unsigned int address, const QByteArray& row)
{
    return command("0510", address - eeprom_start) + small_digits(row);
}

Commands read_everything()
{
    return read_all_flash() + Commands{read_eeprom(0x1000), read_eeprom(0x1010)};
}

Commands read_all_flash()
{
    Commands commands;
    for (unsigned int row = 0x40; row < 0x140; row += row_size) {
        commands.push_back(read_flash(row));
    }
    return commands;
}

QByteArray progress(std::initializer_list<int> percentages)
{
    QByteArray text;
    for (const int percentage : percentages) {
        text += "\rProgress " + QByteArray::number(percentage) + "%";
    }
    return text;
}

QByteArray given_up_on_wrong_answers()
{
    return given_up("response was not prefixed with the command but was supposed to be\n",
                    attempts);
}

QByteArray given_up_on_silence(std::size_t after)
{
    return given_up("Response wait timed out\n", after);
}

QuadTest::QuadTest() : m_table(QStringLiteral(APP_TEST_DATA "/quad_device.txt")), m_device(quad())
{
    m_tool.put_file(QStringLiteral("device.txt"), test_data("quad_device.txt"));
}

void QuadTest::put_image(const char* name, const std::vector<Piece>& pieces)
{
    m_tool.put_file(QLatin1String(name), image_file(pieces));
}

std::string QuadTest::file(const char* name) const
{
    return m_tool.file(QLatin1String(name)).toStdString();
}

ToolResult QuadTest::operate(const char* arguments) const
{
    return run(m_device, (QByteArray("-B 0708 ") + arguments).constData());
}

ToolResult QuadTest::succeeded(const QByteArray& text)
{
    return exited(0, "Version set to 0x0708 successfully!" + text + success);
}

ToolResult QuadTest::failed(const QByteArray& text)
{
    return exited(1, "Version set to 0x0708 successfully!" + text);
}

void QuadTest::reply_from(unsigned int sequence, const QByteArray& reply, std::size_t count)
{
    m_device.set_reply_filter([sequence, reply, count](const sim::Command& command,
                                                       const QByteArray& answer) {
        const bool own = command.sequence < sequence || command.sequence - sequence >= count;
        const QByteArray& bytes = own ? answer : reply;
        return bytes.isEmpty() ? std::vector<sim::Delivery>{} : std::vector<sim::Delivery>{{bytes}};
    });
}

} // namespace test
