#pragma once

namespace tests {

// The checks of addresses keep what is given back for a while, so that what a program takes is theirs.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool hasAddressChecks = true;
#elif defined(__has_feature)
inline constexpr bool hasAddressChecks = __has_feature(address_sanitizer);
#else
inline constexpr bool hasAddressChecks = false;
#endif

}  // namespace tests
