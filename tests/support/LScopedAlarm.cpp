#include "tests/support/LScopedAlarm.h"

#include <sys/time.h>

namespace {

void Ring(suseconds_t everyUs) {
    const itimerval timer{{0, everyUs}, {0, everyUs}};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

LScopedAlarm::LScopedAlarm() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &action, &old_);
    Ring(3000);
}

LScopedAlarm::~LScopedAlarm() {
    Ring(0);
    ::sigaction(SIGALRM, &old_, nullptr);
}
