#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    std::fputs("tavelle: no command given\n", stderr);
    return 2;
}
