/* A host's eye on the commands that the runner is asked for. */
#ifndef COMMANDWATCH_H
#define COMMANDWATCH_H

#include <optional>
#include <string>

/** How a command ended, or what stands for that. */
struct CommandAnswer {
    int status = 0; /**< As NrProcess::system returns it. */
    std::string out, err;
};

/**
 * Sees every command before it is started and after it has ended, on the thread that asked for it;
 * calls from several threads overlap. What an operation throws is dropped: a command whose before()
 * threw is not run, and fails.
 */
class __attribute__((visibility("default"))) CommandWatch {
public:
    virtual ~CommandWatch();

    /** @return Nothing to have the command run; otherwise the answer that stands for running it. */
    virtual std::optional<CommandAnswer> before(const char* command) = 0;

    /**
     * @param status of a command that was run, or that could not be started; of one that before()
     * answered nothing is told.
     */
    virtual void after(const char* command, int status) = 0;
};

#endif
