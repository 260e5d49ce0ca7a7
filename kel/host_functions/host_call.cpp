#include "kel/host_functions/host_call.h"

#include <mutex>

namespace kel {
namespace {

// Where a report goes that has no host, or that comes while the render thread may be writing one.
void ReportApart(const std::string& what) {
    static std::mutex mutex;
    static WrongUseLog log;
    const std::lock_guard lock(mutex);
    log.Report(WrongUse::WrongThread, what);
}

}  // namespace

HostCall::HostCall(const char* function, std::uint32_t allowed) : m_function(function) {
    HostState* state = HostState::Current();
    if (state == nullptr) {
        ReportApart(std::string(function) + (HostState::IsAnyAtWork()
                                                 ? ": called on another thread than the render thread"
                                                 : ": called without a host"));
        return;
    }
    m_state = state;
    if ((Bit(state->callback) & allowed) != 0) return;
    Report(WrongUse::OutOfPlace, allowed == inRegistration ? "called outside PLUGIN_INIT_EX"
                                 : allowed == inRender     ? "called outside the render callbacks"
                                                           : "called outside the callbacks of an instance");
    m_state = nullptr;
}

void HostCall::Report(WrongUse kind, const std::string& what) const {
    m_state->wrongUses.Report(kind, std::string(m_function) + ": " + what);
}

bool HostCall::HasUnit(std::int32_t unit) const {
    if (unit >= 0 && unit < textureUnits) return true;
    Report(WrongUse::BadUnit, "there is no texture unit " + std::to_string(unit));
    return false;
}

}  // namespace kel
