#include "application.h"

#include <csignal>

/// genutil: the library from the command line. A host like any other: it creates components by
/// their class identifiers and calls them through their interfaces.
int main(int argc, char** argv) {
    using namespace generalutilities::cli;

    // A reader that went away and a file that grew too large are failed writes with words and an
    // exit code of ours, not a silent end by a signal.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    Console console;
    return static_cast<int>(RunApplication(argc, argv, console));
}
