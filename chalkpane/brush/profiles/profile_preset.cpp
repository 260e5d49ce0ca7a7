#include "chalkpane/brush/profiles/profile_preset.h"

namespace chalkpane {

std::vector<ProfilePreset>& ProfilePresets() {
    static std::vector<ProfilePreset> presets;
    return presets;
}

}  // namespace chalkpane
