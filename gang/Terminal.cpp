#include "gang/Terminal.h"

#include "util/Platform.h"

#include <QByteArray>

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace gang
{

bool has_terminal()
{
    const QByteArray kind = qgetenv("TERM");
    return Platform::is_terminal(Platform::StandardStream::Output) && !kind.isEmpty() &&
           kind != "dumb";
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

bool takes_output()
{
    pollfd entry{STDOUT_FILENO, POLLOUT, 0};
    return ::poll(&entry, 1, 0) > 0;
}

} // namespace gang
