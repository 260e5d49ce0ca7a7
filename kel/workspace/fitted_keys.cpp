#include "kel/workspace/fitted_keys.h"

#include <algorithm>

#include "cli/error.h"

namespace kel {

const FittedKeys::Key* FittedKeys::Find(const KeyChord& chord) const {
    const auto found = std::ranges::find(keys, chord, &Key::chord);
    return found == keys.end() ? nullptr : &*found;
}

std::string FittedKeys::ChordOf(WorkspaceAction action) const {
    const auto found = std::ranges::find(keys, std::optional(action), &Key::action);
    return found == keys.end() ? std::string() : ChordText(found->chord);
}

std::string FittedKeys::ChordOfButton(const std::string& button) const {
    const auto found = std::ranges::find_if(keys, [&](const Key& key) {
        return key.module && key.module->kind == ModuleKey::Kind::Button && key.module->button == button;
    });
    return found == keys.end() ? std::string() : ChordText(found->chord);
}

FittedKeys FitKeys(const KeysTable& table, const Registration* registration, KeyFit fit) {
    FittedKeys fitted;
    for (const KeyBinding& binding : table.keys) {
        FittedKeys::Key& key = fitted.keys.emplace_back();
        key.chord = binding.chord;
        key.about = binding.about;
        if (const auto* action = std::get_if<WorkspaceAction>(&binding.what)) key.action = *action;
        if (key.action || registration == nullptr) continue;
        try {
            key.module = FitKey(table, binding, *registration);
        } catch (const cli::Error&) {
            if (fit == KeyFit::All) throw;
        }
    }
    return fitted;
}

}  // namespace kel
