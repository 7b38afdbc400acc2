#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"
#include "tests/support/RowName.h"

#include <QTemporaryDir>

#include <atomic>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <future>
#include <ostream>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace test;

namespace
{

/// A named pipe.
class HexPipe : public testing::Test
{
protected:
    HexPipe() { EXPECT_EQ(::mkfifo(name.constData(), 0600), 0); }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("pipe"));
    const QByteArray name = QFile::encodeName(path);
    MemoryMap map{MemoryMap::default_chunk_size};
};

/// What is written into a pipe that its writer then keeps open.
struct PipedText {
    const char* name;
    QByteArray text;
    bool loads;
};

std::ostream& operator<<(std::ostream& stream, const PipedText& text)
{
    return stream << text.name;
}

const QByteArray byte_a = ":0100000041BE\n";

const PipedText piped_texts[] = {
    {"whole_lines", byte_a + ":00000001FF\n", true},
    {"end_record_without_a_line_end", byte_a + ":00000001FF", true},
    {"carriage_returns", ":0100000041BE\r\n:00000001FF\r\n", true},
    {"text_after_the_end_record", byte_a + ":00000001FF\nmore", true},
    {"more_than_is_read_at_a_time", QByteArray(100000, '\n') + byte_a + ":00000001FF\n", true},
    {"as_much_as_is_read_at_a_time",
     QByteArray(65536 - byte_a.size() - 11, '\n') + byte_a + ":00000001FF", true},
    {"bad_digit", ":01000000g", false},
    {"wrong_checksum", ":0100000041BF", false},
    {"segment_record", ":020000020000FC", false},
};

std::atomic<int> signals{0};

/// Handles SIGUSR1 so that it interrupts a read, as long as it lives.
class InterruptingSignal
{
public:
    InterruptingSignal()
    {
        Action action{};
        action.sa_handler = [](int) {
            ++signals;
        };
        EXPECT_EQ(::sigaction(SIGUSR1, &action, &m_previous), 0);
    }

    ~InterruptingSignal() { ::sigaction(SIGUSR1, &m_previous, nullptr); }

    InterruptingSignal(const InterruptingSignal&) = delete;
    InterruptingSignal& operator=(const InterruptingSignal&) = delete;

    /// Sends ten, each after the one before has arrived.
    static void send_to(pthread_t thread)
    {
        for (int sent = signals + 1, last = sent + 9; sent <= last; ++sent) {
            ::pthread_kill(thread, SIGUSR1);
            while (signals < sent) {
                std::this_thread::yield();
            }
        }
    }

private:
    using Action = struct sigaction;

    Action m_previous{};
};

void wait_until_read(int pipe)
{
    int unread = 1;
    while (::ioctl(pipe, FIONREAD, &unread) == 0 && unread > 0) {
        std::this_thread::yield();
    }
}

class HexPipeKeptOpen : public HexPipe, public testing::WithParamInterface<PipedText>
{
};

} // namespace

// A pipe must not be replaced by a file: its reader would never see the image.
TEST_F(HexPipe, TakesTheTextInPlace)
{
    QByteArray received;
    std::thread reader([&] { received = file_content(path); });
    map.write(0, QByteArray("\x01\x02\x03\x04", 4));
    EXPECT_TRUE(map.save_to_hex_file(path));
    reader.join();
    EXPECT_EQ(received, ":020000040000FA\n:0400000001020304F2\n:00000001FF\n");

    struct stat information {
    };

    ASSERT_EQ(::stat(name.constData(), &information), 0);
    EXPECT_TRUE(S_ISFIFO(information.st_mode));
}

TEST_F(HexPipe, MayBringARecordInPieces)
{
    std::thread writer([&] {
        const int pipe = ::open(name.constData(), O_WRONLY | O_CLOEXEC);
        for (const char character : QByteArray(":0400000001020304F2\n")) {
            EXPECT_EQ(::write(pipe, &character, 1), 1);
            std::this_thread::yield();
        }
        ::close(pipe);
    });
    EXPECT_TRUE(map.load_from_hex_file(path, {}));
    writer.join();
    EXPECT_EQ(blobs_of(map), (Blobs{{0, "01020304"}}));
}

// The writer may keep the pipe open after the end of the image; the load must not wait for more.
TEST_P(HexPipeKeptOpen, IsNotAskedForMoreThanIsNeeded)
{
    const int both_ends = ::open(name.constData(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(both_ends, 0);
    std::thread writer([&] {
        const QByteArray& text = GetParam().text;
        EXPECT_EQ(::write(both_ends, text.constData(), static_cast<std::size_t>(text.size())),
                  text.size());
    });
    auto loaded = std::async(std::launch::async, [&] { return map.load_from_hex_file(path, {}); });
    const bool ends = loaded.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    EXPECT_TRUE(ends);
    writer.join();
    ::close(both_ends); // ends a load that waits for more
    EXPECT_EQ(loaded.get(), GetParam().loads);
    EXPECT_EQ(map.size(), GetParam().loads ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(Texts, HexPipeKeptOpen, testing::ValuesIn(piped_texts), row_name);

TEST_F(HexPipe, IsReadOnAfterASignal)
{
    const int both_ends = ::open(name.constData(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(both_ends, 0);
    const InterruptingSignal handler;
    const pthread_t reader = ::pthread_self();
    std::thread writer([both_ends, reader] {
        EXPECT_EQ(::write(both_ends, ":0100", 5), 5);
        wait_until_read(both_ends);
        InterruptingSignal::send_to(reader);
        const QByteArray rest = byte_a.mid(5) + ":00000001FF\n";
        EXPECT_EQ(::write(both_ends, rest.constData(), static_cast<std::size_t>(rest.size())),
                  rest.size());
    });
    EXPECT_TRUE(map.load_from_hex_file(path, {}));
    writer.join();
    ::close(both_ends);
    EXPECT_EQ(map.size(), 1U);
}
