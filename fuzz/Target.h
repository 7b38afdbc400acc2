#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// The one function of a fuzz target: does with `data` what a stranger's file or device would.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline QByteArray bytes_of(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

/// A rule that must hold whatever the input; ends the program where it does not.
inline void must_hold(bool rule)
{
    if (!rule) {
        std::abort();
    }
}

/// Debug messages are expected in heaps and would only slow the search down.
inline bool silence_debug_messages()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return true;
}
