#include "terminal/TrainCommand.h"

int main(int argc, char **argv)
{
    return zorel::terminal::runTrainCommand(argc, argv);
}
