/* The gate that every command line passes before a shell reads it. */
#ifndef COMMANDGATE_H
#define COMMANDGATE_H

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "CommandWatch.h"
#include "Interruption.h"
#include "ToolCommand.h"

/** Is told of the commands that pass, on the thread that asked for them. */
class CommandListener {
public:
    virtual ~CommandListener();
    virtual void starting(const ToolCommand& command) = 0;
    virtual void ended(const ToolCommand& command, int status) = 0;
};

/** A command that changes something and came to the gate. */
struct Change {
    std::string line; ///< As the shell got it, without a line end.
    ToolCommand command;
    std::optional<int> status; ///< None while it runs, and of one that was only noted.
};

/**
 * While it lives, the only commands that run are those whose form ToolCommand.h knows, and nothing
 * is removed or flushed without a permission. After a refusal nothing more runs for the same call. In a
 * rehearsal those that change something are noted instead, and count as done. There is one gate at
 * a time, made before the process has a second thread; it also takes care of an interruption.
 */
class CommandGate : public CommandWatch {
public:
    enum class Mode { run, rehearse };

    explicit CommandGate(Mode mode);
    ~CommandGate() override;
    CommandGate(const CommandGate&) = delete;
    CommandGate& operator=(const CommandGate&) = delete;

    static CommandGate& current();

    std::optional<CommandAnswer> before(const char* line) override;
    void after(const char* line, int status) override;

    bool rehearses() const { return mode_ == Mode::rehearse; }
    /** What changed something so far, or would have. */
    std::vector<Change> changes() const;
    /** How many commands have passed and not ended yet. */
    int running() const { return running_; }
    /** Whoever comes from now on, on either side of a command, waits there for the end of the process. */
    void close() { closed_ = true; }
    /** From now on only the devices with these names may be removed or flushed; at first none may. */
    void permitRemoval(std::vector<std::string> names);
    /** @param listener null for none; it lives until it is replaced. */
    void setListener(CommandListener* listener) { listener_ = listener; }

    // Of the calling thread:

    /** How many commands have come to a gate. */
    static unsigned seen();
    static void forgetRefusals();
    /** @throw Failure when a command was refused since they were forgotten, and forgets it; it names what
     * stands in the way. */
    static void requireNoRefusal();

private:
    std::optional<CommandAnswer> decide(const char* line);
    /** Empty for a command that may run. */
    std::string objection(const std::optional<ToolCommand>& command, const char* line) const;
    void noteStatus(const std::string& line, int status);
    void holdBackIfClosed();

    const Mode mode_;
    std::atomic<bool> closed_{false};
    std::atomic<int> running_{0};
    std::atomic<CommandListener*> listener_{nullptr};
    mutable std::mutex mutex_;
    std::vector<Change> changes_;
    std::vector<std::string> removable_;
    Interruption interruption_{*this};
};

#endif
