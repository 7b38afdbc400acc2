#include "gang/Terminal.h"

#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>

namespace gang
{

bool has_terminal()
{
    const QByteArray kind = qgetenv("TERM");
    return ::isatty(STDOUT_FILENO) == 1 && !kind.isEmpty() && kind != "dumb";
}

bool wants_no_colour()
{
    return !qEnvironmentVariableIsEmpty("NO_COLOR");
}

TerminalSize terminal_size()
{
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        return {};
    }
    return {size.ws_col, size.ws_row};
}

void write_to_terminal(const QByteArray& bytes)
{
    int written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(STDOUT_FILENO, bytes.constData() + written,
                                      static_cast<std::size_t>(bytes.size() - written));
        if (count < 0 && errno != EINTR) {
            return;
        }
        written += count > 0 ? static_cast<int>(count) : 0;
    }
}

} // namespace gang
