#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// The one function of a fuzz target: processes `data` as input from an untrusted file or device.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline QByteArray bytes_of(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

/// A condition that must hold for every input; ends the program if it does not.
inline void must_hold(bool rule)
{
    if (!rule) {
        std::abort();
    }
}

/// Debug messages are expected in large numbers and would only slow the search down.
inline bool silence_debug_messages()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return true;
}
