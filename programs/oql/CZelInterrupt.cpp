#include "programs/oql/CZelInterrupt.h"

#include <csignal>

namespace {

volatile std::sig_atomic_t raised = 0;

void onSignal(int /*number*/) {
    raised = 1;
}

}  // namespace

void CZelInterrupt::Install() {
    struct sigaction action = {};
    action.sa_handler = onSignal;  // without SA_RESTART, so that a read returns
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

bool CZelInterrupt::Raised() {
    return raised != 0;
}

void CZelInterrupt::Clear() {
    raised = 0;
}
