/* How nrmpio ends, and what it tells before. */
#ifndef EXITSTATUS_H
#define EXITSTATUS_H

#include <stdexcept>

enum class ExitStatus {
    success = 0, ///< done, or yes
    no = 1,      ///< no; or the user's own no to a question, and nothing was changed
    failure = 2,
    usage = 64, ///< EX_USAGE of sysexits(3): nothing was run
};

/** What could not be done, as one sentence for the user. */
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** A command line that asks for nothing that nrmpio could do. */
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

#endif
