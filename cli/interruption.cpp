#include "interruption.h"

#include "failure.h"

#include <iterator>

namespace generalutilities::cli {
namespace {

volatile std::sig_atomic_t caughtSignal = 0;

void Remember(int number) {
    caughtSignal = number;
}

}  // namespace

Interruption::Interruption() {
    caughtSignal = 0;
    struct sigaction action = {};
    action.sa_handler = &Remember;
    action.sa_flags = SA_RESTART;  // no system call of the work fails because of it
    for (std::size_t i = 0; i < std::size(Signals); ++i) {
        sigaction(Signals[i], nullptr, &earlier[i]);
        if (earlier[i].sa_handler != SIG_IGN) {  // such as SIGHUP under nohup
            sigaction(Signals[i], &action, nullptr);
        }
    }
}

Interruption::~Interruption() {
    for (std::size_t i = 0; i < std::size(Signals); ++i) {
        sigaction(Signals[i], &earlier[i], nullptr);
    }
    if (caughtSignal != 0) {
        std::raise(caughtSignal);
    }
}

void Interruption::ThrowIfCalled() const {
    if (caughtSignal != 0) {
        throw Failure("interrupted");
    }
}

}  // namespace generalutilities::cli
