#include "CLogWriterInterface.h"

#include <algorithm>
#include <atomic>

#include "Log.h"

CLogWriterInterface::~CLogWriterInterface() = default;

namespace {

std::atomic<int> defaultLevel{Log::DefaultLevel};

class DefaultLogWriter : public CLogWriterInterface {
public:
    int getDebugLevel() override { return defaultLevel; }
};

} // namespace

// Made before any other static object of this library; the libraries that link it come later still.
__attribute__((init_priority(101))) boost::shared_ptr<CLogWriterInterface>
    g_ptrLogWriter(new DefaultLogWriter);

void Log::setLevel(int level) {
    defaultLevel = std::clamp(level, 0, HighestLevel);
}
