#include "device/FrameCodec.h"
#include "sim/device/FrameCodec.h"
#include "tests/support/Bytes.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

using namespace test;

// The effect on a frame of one byte that is changed, lost or added on the line. The checksum is a
// plain sum, so an added or lost zero does not change it. Nothing else may go unnoticed, and a
// payload must never be taken for another of the same length, because a transaction checks the
// length.

namespace
{

using Payloads = std::vector<QByteArray>;

/// A side of the line: the payload that it takes from these bytes, or an empty one.
using Receiver = std::function<QByteArray(const QByteArray&)>;

/// The uploader when all bytes arrive at once.
QByteArray taken_at_once(const QByteArray& bytes)
{
    QByteArray payload;
    return frame::decode(bytes, payload) ? QByteArray() : payload;
}

/// The uploader when they arrive one by one: it decodes the buffer as soon as that ends a frame.
QByteArray taken_byte_by_byte(const QByteArray& bytes)
{
    for (int length = 1; length <= bytes.size(); ++length) {
        if (frame::is_terminated(bytes.left(length))) {
            return taken_at_once(bytes.left(length));
        }
    }
    return {};
}

QByteArray taken_by_the_device(const QByteArray& bytes)
{
    const Payloads payloads = sim::FrameReceiver().receive(bytes);
    return payloads.empty() ? QByteArray() : payloads.front();
}

const Receiver receivers[] = {taken_at_once, taken_byte_by_byte, taken_by_the_device};

/// Generates payloads in which the special values are as frequent as all others together.
class Dealer
{
public:
    QByteArray payload(int length)
    {
        QByteArray bytes(length, '\0');
        for (char& byte : bytes) {
            static constexpr char special[] = {0x00, 0x04, 0x05, 0x55};
            byte = below(2) == 0 ? special[below(4)] : static_cast<char>(below(256));
        }
        return bytes;
    }

    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned int>(limit)); }

private:
    // Always the same bytes, so that a failure can be reproduced.
    std::mt19937 m_random{20250711}; // NOLINT(cert-msc32-c,cert-msc51-cpp)
};

/// Short payloads, one for each checksum that is escaped and a number of others.
Payloads short_payloads()
{
    Payloads payloads = {bytes("02"),       bytes("FB"),       bytes("FC"),
                         bytes("AB"),       bytes("00"),       bytes("00 00"),
                         bytes("05 05 F1"), bytes("55 04 A3"), bytes("05 FC FA")};
    Dealer dealer;
    for (int i = 0; i < 24; ++i) {
        payloads.push_back(dealer.payload(1 + i % 6));
    }
    return payloads;
}

/// Calls `check` with a frame in which the byte at each position has been changed to each value.
template <typename Check>
void change_every_byte(const QByteArray& frame, Check check)
{
    for (int position = 0; position < frame.size(); ++position) {
        for (int difference = 1; difference < 256; ++difference) {
            QByteArray damaged = frame;
            damaged[position] = static_cast<char>(frame.at(position) + difference);
            check(damaged, position);
        }
    }
}

bool is_taken_for_another(const Receiver& receive, const QByteArray& damaged,
                          const QByteArray& payload)
{
    const QByteArray taken = receive(damaged);
    return !taken.isEmpty() && taken != payload;
}

/// True when `longer` is `shorter` with a zero somewhere.
bool has_one_more_zero(const QByteArray& longer, const QByteArray& shorter)
{
    for (int position = 0; position < longer.size(); ++position) {
        QByteArray without = longer;
        if (longer.at(position) == '\0' && without.remove(position, 1) == shorter) {
            return true;
        }
    }
    return false;
}

/// Payload and checksum.
QByteArray summed(const QByteArray& payload)
{
    return payload + frame::checksum(payload);
}

} // namespace

TEST(FrameOfEveryLength, CarriesWhateverItIsMadeOf)
{
    Dealer dealer;
    for (int length = 1; length <= 600; ++length) {
        for (const QByteArray& sent :
             {dealer.payload(length), QByteArray(length, '\x00'), QByteArray(length, '\x04'),
              QByteArray(length, '\x05'), QByteArray(length, '\x55'), QByteArray(length, '\xFF')}) {
            const QByteArray frame = frame::encode(sent);
            ASSERT_EQ(taken_at_once(frame), sent);
            ASSERT_EQ(taken_by_the_device(frame), sent);
        }
    }
}

TEST(FrameOfEveryLength, IsTheSameFromBothSides)
{
    Dealer dealer;
    for (int length = 1; length <= 600; ++length) {
        const QByteArray sent = dealer.payload(length);
        ASSERT_EQ(frame::encode(sent), sim::make_frame(sent));
    }
}

