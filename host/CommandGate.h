/* The gate that every command line passes before a shell reads it. */
#ifndef COMMANDGATE_H
#define COMMANDGATE_H

#include <atomic>
#include <string>
#include <vector>

#include "CommandWatch.h"

/**
 * While it lives, the only commands that run are those whose form ToolCommand.h knows. In a
 * rehearsal those that change something are noted instead, and count as done.
 */
class CommandGate : public CommandWatch {
public:
    enum class Mode { run, rehearse };

    explicit CommandGate(Mode mode);
    ~CommandGate() override;
    CommandGate(const CommandGate&) = delete;
    CommandGate& operator=(const CommandGate&) = delete;

    std::optional<CommandAnswer> before(const char* command) override;
    void after(const char* command, int status) override;

private:
    const Mode mode_;
};

#endif
