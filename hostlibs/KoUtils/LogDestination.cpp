#include "LogDestination.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <mutex>

#include "Log.h"
#include "SignalShield.h"

namespace {

enum class Kind { StandardError, File, Syslog };

/** What is in force. Guarded by mutex; never destroyed, since threads may outlive main. */
struct Destination {
    std::mutex mutex;
    Kind kind = Kind::StandardError;
    std::string path;       ///< of the file, absolute
    int fd = STDERR_FILENO; ///< of standard error or of the file
    bool torn = false;      ///< the last record was cut short: its line has no end yet
    std::string syslogName; ///< syslog(3) keeps a pointer to it
};

Destination& destination() {
    static auto* const one = new Destination;
    return *one;
}

/** Opens for appending, clear of the standard descriptors. A FIFO that nobody reads is an error. */
int openForAppending(const std::string& path) {
    const int fd =
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0640);
    if (fd < 0 || fd > STDERR_FILENO)
        return fd;
    const int lifted = fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(fd);
    errno = error;
    return lifted;
}

void use(Destination& to, Kind kind, int fd) {
    if (to.kind == Kind::File)
        close(to.fd);
    to.kind = kind;
    to.fd = fd;
    to.torn = false;
}

/** Whether the path has come to name another file than the open one, or none. */
bool rotated(const Destination& to) {
    struct stat named, opened;
    return stat(to.path.c_str(), &named) != 0 || fstat(to.fd, &opened) != 0 ||
           named.st_dev != opened.st_dev || named.st_ino != opened.st_ino;
}

std::string now() {
    timespec time;
    clock_gettime(CLOCK_REALTIME, &time);
    tm utc;
    gmtime_r(&time.tv_sec, &utc);
    char text[64];
    const size_t length = strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    snprintf(text + length, sizeof text - length, ".%03ldZ", time.tv_nsec / 1000000);
    return text;
}

/**
 * One write, so that lines of several processes stay whole; more only where one is cut short.
 *
 * @return How many bytes were written.
 */
size_t writeWhole(int fd, const std::string& line) {
    size_t done = 0;
    while (done < line.size()) {
        const ssize_t count = write(fd, line.data() + done, line.size() - done);
        if (count > 0)
            done += static_cast<size_t>(count);
        else if (count == 0 || errno != EINTR)
            break;
    }
    return done;
}

void writeLine(Destination& to, const std::string& text) {
    if (to.kind == Kind::File && rotated(to)) {
        const int fd = openForAppending(to.path);
        if (fd >= 0)
            use(to, Kind::File, fd);
    }
    const std::string line = (to.torn ? "\n" : "") + text + "\n";
    const SignalShield shield;
    if (const size_t written = writeWhole(to.fd, line))
        to.torn = written < line.size();
}

} // namespace

void writeRecord(const std::string& tag, const std::string& text) noexcept {
    try {
        const std::string thread = "[" + std::to_string(gettid()) + "] ";
        Destination& to = destination();
        const std::lock_guard lock(to.mutex);
        if (to.kind == Kind::Syslog)
            syslog(LOG_DAEMON | LOG_INFO, "%s%s: %s", thread.c_str(), tag.c_str(), text.c_str());
        else
            writeLine(to, now() + " " + thread + tag + ": " + text);
    } catch (...) { // the record is lost
    }
}

void Log::toStandardError() {
    Destination& to = destination();
    const std::lock_guard lock(to.mutex);
    use(to, Kind::StandardError, STDERR_FILENO);
}

int Log::toFile(const std::string& path) {
    std::string absolute = path;
    if (!path.empty() && path.front() != '/') {
        char directory[PATH_MAX];
        if (!getcwd(directory, sizeof directory))
            return errno;
        absolute = std::string(directory) + "/" + path;
    }
    const int fd = openForAppending(absolute);
    if (fd < 0)
        return errno;
    Destination& to = destination();
    const std::lock_guard lock(to.mutex);
    use(to, Kind::File, fd);
    to.path = std::move(absolute);
    return 0;
}

void Log::toSyslog(const std::string& name) {
    Destination& to = destination();
    const std::lock_guard lock(to.mutex);
    use(to, Kind::Syslog, -1);
    closelog();
    to.syslogName = name;
    openlog(to.syslogName.empty() ? nullptr : to.syslogName.c_str(), LOG_PID, LOG_DAEMON);
}
