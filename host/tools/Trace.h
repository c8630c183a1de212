/* The trace: each command that is run, told on standard error. */
#ifndef TRACE_H
#define TRACE_H

#include "CommandWatch.h"

/**
 * While it lives, each command is told as one line when it has ended:
 *
 *     nrmpio: status 0 after 12 ms: dmsetup table
 *
 * and one that the other watch kept from running as "not run". Control characters are written as
 * \n, \t, \r or \xNN.
 */
class Trace : public CommandWatch {
public:
    /** @param watch the one in force, which goes on deciding; it outlives this object. */
    explicit Trace(CommandWatch& watch);
    ~Trace() override;
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    std::optional<CommandAnswer> before(const char* command) override;
    void after(const char* command, int status) override;

private:
    CommandWatch& watch_;
};

#endif
