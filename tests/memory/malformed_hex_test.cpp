#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"
#include "tests/support/MalformedHex.h"
#include "tests/support/RowName.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

using namespace test;

namespace
{

using Lines = std::vector<std::string>;

const Lines no_record = {"MemoryMap::read_record(): failed to read character",
                         "MemoryMap::load_from_hex_file(): failed to read record"};

class MalformedHexFile : public testing::TestWithParam<MalformedHex>
{
};

/// KiB that this process has held at once so far.
long peak_memory()
{
    rusage usage{};
    EXPECT_EQ(getrusage(RUSAGE_SELF, &usage), 0);
    return usage.ru_maxrss;
}

constexpr qint64 gibibyte = 1 << 30;
constexpr long small_growth_kib = 8 * 1024;

/// A file that is far larger than any image and is not an image.
class HugeHexFile : public testing::Test
{
protected:
    QString path() const { return m_folder.filePath(QStringLiteral("huge.hex")); }

    void expect_refused_with_little_memory()
    {
        MemoryMap map(16);
        const long before = peak_memory();
        const DebugMessages messages;
        EXPECT_FALSE(map.load_from_hex_file(path(), {}));
        EXPECT_LT(peak_memory() - before, small_growth_kib);
        EXPECT_EQ(lines_of(messages), no_record);
        EXPECT_EQ(map.size(), 0U);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_P(MalformedHexFile, LoadsOrIsRefusedInTheseWords)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("image.hex"));
    write_file(path, GetParam().text);
    MemoryMap map(16);
    const DebugMessages messages;
    EXPECT_EQ(map.load_from_hex_file(path, {}), GetParam().messages.empty());
    EXPECT_EQ(lines_of(messages), GetParam().messages);
    EXPECT_EQ(blobs_of(map), GetParam().pieces);
}

INSTANTIATE_TEST_SUITE_P(, MalformedHexFile, testing::ValuesIn(malformed_hex_files()), row_name);

TEST_F(HugeHexFile, OfNulBytesIsRefusedWithLittleMemory)
{
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(gibibyte)); // sparse: takes no space on the disk
    expect_refused_with_little_memory();
}

TEST_F(HugeHexFile, OfDigitsIsRefusedWithLittleMemory)
{
    // Through a pipe, because such a file would take 1 GiB on the disk.
    ASSERT_EQ(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    std::thread writer([this] {
        QFile pipe(path());
        EXPECT_TRUE(pipe.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        const QByteArray digits(1 << 16, '0');
        for (qint64 written = 0; written < gibibyte; written += digits.size()) {
            pipe.write(digits);
        }
    });
    expect_refused_with_little_memory();
    writer.join();
}
