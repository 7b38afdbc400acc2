#include "fuzz/Target.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <cstdio>

// Runs a fuzz target on files, or on all files of a folder.

namespace
{

bool replay(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        (void)std::fprintf(stderr, "cannot read %s\n", path.toLocal8Bit().constData());
        return false;
    }
    const QByteArray content = file.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.constData()),
                           static_cast<std::size_t>(content.size()));
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        QDirIterator files(path, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            replayed += replay(files.next()) ? 1 : 0;
        }
        if (!QDir(path).exists()) {
            replayed += replay(path) ? 1 : 0;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
