#include <QCoreApplication>

// The minimal program on Qt Core.

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return 0;
}
