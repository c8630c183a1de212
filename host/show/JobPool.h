/* Work on many things at the same time. */
#ifndef JOBPOOL_H
#define JOBPOOL_H

#include <cstddef>
#include <functional>

/**
 * Calls work(0) to work(count - 1), each once and begun in this order, at most `jobs` of them at the
 * same time, and returns when all have ended. With one job, or where no thread can be made, the
 * calling thread does everything.
 *
 * @throw What the work with the lowest number threw, of those that did; nothing new is begun then.
 */
void parallelFor(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work);

#endif
