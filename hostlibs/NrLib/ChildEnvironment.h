/* The environment that commands run in. */
#ifndef CHILDENVIRONMENT_H
#define CHILDENVIRONMENT_H

#include <string>
#include <vector>

/**
 * The caller's environment with LC_ALL=C, so that the tools' messages are the same everywhere, and
 * with a PATH on which the administration tools are found.
 */
class ChildEnvironment {
public:
    ChildEnvironment();
    ChildEnvironment(const ChildEnvironment&) = delete;
    ChildEnvironment& operator=(const ChildEnvironment&) = delete;

    /** As execve takes it; valid as long as this object and the caller's environment. */
    char* const* get() const { return entries_.data(); }

private:
    std::string path_;
    std::string locale_ = "LC_ALL=C";
    std::vector<char*> entries_;
};

#endif
