#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kel/workspace/keys_table.h"

namespace kel {

// The table of keys as it fits the chosen plug-in's module.
struct FittedKeys {
    struct Key {
        KeyChord chord;
        std::string about;
        std::optional<WorkspaceAction> action;  // of the workspace
        std::optional<ModuleKey> module;        // of the module; neither: the module has nothing of the kind
    };
    std::vector<Key> keys;

    // Null: no key.
    [[nodiscard]] const Key* Find(const KeyChord& chord) const;
    // The chord that does this, as ChordText writes it; empty: none.
    [[nodiscard]] std::string ChordOf(WorkspaceAction action) const;
    [[nodiscard]] std::string ChordOfButton(const std::string& button) const;
};

// WhatFits: keys for what the module does not have do nothing. All: they are errors, thrown as by FitKey.
enum class KeyFit { WhatFits, All };
// registration: null when the scene has no plug-in.
[[nodiscard]] FittedKeys FitKeys(const KeysTable& table, const Registration* registration, KeyFit fit);

}  // namespace kel
