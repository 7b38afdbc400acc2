#include <QCoreApplication>

// The least that a program on Qt Core does.

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return 0;
}
