#pragma once

#include <memory>
#include <string>

#include "kel/live/live_source.h"
#include "kel/workspace/picture_area.h"

namespace kel {

// Live pictures that the operator named in the window, until the first of them is there. What is open stays so
// meanwhile.
class LiveOpening {
public:
    // Instead of what was waited for before. Throws Error for a name that nothing can be opened by.
    void Begin(const std::string& name, const PacketRing::Limits& replay);
    void Stop() { m_live.reset(); }
    [[nodiscard]] bool IsWaiting() const { return m_live != nullptr; }

    // Says what is waited for, in the middle of the picture.
    void Show(const PictureArea& area) const;
    // With the first picture there, once; null: it is not yet. Throws Error when it never will be, and waits no longer.
    [[nodiscard]] std::shared_ptr<LiveSource> Take();

private:
    std::shared_ptr<LiveSource> m_live;
};

}  // namespace kel
