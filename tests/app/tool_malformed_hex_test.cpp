#include "tests/app/QuadTest.h"
#include "tests/support/MalformedHex.h"
#include "tests/support/RowName.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

constexpr unsigned int flash_start = 0x40;
constexpr unsigned int flash_end = 0x140;

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
    QByteArray flash(static_cast<int>(flash_end), '\xFF');
    for (const auto& [address, digits] : file.pieces) {
        const QByteArray bytes = QByteArray::fromHex(digits.c_str());
        if (flash_start <= address && address < flash_end) {
            flash.replace(static_cast<int>(address), bytes.size(), bytes);
        }
    }
    return flash.mid(static_cast<int>(flash_start));
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
        const ToolResult result = operate(arguments);
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
        return m_device.memory().read(flash_start, flash_end - flash_start);
    }
};

class ToolWithUnreadableHex : public ToolWithHexFile,
                              public testing::WithParamInterface<MalformedHex>
{
};

class ToolWithUnusualHex : public ToolWithHexFile, public testing::WithParamInterface<MalformedHex>
{
};

class ToolWithHugeHex : public ToolWithHexFile
{
protected:
    QByteArray path() const { return QFile::encodeName(m_tool.path(QStringLiteral("image.hex"))); }

    void expect_refusal_with_little_memory()
    {
        put_hex(":");
        operate("-w image.hex");
        const long with_small_file = largest_run();
        prepare();
        expect_refusal("-w image.hex", "write", {"failed to read character"});
        EXPECT_LT(largest_run() - with_small_file, 8 * 1024);
        EXPECT_LT(largest_run(), 100 * 1024);
    }

    std::function<void()> prepare;

private:
    /// KiB that the largest of all runs so far has held at once.
    static long largest_run()
    {
        rusage usage{};
        EXPECT_EQ(getrusage(RUSAGE_CHILDREN, &usage), 0);
        return usage.ru_maxrss;
    }
};

constexpr qint64 gibibyte = 1 << 30;

} // namespace

TEST_P(ToolWithUnreadableHex, SendsNothing)
{
    put_hex(GetParam().text);
    expect_refusal("-w image.hex -R", "write", GetParam().messages);
    expect_refusal("-W 0x40 0x140 image.hex", "write", GetParam().messages);
    expect_refusal("-wv image.hex", "write-and-verify", GetParam().messages);
    expect_refusal("-v image.hex", "verify", GetParam().messages);
    EXPECT_EQ(flash(), QByteArray(flash_end - flash_start, '\xFF'));
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
    EXPECT_EQ(hex(flash()), hex(flash_with(GetParam())));
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
    prepare = [this] {
        QFile file(m_tool.path(QStringLiteral("image.hex")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.resize(gibibyte)); // takes no room on the disk
    };
    expect_refusal_with_little_memory();
}

TEST_F(ToolWithHugeHex, OfDigitsSendsNothing)
{
    // Through a pipe, because such a file does take its room on the disk.
    std::thread writer;
    prepare = [&] {
        ASSERT_TRUE(QFile::remove(m_tool.path(QStringLiteral("image.hex"))));
        ASSERT_EQ(::mkfifo(path().constData(), 0600), 0);
        // Open for reading, too, so that the tool may open it more than once.
        const int pipe = ::open(path().constData(), O_RDWR | O_CLOEXEC);
        ASSERT_GE(pipe, 0);
        writer = std::thread([pipe] {
            const QByteArray digits(1 << 16, '0');
            for (qint64 written = 0; written < gibibyte; written += digits.size()) {
                EXPECT_EQ(
                    ::write(pipe, digits.constData(), static_cast<std::size_t>(digits.size())),
                    digits.size());
            }
            ::close(pipe);
        });
    };
    expect_refusal_with_little_memory();
    writer.join();
}
