/* File descriptors that close themselves, and pipes made of them. */
#ifndef DESCRIPTOR_H
#define DESCRIPTOR_H

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

[[noreturn]] inline void throwErrno(int error, const char* what) {
    throw std::system_error(error, std::generic_category(), what);
}

/** Owns one descriptor; -1 for none. */
class Descriptor {
public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor() { reset(); }

    int get() const { return fd_; }
    bool open() const { return fd_ >= 0; }
    void reset() {
        if (fd_ >= 0)
            close(fd_);
        fd_ = -1;
    }

private:
    int fd_;
};

/** A pipe whose ends close on exec and stand clear of the descriptors that a child is given. */
struct Pipe {
    Descriptor readEnd, writeEnd;

    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throwErrno(errno, "cannot create a pipe");
        readEnd = Descriptor(ends[0]);
        writeEnd = Descriptor(ends[1]);
        lift(readEnd);
        lift(writeEnd);
    }

private:
    /** In a caller whose standard descriptors are closed, new ones would take their numbers. */
    static void lift(Descriptor& end) {
        constexpr int FirstFree = 5;
        if (end.get() >= FirstFree)
            return;
        Descriptor lifted(fcntl(end.get(), F_DUPFD_CLOEXEC, FirstFree));
        if (!lifted.open())
            throwErrno(errno, "cannot create a pipe");
        end = std::move(lifted);
    }
};

#endif