// Two changes pass. The escape of a checksum turns into a zero: the checksum is then taken without
// its escape and the zero for payload. Or a zero at the beginning of the payload turns into a sync
// symbol, of which there may be any number.
TEST(FrameWithOneByteChanged, IsTakenForAnotherOnlyIfThatByteIsOrWasAZero)
{
    int zeros_added = 0;
    int zeros_lost = 0;
    for (const QByteArray& payload : short_payloads()) {
        const QByteArray frame = frame::encode(payload);
        change_every_byte(frame, [&](const QByteArray& damaged, int position) {
            if (!is_taken_for_another(taken_at_once, damaged, payload)) {
                return;
            }
            if (position == frame.size() - 3) {
                ++zeros_added;
                EXPECT_TRUE(frame::needs_escaping(frame::checksum(payload))) << hex(damaged);
                EXPECT_EQ(taken_at_once(damaged), payload + '\0') << hex(damaged);
            } else {
                ++zeros_lost;
                EXPECT_EQ(position, 2) << hex(damaged);
                EXPECT_EQ('\0' + taken_at_once(damaged), payload) << hex(damaged);
            }
        });
    }
    EXPECT_GT(zeros_added, 0);
    EXPECT_GT(zeros_lost, 0);
}

// The simulated device wants the escape of the checksum. It may miss a zero at the beginning, or
// take a byte for the terminator where the payload so far happens to end in its checksum.
TEST(FrameWithOneByteChanged, IsTakenForNothingButAShorterOneByTheDevice)
{
    for (const QByteArray& payload : short_payloads()) {
        change_every_byte(frame::encode(payload), [&](const QByteArray& damaged, int) {
            if (is_taken_for_another(taken_by_the_device, damaged, payload)) {
                EXPECT_LT(taken_by_the_device(damaged).size(), payload.size()) << hex(damaged);
            }
        });
    }
}

TEST(FrameWithOneByteChanged, IsNeverTakenForAnotherOfItsLength)
{
    for (const QByteArray& payload : short_payloads()) {
        change_every_byte(frame::encode(payload), [&](const QByteArray& damaged, int) {
            for (const Receiver& receive : receivers) {
                EXPECT_TRUE(!is_taken_for_another(receive, damaged, payload) ||
                            receive(damaged).size() != payload.size())
                    << hex(damaged);
            }
        });
    }
}

// Of a frame with a zero more or less, the checksum may also be taken for payload or a byte of the
// payload for the checksum.
TEST(FrameWithOneByteMore, IsTakenForAnotherOnlyIfThatByteIsAZero)
{
    int zeros_added = 0;
    for (const QByteArray& payload : short_payloads()) {
        const QByteArray frame = frame::encode(payload);
        for (int position = 0; position <= frame.size(); ++position) {
            for (int value = 0; value < 256; ++value) {
                QByteArray damaged = frame;
                damaged.insert(position, static_cast<char>(value));
                if (is_taken_for_another(taken_at_once, damaged, payload)) {
                    ++zeros_added;
                    EXPECT_EQ(value, 0) << hex(damaged);
                    EXPECT_TRUE(has_one_more_zero(summed(taken_at_once(damaged)), summed(payload)))
                        << hex(damaged);
                }
            }
        }
    }
    EXPECT_GT(zeros_added, 0);
}

TEST(FrameWithOneByteLess, IsTakenForAnotherOnlyIfThatByteIsAZero)
{
    int zeros_lost = 0;
    for (const QByteArray& payload : short_payloads()) {
        const QByteArray frame = frame::encode(payload);
        for (int position = 0; position < frame.size(); ++position) {
            QByteArray damaged = frame;
            damaged.remove(position, 1);
            if (is_taken_for_another(taken_at_once, damaged, payload)) {
                ++zeros_lost;
                EXPECT_EQ(frame.at(position), '\0') << hex(damaged);
                EXPECT_TRUE(has_one_more_zero(summed(payload), summed(taken_at_once(damaged))))
                    << hex(damaged);
            }
        }
    }
    EXPECT_GT(zeros_lost, 0);
}

TEST(FrameWithOneByteMoreOrLess, IsNeverTakenForAnotherOfItsLength)
{
    Dealer dealer;
    for (int i = 0; i < 20000; ++i) {
        const QByteArray payload = dealer.payload(1 + dealer.below(12));
        QByteArray damaged = frame::encode(payload);
        if (i % 2 == 0) {
            damaged.insert(dealer.below(damaged.size() + 1), dealer.payload(1));
        } else {
            damaged.remove(dealer.below(damaged.size()), 1);
        }
        for (const Receiver& receive : receivers) {
            ASSERT_TRUE(!is_taken_for_another(receive, damaged, payload) ||
                        receive(damaged).size() != payload.size())
                << hex(damaged);
        }
    }
}

TEST(LongFrameWithOneByteChanged, IsNeverTakenForAnotherOfItsLength)
{
    Dealer dealer;
    for (int i = 0; i < 5000; ++i) {
        const QByteArray payload = dealer.payload(20 + dealer.below(280));
        QByteArray damaged = frame::encode(payload);
        const int position = dealer.below(damaged.size());
        damaged[position] = static_cast<char>(damaged.at(position) + 1 + dealer.below(255));
        for (const Receiver& receive : {Receiver(taken_at_once), Receiver(taken_by_the_device)}) {
            ASSERT_TRUE(!is_taken_for_another(receive, damaged, payload) ||
                        receive(damaged).size() != payload.size())
                << hex(damaged);
        }
    }
}
