/* What there is to say before and after a removal. */
#ifndef TEARDOWN_H
#define TEARDOWN_H

#include <string>
#include <vector>

#include "Target.h"

/** What somebody who is asked should know: what else goes, and who holds what is to go. */
std::vector<std::string> warnings(const Target& target, bool wholeMap);

/**
 * Looks again after a failed removal: what is still there, what state it is in, who holds it, and
 * what to do next.
 */
std::vector<std::string> remains(const Target& before, bool wholeMap);

#endif
