#ifndef CHILD_H
#define CHILD_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

/// A child process of a test. It dies with the test, whatever happens to that, and is ended and
/// awaited when the object goes.
class Child {
public:
    /// Runs a function in a copy of this process, which ends when the function returns.
    explicit Child(const std::function<void()>& function);

    Child(Child&& other) noexcept;
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child();

    pid_t Id() const { return id; }

    /// Waits until it has ended, for up to so many milliseconds. False when it has not; else
    /// `status` is as from waitpid.
    bool Wait(int milliseconds, int& status);

private:
    pid_t id;
};

#endif
