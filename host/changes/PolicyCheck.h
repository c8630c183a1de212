/* Whether a path policy stays as it was set. */
#ifndef POLICYCHECK_H
#define POLICYCHECK_H

#include "DeviceMapper.h"

/**
 * Looks on for some seconds, where the multipath daemon runs, which may restore what its
 * configuration asks for.
 *
 * @return Whether the map queues I/O without a path at some moment. @throw Failure
 */
bool queueingComesBack(const Mapping& map, int seconds);

#endif
