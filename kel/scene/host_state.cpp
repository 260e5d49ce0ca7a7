#include "kel/scene/host_state.h"

#include <atomic>

namespace kel {
namespace {

thread_local HostState* current = nullptr;
std::atomic<int> hostsAtWork{0};

}  // namespace

HostState* HostState::Current() { return current; }

bool HostState::IsAnyAtWork() { return hostsAtWork.load() > 0; }

AtWork::AtWork(HostState& state) : m_before(current) {
    state.context.Use();
    current = &state;
    ++hostsAtWork;
}

AtWork::~AtWork() {
    --hostsAtWork;
    if (m_before != nullptr && current != nullptr) current = m_before;
}

HostState::~HostState() {
    if (current == this) current = nullptr;
}

}  // namespace kel
