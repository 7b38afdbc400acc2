#include "inspect/StandardStreams.h"

#include "inspect/ExitStatus.h"

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace inspect
{

namespace
{

bool write_all(int descriptor, const QByteArray& bytes)
{
    const char* at = bytes.constData();
    const char* const end = at + bytes.size();
    while (at != end) {
        const ssize_t count = ::write(descriptor, at, static_cast<std::size_t>(end - at));
        if (count < 0 && errno != EINTR) {
            return false;
        }
        at += count < 0 ? 0 : count;
    }
    return true;
}

} // namespace

bool standard_output_shows_colour()
{
    const char* const refused = std::getenv("NO_COLOR");
    return ::isatty(STDOUT_FILENO) == 1 && (refused == nullptr || *refused == '\0');
}

int print(const Outcome& outcome)
{
    write_all(STDERR_FILENO, outcome.err);
    if (write_all(STDOUT_FILENO, outcome.out)) {
        return outcome.status;
    }
    // A reader that has seen enough, such as a pager, is no reason to complain.
    if (errno != EPIPE) {
        write_all(STDERR_FILENO, "zserial-inspect: cannot write to standard output\n");
    }
    return ExitCannot;
}

} // namespace inspect
