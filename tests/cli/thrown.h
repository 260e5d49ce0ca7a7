#pragma once

#include <string>

#include "cli/error.h"

namespace cli::testing {

// What the call's Error says; "nothing" when it throws none.
template <typename Call>
std::string Thrown(Call call) {
    try {
        call();
    } catch (const Error& error) {
        return error.what();
    }
    return "nothing";
}

}  // namespace cli::testing
