#pragma once

#include <csignal>

namespace generalutilities::cli {

/// While it lives, SIGINT, SIGTERM and SIGHUP wait for the work to reach a place where it can stop:
/// the work asks by `ThrowIfCalled`, what it has begun is undone on the way out, and then the
/// signal ends the program after all. One object at a time.
class Interruption {
  public:
    Interruption();
    /// Puts the earlier handling back and raises the signal that came meanwhile.
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Throws a `Failure` when a signal has come.
    void ThrowIfCalled() const;

  private:
    static constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP};
    struct sigaction earlier[3];
};

}  // namespace generalutilities::cli
