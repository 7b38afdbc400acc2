#pragma once

#include "tests/device/OperationBench.h"

namespace test
{

// An observer of an operation requests a stop at one of its signals.

/// At the `number`th command (from 1), as soon as it has been sent.
inline void abort_at_command(OperationBench& bench, unsigned int number)
{
    QObject::connect(&bench.line.device, &ZarnSerialDevice::sig_encoded_command,
                     [&bench, left = number]() mutable { bench.abort |= --left == 0; });
}

/// At the `number`th report of progress (from 1).
inline void abort_at_progress(OperationBench& bench, unsigned int number)
{
    const auto count = [&bench, left = number]() mutable {
        bench.abort |= --left == 0;
    };
    // An operation reports one of the two.
    QObject::connect(&bench.line.device, &ZarnSerialDevice::sig_upload_progress, count);
    QObject::connect(&bench.line.device, &ZarnSerialDevice::sig_verify_progress, count);
}

} // namespace test
