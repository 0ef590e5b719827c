#pragma once

namespace zorel::app::shell {

/// The program with its window: runs until it has quit; the result is the process's status.
int runApplication(int argc, char **argv);

} // namespace zorel::app::shell
