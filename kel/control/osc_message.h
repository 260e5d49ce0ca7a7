#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace kel {

// Open Sound Control 1.0, as button boxes and fader tablets send it over UDP.

struct OscColour {
    std::uint32_t rgba = 0;  // red in the highest byte
};
using OscArgument = std::variant<double, bool, std::string, OscColour>;  // any number as a double

struct OscMessage {
    std::string address;  // "/set/BrushWidth"
    std::vector<OscArgument> arguments;
};

// All messages of a packet, those of bundles among them, whatever their time: a bundle is for now. Throws Error for
// what is no packet of such messages.
[[nodiscard]] std::vector<OscMessage> ParseOscPacket(std::span<const std::byte> packet);

// The command that a message is: the parts of its address are the words, its arguments the next ones. Where the address
// alone is a command, as that of a button, a number says whether it was pressed or, being 0, let go. Empty: it was let
// go, and there is nothing to do.
[[nodiscard]] std::string ControlLineOf(const OscMessage& message);

// The packet of one message. Numbers are written as floats, which every sender and receiver knows.
[[nodiscard]] std::string OscPacketOf(const OscMessage& message);

}  // namespace kel
