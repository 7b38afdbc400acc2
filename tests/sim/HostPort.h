#pragma once

#include "tests/support/Waiting.h"

#include <QByteArray>
#include <QSerialPort>
#include <QString>
#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace test
{

/// The host's side of a line: a serial port that remembers what each of its reads returned.
class HostPort
{
public:
    explicit HostPort(const QString& path, qint32 baud = 9600)
    {
        m_port.setPortName(path);
        QObject::connect(&m_port, &QSerialPort::readyRead, &m_port,
                         [this] { m_pieces.push_back(m_port.readAll()); });
        open(baud);
    }

    void open(qint32 baud)
    {
        m_port.setBaudRate(baud);
        EXPECT_TRUE(m_port.open(QIODevice::ReadWrite)) << m_port.errorString().toStdString();
    }

    void close() { m_port.close(); }

    void set_baud(qint32 baud) { EXPECT_TRUE(m_port.setBaudRate(baud)) << baud; }

    /// Writes at once, at the rate now set.
    void send(const QByteArray& bytes)
    {
        EXPECT_EQ(m_port.write(bytes), bytes.size());
        m_port.flush();
    }

    /// Runs the event loop until `count` bytes have arrived; fails the test if they do not.
    QByteArray receive(int count)
    {
        EXPECT_TRUE(wait_until([this, count] { return received_size() >= count; }));
        return received();
    }

    QByteArray ask(const QByteArray& bytes, const QByteArray& expected_answer)
    {
        m_pieces.clear();
        send(bytes);
        return receive(expected_answer.size());
    }

    QByteArray received() const
    {
        QByteArray all;
        for (const QByteArray& piece : m_pieces) {
            all.append(piece);
        }
        return all;
    }

    const std::vector<QByteArray>& pieces() const { return m_pieces; }

    QSerialPort& port() { return m_port; }

private:
    int received_size() const
    {
        return std::accumulate(m_pieces.begin(), m_pieces.end(), 0,
                               [](int sum, const QByteArray& piece) { return sum + piece.size(); });
    }

    QSerialPort m_port;
    std::vector<QByteArray> m_pieces;
};

} // namespace test
