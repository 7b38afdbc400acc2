#include "device/FrameCodec.h"
#include "tests/support/Bytes.h"

#include <gtest/gtest.h>

#include <random>

using namespace test;

namespace
{

/// Payloads in which the special values are as frequent as all others together.
class RandomPayloads
{
public:
    QByteArray next()
    {
        QByteArray payload(std::uniform_int_distribution<int>(1, 300)(m_random), '\0');
        for (char& byte : payload) {
            byte = next_byte();
        }
        return payload;
    }

private:
    char next_byte()
    {
        static constexpr char specials[] = {0x04, 0x05, 0x55};
        const auto number = static_cast<unsigned int>(m_random());
        return number % 2 == 0 ? specials[number / 2 % 3] : static_cast<char>(number >> 8);
    }

    // Always the same payloads, so that a failure can be reproduced.
    std::mt19937 m_random{20240607}; // NOLINT(cert-msc32-c,cert-msc51-cpp)
};

} // namespace

TEST(FrameRoundTrip, CarriesEverySingleByte)
{
    for (int value = 0; value < 256; ++value) {
        const QByteArray sent(1, static_cast<char>(value));
        QByteArray received;
        EXPECT_EQ(frame::decode(frame::encode(sent), received), std::nullopt) << value;
        EXPECT_EQ(received, sent);
    }
}

TEST(FrameRoundTrip, CarriesAnyPayload)
{
    RandomPayloads payloads;
    for (int i = 0; i < 2000; ++i) {
        const QByteArray sent = payloads.next();
        QByteArray received;
        ASSERT_EQ(frame::decode(frame::encode(sent), received), std::nullopt) << hex(sent);
        ASSERT_EQ(received, sent);
    }
}

TEST(FrameRoundTrip, NoFrameIsCompleteBeforeItsEnd)
{
    // A receiver that asks after every byte must not stop at an escaped terminator.
    RandomPayloads payloads;
    for (int i = 0; i < 100; ++i) {
        const QByteArray frame = frame::encode(payloads.next());
        for (int length = 0; length < frame.size(); ++length) {
            ASSERT_FALSE(frame::is_terminated(frame.left(length))) << hex(frame) << length;
        }
        ASSERT_TRUE(frame::is_terminated(frame)) << hex(frame);
    }
}

TEST(FrameDamage, NoFrameThatIsCutShortIsAccepted)
{
    RandomPayloads payloads;
    for (int i = 0; i < 50; ++i) {
        const QByteArray frame = frame::encode(payloads.next());
        for (int length = 0; length < frame.size(); ++length) {
            QByteArray received;
            const Reason refusal = frame::decode(frame.left(length), received);
            ASSERT_NE(refusal, std::nullopt) << hex(frame) << length;
        }
    }
}

TEST(FrameDamage, NoOtherChecksumIsAccepted)
{
    RandomPayloads payloads;
    for (int i = 0; i < 50; ++i) {
        const QByteArray frame = frame::encode(payloads.next());
        for (int difference = 1; difference < 256; ++difference) {
            QByteArray damaged = frame;
            damaged[frame.size() - 2] = static_cast<char>(frame.at(frame.size() - 2) + difference);
            QByteArray received;
            const Reason refusal = frame::decode(damaged, received);
            ASSERT_NE(refusal, std::nullopt) << hex(damaged);
        }
    }
}

TEST(FrameDamage, WhateverIsAcceptedHasAPayloadThatItsChecksumFits)
{
    RandomPayloads payloads;
    int accepted = 0;
    for (int i = 0; i < 20000; ++i) {
        const QByteArray frame = "\x55\x55" + payloads.next().left(1 + i % 5) + '\x04';
        QByteArray received;
        if (!frame::decode(frame, received)) {
            ++accepted;
            ASSERT_FALSE(received.isEmpty()) << hex(frame);
            ASSERT_EQ(frame::checksum(received), frame.at(frame.size() - 2)) << hex(frame);
        }
    }
    EXPECT_GT(accepted, 0);
}
