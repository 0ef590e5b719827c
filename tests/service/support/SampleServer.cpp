#include "tests/service/support/LoopbackServer.h"
#include "tests/service/support/SampleService.h"

#include <QCoreApplication>
#include <QTextStream>

/// Serves the sample service until it is interrupted, for trying the library by hand.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const caldra::tests::LoopbackServer server(caldra::tests::sampleService);
    QTextStream(stdout) << server.host() << Qt::endl;
    return application.exec();
}
