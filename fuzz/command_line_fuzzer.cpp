#include "app/CommandLine.h"
#include "fuzz/Target.h"

// The input is the argument vector, its elements separated by NUL bytes as in /proc/self/cmdline.

namespace
{

/// Every other name can be opened.
bool opens_by_length(const QString& name)
{
    return name.size() % 2 == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QStringList arguments;
    for (const QByteArray& argument : bytes_of(data, size).split('\0')) {
        arguments << QString::fromUtf8(argument);
    }
    Settings settings;
    const auto refusal = command_line::scan(arguments, opens_by_length, settings);
    if (refusal) {
        must_hold(!refusal->message.isEmpty() && !refusal->with_usage);
        return 0;
    }
    must_hold(!settings.write_wanted || arguments.contains(settings.write_file));
    must_hold(settings.port_name.isEmpty() || arguments.contains(settings.port_name));
    if (!command_line::check_conflicts(settings)) {
        command_line::check_request(settings);
    }
    return 0;
}
