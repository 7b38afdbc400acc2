#include "sim/line/Descriptor.h"
#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"
#include "tests/support/MalformedHex.h"
#include "tests/support/RowName.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <map>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

using namespace test;

namespace
{

constexpr unsigned int user_flash_start = 0x40;
constexpr unsigned int user_flash_end = 0x140;

std::vector<MalformedHex> files_that(bool load)
{
    std::vector<MalformedHex> files;
    for (const MalformedHex& file : malformed_hex_files()) {
        if (file.messages.empty() == load) {
            files.push_back(file);
        }
    }
    return files;
}

/// All of QUAD's flash after the pieces have been written to an erased one.
QByteArray flash_with(const MalformedHex& file)
{
    QByteArray flash(static_cast<int>(user_flash_end), '\xFF');
    for (const auto& [address, digits] : file.pieces) {
        const QByteArray bytes = QByteArray::fromHex(digits.c_str());
        if (user_flash_start <= address && address < user_flash_end) {
            flash.replace(static_cast<int>(address), bytes.size(), bytes);
        }
    }
    return flash.mid(static_cast<int>(user_flash_start));
}

/// The image that every run here is given.
class ToolWithHexFile : public QuadTest
{
protected:
    void put_hex(const QByteArray& text) { m_tool.put_file(QStringLiteral("image.hex"), text); }

    void expect_refusal(const char* arguments, const char* operation,
                        const std::vector<std::string>& messages)
    {
        SCOPED_TRACE(arguments);
        expect_refused(operate(arguments), operation, messages);
    }

    void expect_refused(const ToolResult& result, const char* operation,
                        const std::vector<std::string>& messages)
    {
        EXPECT_EQ(result, failed(QByteArray("Could not process firmware file image.hex as intel "
                                            "hex 32 format during ") +
                                 operation + ", aborting..."));
        for (const std::string& message : messages) {
            EXPECT_TRUE(result.err.contains(message.c_str())) << message << result;
        }
        EXPECT_EQ(heard_by(m_device), "");
    }

    QByteArray flash() const
    {
        return m_device.memory().read(user_flash_start, user_flash_end - user_flash_start);
    }
};

class ToolWithUnreadableHex : public ToolWithHexFile,
                              public testing::WithParamInterface<MalformedHex>
{
};

class ToolWithUnusualHex : public ToolWithHexFile, public testing::WithParamInterface<MalformedHex>
{
};

constexpr qint64 gibibyte = 1 << 30;

/// The largest amount of memory in KiB that a running process has held at once so far.
long peak_memory(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/status").arg(process));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QRegularExpression peak(QStringLiteral("VmHWM:\\s+(\\d+) kB"));
    const QRegularExpressionMatch match = peak.match(QString::fromUtf8(file.readAll()));
    EXPECT_TRUE(match.hasMatch());
    return match.captured(1).toLong();
}

/// A stream of 1 GiB that takes no space on the disk: a pipe that is filled with the same character
/// over and over, whenever the event loop finds room in it.
class HugeFile
{
public:
    HugeFile(const QString& path, char character) : m_block(1 << 16, character), m_pipe(open(path))
    {
        m_room = std::make_unique<QSocketNotifier>(m_pipe.get(), QSocketNotifier::Write);
        QObject::connect(m_room.get(), &QSocketNotifier::activated, [this] { write(); });
    }

    /// Calls `look` once, when this much has been written. All of it except the content of the
    /// pipe, which is far less, has then been read.
    void once_written(qint64 count, std::function<void()> look)
    {
        m_looks[count] = std::move(look);
    }

private:
    /// For reading, too, so that another process may open it more than once.
    static sim::Descriptor open(const QString& path)
    {
        const QByteArray name = QFile::encodeName(path);
        if (::mkfifo(name.constData(), 0600) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
        }
        sim::Descriptor pipe(::open(name.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
        if (!pipe.is_open()) {
            throw std::system_error(errno, std::generic_category(), "cannot open a pipe");
        }
        return pipe;
    }

    void write()
    {
        const auto size = static_cast<std::size_t>(m_block.size());
        m_written += std::max<qint64>(0, ::write(m_pipe.get(), m_block.constData(), size));
        while (!m_looks.empty() && m_looks.begin()->first <= m_written) {
            m_looks.begin()->second();
            m_looks.erase(m_looks.begin());
        }
        if (m_written >= gibibyte) {
            m_room->setEnabled(false);
            m_pipe.close(); // the end of the file
        }
    }

    QByteArray m_block;
    sim::Descriptor m_pipe;
    std::unique_ptr<QSocketNotifier> m_room;
    qint64 m_written = 0;
    std::map<qint64, std::function<void()>> m_looks;
};

class ToolWithHugeHex : public ToolWithHexFile
{
protected:
    void expect_refusal_with_little_memory(char character)
    {
        HugeFile image(m_tool.path(QStringLiteral("image.hex")), character);
        const auto tool = m_tool.start(QStringList{QStringLiteral("-s"), m_device.port_path()} +
                                       words("-B 0708 -w image.hex"));
        long at_the_begin = 0;
        long at_the_end = 0;
        image.once_written(gibibyte / 64, [&] { at_the_begin = peak_memory(tool->process()); });
        image.once_written(gibibyte, [&] { at_the_end = peak_memory(tool->process()); });
        expect_refused(tool->result(), "write", {"failed to read character"});
        EXPECT_GT(at_the_begin, 0);
        EXPECT_GE(at_the_end, at_the_begin);
        EXPECT_LT(at_the_end - at_the_begin, 8 * 1024);
    }
};

} // namespace

TEST_P(ToolWithUnreadableHex, SendsNothing)
{
    put_hex(GetParam().text);
    expect_refusal("-w image.hex -R", "write", GetParam().messages);
    expect_refusal("-W 0x40 0x140 image.hex", "write", GetParam().messages);
    expect_refusal("-wv image.hex", "write-and-verify", GetParam().messages);
    expect_refusal("-v image.hex", "verify", GetParam().messages);
    EXPECT_EQ(flash(), QByteArray(user_flash_end - user_flash_start, '\xFF'));
}

INSTANTIATE_TEST_SUITE_P(, ToolWithUnreadableHex, testing::ValuesIn(files_that(false)), row_name);

TEST_P(ToolWithUnusualHex, WritesWhatItHolds)
{
    put_hex(GetParam().text);
    ToolResult result = operate("-w image.hex");
    result.out = QString::fromUtf8(result.out)
                     .remove(QRegularExpression(QStringLiteral("\rProgress \\d+%")))
                     .toUtf8();
    EXPECT_EQ(result, succeeded("Now writingMemory written!\n"));
    EXPECT_EQ(small_digits(flash()), small_digits(flash_with(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(, ToolWithUnusualHex, testing::ValuesIn(files_that(true)), row_name);

TEST_F(ToolWithHexFile, ThatIsAFolderIsRefusedWithTheCommandLine)
{
    ASSERT_TRUE(QDir().mkdir(m_tool.path(QStringLiteral("image.hex"))));
    EXPECT_EQ(operate("-w image.hex"),
              exited(1, "Could not open file image.hex for write op, aborting...\n"));
    EXPECT_EQ(heard_by(m_device), "");
}

TEST_F(ToolWithHugeHex, OfNulBytesSendsNothing)
{
    expect_refusal_with_little_memory('\0');
}

TEST_F(ToolWithHugeHex, OfDigitsSendsNothing)
{
    expect_refusal_with_little_memory('0');
}
