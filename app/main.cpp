#include "app/shell/Application.h"

int main(int argc, char **argv)
{
    return zorel::app::shell::runApplication(argc, argv);
}
