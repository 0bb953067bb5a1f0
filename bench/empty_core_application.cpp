// The least that a command-line program of this toolkit does; what the start of ours is compared with.

#include <QCoreApplication>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return 0;
}
