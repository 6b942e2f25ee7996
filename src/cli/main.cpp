#include "cli/Program.h"
#include "cli/output/Console.h"
#include "cli/output/ErrorStream.h"
#include "foundation/text/Clock.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A descriptor that is closed would be given to the next file that is opened, the settings for example, and
// output would go there. What is opened instead refuses to be written.
bool OpenStandardStreams() {
    for (const int wanted : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(wanted, F_GETFD) < 0 &&
            open("/dev/null", wanted == STDIN_FILENO ? O_WRONLY : O_RDONLY) != wanted)
            return false;
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (!OpenStandardStreams())
        return EXIT_FAILURE;
    // Writing to a pipe that nobody reads, or beyond the limit of a file's size, is to fail like any other
    // writing.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    // Settings hold a password, logs what was heard: whatever the program makes is for its owner alone.
    umask(S_IRWXG | S_IRWXO);
    // What it prints is the same everywhere; of the user's locale nothing is wanted.
    setenv("LC_ALL", "C.UTF-8", 1);

    Console console(STDOUT_FILENO, STDERR_FILENO);
    const ErrorStream errors(console);
    const QCoreApplication application(argc, argv);
    const Clock clock;
    return RunProgram(QCoreApplication::arguments().sliced(1), QCoreApplication::applicationDirPath(),
                      console, clock);
}
