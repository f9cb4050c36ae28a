// A host application in miniature: it only uses the installed public headers and library.
#include <ostrel/Ostrel.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    ostrel::Ostrel::setLoggingLevel(ostrel::OSTLoggingLevelInfo);
    const QString version = ostrel::Ostrel::version();
    std::printf("linked Ostrel %s\n", qPrintable(version));
    return version.startsWith(QStringLiteral("3.")) ? 0 : 1;
}
