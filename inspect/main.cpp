#include "inspect/Program.h"
#include "inspect/StandardStreams.h"
#include "util/Platform.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    Platform::occupy_standard_descriptors();
    Platform::let_impossible_writes_fail();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zserial-inspect"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZSERIAL_VERSION));
    return inspect::print(
        inspect::run(QCoreApplication::arguments(), {inspect::standard_output_shows_colour()}));
}
