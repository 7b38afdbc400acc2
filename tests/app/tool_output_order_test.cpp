#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <array>
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

using namespace test;

// Progress and error lines are written at once, the rest when it is flushed. The output is the same
// bytes in the same order, whatever standard output is.

namespace
{

struct Run {
    const char* name;
    const char* arguments;
    QByteArray text; ///< the whole output
    int status;
};

// Progress and error lines overtake what is still held back.
const Run runs[] = {
    {"Everything", "-B 0708 -e -w image.hex -l 0x80 0xC0 out.hex -v image.hex -R",
     "Version set to 0x0708 successfully!"
     "\rProgress 0%\rProgress 25%\rProgress 50%\rProgress 75%\rProgress 100%"
     "Erased all flash!\nNow writingMemory written!\nMemory range read!\nVerifying firmware\n"
     "\rProgress 50%\rProgress 100%\nVerified!\nResetting device\n"
     "\nAll operations completed succesfully!\n",
     0},
    {"EntryBeforeAWrite", "-w image.hex",
     "\rProgress 0%\rProgress 25%\rProgress 50%\rProgress 75%\rProgress 100%"
     "Retrieved version number during QV entry procedure: 0x0708\nNow writingMemory written!\n"
     "\nAll operations completed succesfully!\n",
     0},
    {"WriteAndVerify", "-B 0708 -e -wv image.hex",
     "Version set to 0x0708 successfully!Uploading firmware\n"
     "\rProgress 0%\rProgress 50%\rProgress 100%\nUploaded!\n"
     "\nAll operations completed succesfully!\n",
     0},
    {"RefusedRange", "-B 0708 -e -W 0x81 0x90 image.hex",
     "Version set to 0x0708 successfully!"
     "Start address 0x00000081 is in flash memory but is not but must be a multiple of block size "
     "00000081\n"
     "Erased all flash!\nNow writingFailed to write memory range, aborting...\n",
     1},
    {"UnknownVersion", "-B 0999 -e",
     "no profile for device (bootloader version = 0999)\n"
     "Could not find device profile matching specified 0x0999, aborting...",
     1},
    {"RefusedLine", "-B", "Please specify -B version in hex (0x16) or decimal (22)", 1},
};

/// A terminal that passes the tool's output on unchanged.
class Terminal
{
public:
    Terminal()
    {
        termios raw{};
        ::cfmakeraw(&raw);
        EXPECT_EQ(::openpty(&m_master, &m_slave, nullptr, &raw, nullptr), 0);
        EXPECT_EQ(::fcntl(m_master, F_SETFL, O_NONBLOCK), 0);
    }

    ~Terminal()
    {
        ::close(m_master);
        ::close(m_slave);
    }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    QString path() const
    {
        std::array<char, 64> name{};
        EXPECT_EQ(::ttyname_r(m_slave, name.data(), name.size()), 0);
        return QString::fromLocal8Bit(name.data());
    }

    /// The whole output; the runs here print less than a terminal buffers.
    QByteArray text() const
    {
        QByteArray text;
        std::array<char, 4096> piece{};
        for (ssize_t length = 0; (length = ::read(m_master, piece.data(), piece.size())) > 0;) {
            text.append(piece.data(), static_cast<int>(length));
        }
        return text;
    }

private:
    int m_master = -1;
    int m_slave = -1;
};

class ToolOutput : public QuadTest, public testing::WithParamInterface<Run>
{
protected:
    ToolOutput() { put_image("image.hex", {{0x80, counting(0x40, 0x30)}}); }

    /// Runs the tool with its standard output where the shell's redirection says.
    QByteArray status_of_run_into(const QString& redirection)
    {
        m_tool.run_in_shell(QStringLiteral("\"$@\" ") + redirection +
                                QStringLiteral("; echo $? >status"),
                            arguments());
        return QByteArray::fromStdString(file("status"));
    }

    QStringList arguments() const
    {
        return words(GetParam().arguments) +
               QStringList{QStringLiteral("-s"), m_device.port_path()};
    }

    QByteArray status() const { return QByteArray::number(GetParam().status) + '\n'; }
};

} // namespace

TEST_P(ToolOutput, IsTheSameInARegularFile)
{
    EXPECT_EQ(status_of_run_into(QStringLiteral(">out.txt")), status());
    EXPECT_EQ(file("out.txt"), GetParam().text.toStdString());
}

TEST_P(ToolOutput, IsTheSameAtTheEndOfARegularFile)
{
    m_tool.put_file(QStringLiteral("out.txt"), "before\n");
    EXPECT_EQ(status_of_run_into(QStringLiteral(">>out.txt")), status());
    EXPECT_EQ(file("out.txt"), "before\n" + GetParam().text.toStdString());
}

TEST_P(ToolOutput, IsTheSameOnATerminal)
{
    const Terminal terminal;
    EXPECT_EQ(status_of_run_into(QLatin1Char('>') + terminal.path()), status());
    EXPECT_EQ(terminal.text().toStdString(), GetParam().text.toStdString());
}

INSTANTIATE_TEST_SUITE_P(, ToolOutput, testing::ValuesIn(runs), row_name);
