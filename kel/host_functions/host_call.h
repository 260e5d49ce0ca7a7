#pragma once

#include <cstdint>
#include <string>

#include "kel/scene/host_state.h"

namespace kel {

// One call of a host function by a module: what every such function begins with.
//
// Finds the host at work on this thread, and refuses the call where there is none, on another thread than the render
// thread, and in a callback that the function is not meant for. Each refusal is reported; the function then answers as
// it does for nothing and changes nothing.
class HostCall {
public:
    // allowed: callbacks, or-ed
    HostCall(const char* function, std::uint32_t allowed);

    explicit operator bool() const { return m_state != nullptr; }
    [[nodiscard]] HostState& State() const { return *m_state; }

    void Report(WrongUse kind, const std::string& what) const;

    // The object of this id and kind; null, and reported, when there is none.
    template <typename T>
    [[nodiscard]] T* Find(ObjectId id) const {
        T* object = m_state->objects.Find<T>(id);
        if (object == nullptr)
            Report(WrongUse::UnknownId, "there is no " + std::string(T::kind) + " " + std::to_string(id));
        return object;
    }
    // True when the place exists; otherwise reported.
    template <typename T>
    [[nodiscard]] bool HasPlace(const T* place) const {
        if (place == nullptr) Report(WrongUse::NullPointer, "a pointer is null");
        return place != nullptr;
    }
    template <typename T>
    void Answer(T* place, T value) const {
        if (HasPlace(place)) *place = value;
    }
    // True when the unit exists; otherwise reported.
    [[nodiscard]] bool HasUnit(std::int32_t unit) const;

private:
    const char* m_function;
    HostState* m_state = nullptr;
};

constexpr std::uint32_t Bit(Callback callback) { return static_cast<std::uint32_t>(callback); }

constexpr std::uint32_t inRegistration = Bit(Callback::InitEx);
constexpr std::uint32_t inInstance = 2U * Bit(Callback::PostRender) - 2U;  // every callback that has an instance
constexpr std::uint32_t inRender = Bit(Callback::PreRender) | Bit(Callback::PostRender);

}  // namespace kel
