#include "kel/control/osc_message.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "kel/control/control_command.h"
#include "kel/control/control_words.h"

namespace kel {
namespace {

constexpr int deepestBundle = 8;
constexpr std::size_t mostMessages = 256;
constexpr std::size_t alignment = 4;  // bytes, of everything in a packet

// Takes one thing after the other from the bytes.
class OscReader {
public:
    explicit OscReader(std::span<const std::byte> bytes) : m_bytes(bytes) {}

    [[nodiscard]] bool IsAtEnd() const { return m_bytes.empty(); }

    std::uint32_t Word() {
        std::uint32_t word = 0;
        for (const std::byte byte : Take(alignment)) word = word << 8U | std::to_integer<std::uint32_t>(byte);
        return word;
    }
    std::uint64_t LongWord() {
        const std::uint64_t high = Word();
        return high << 32U | Word();
    }
    // Up to its zero, which is there, and the zeros that fill it up.
    std::string Text() {
        const auto zero = std::ranges::find(m_bytes, std::byte{0});
        if (zero == m_bytes.end()) throw cli::Error("a text does not end");
        const auto length = static_cast<std::size_t>(zero - m_bytes.begin());
        const auto bytes = Take(length / alignment * alignment + alignment);
        return {reinterpret_cast<const char*>(bytes.data()), length};
    }
    std::span<const std::byte> Take(std::size_t count) {
        if (count > m_bytes.size()) throw cli::Error("the packet ends too early");
        const auto taken = m_bytes.first(count);
        m_bytes = m_bytes.subspan(count);
        return taken;
    }

private:
    std::span<const std::byte> m_bytes;
};

OscArgument ReadArgument(OscReader& reader, char type) {
    switch (type) {
        case 'i':
            return static_cast<double>(static_cast<std::int32_t>(reader.Word()));
        case 'h':
            return static_cast<double>(static_cast<std::int64_t>(reader.LongWord()));
        case 'f':
            return static_cast<double>(std::bit_cast<float>(reader.Word()));
        case 'd':
            return std::bit_cast<double>(reader.LongWord());
        case 's':
        case 'S':
            return reader.Text();
        case 'r':
            return OscColour{reader.Word()};
        case 'T':
            return true;
        case 'F':
            return false;
        default:
            throw cli::Error("arguments of type " + cli::Quoted(std::string(1, type)) + " are not known");
    }
}

OscMessage ReadMessage(OscReader reader) {
    OscMessage message;
    message.address = reader.Text();
    if (!message.address.starts_with('/')) throw cli::Error("an address begins with a stroke");
    if (reader.IsAtEnd()) return message;  // as old senders leave out the types of no arguments
    const std::string types = reader.Text();
    if (!types.starts_with(',')) throw cli::Error("the types of the arguments are missing");
    for (const char type : std::string_view(types).substr(1)) message.arguments.push_back(ReadArgument(reader, type));
    return message;
}

void ReadPacket(std::span<const std::byte> packet, int depth, std::vector<OscMessage>& messages) {
    constexpr std::size_t headLength = 16;  // "#bundle", its zero, and a time
    if (packet.empty() || packet.front() != std::byte{'#'}) {
        if (messages.size() == mostMessages) throw cli::Error("the packet has too many messages");
        messages.push_back(ReadMessage(OscReader(packet)));
        return;
    }
    OscReader reader(packet);
    const auto head = reader.Take(headLength);
    constexpr std::string_view name("#bundle\0", 8);
    if (!std::ranges::equal(head.first(name.size()), name, {}, [](std::byte byte) { return static_cast<char>(byte); }))
        throw cli::Error("the packet is neither a message nor a bundle");
    if (depth == deepestBundle) throw cli::Error("bundles are nested too deep");
    while (!reader.IsAtEnd()) ReadPacket(reader.Take(reader.Word()), depth + 1, messages);
}

std::string NumberText(double number) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), static_cast<std::size_t>(end - text.data())};
}

std::string ArgumentText(const OscArgument& argument) {
    if (const auto* number = std::get_if<double>(&argument)) return NumberText(*number);
    if (const auto* truth = std::get_if<bool>(&argument)) return *truth ? "true" : "false";
    if (const auto* text = std::get_if<std::string>(&argument)) return ControlWordText(*text);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "#%08x", std::get<OscColour>(argument).rgba);
    return text.data();
}

std::string WrittenWord(std::uint32_t word) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes += static_cast<char>(word >> shift & 255U);
    return bytes;
}

// With its zero, filled up with others.
std::string WrittenText(const std::string& text) {
    return text + std::string(alignment - text.size() % alignment, '\0');
}

// Puts the argument's letter and bytes behind the others.
void WriteArgument(const OscArgument& argument, std::string& types, std::string& bytes) {
    if (const auto* number = std::get_if<double>(&argument)) {
        types += 'f';
        bytes += WrittenWord(std::bit_cast<std::uint32_t>(static_cast<float>(*number)));
    } else if (const auto* truth = std::get_if<bool>(&argument)) {
        types += *truth ? 'T' : 'F';
    } else if (const auto* text = std::get_if<std::string>(&argument)) {
        types += 's';
        bytes += WrittenText(*text);
    } else {
        types += 'r';
        bytes += WrittenWord(std::get<OscColour>(argument).rgba);
    }
}

bool IsCommand(const std::string& line) {
    try {
        (void)ParseControlCommand(line);
        return true;
    } catch (const cli::Error&) {
        return false;
    }
}

// Nothing: it is neither a number nor true or false.
std::optional<bool> IsPressed(const OscArgument& argument) {
    if (const auto* number = std::get_if<double>(&argument)) return *number != 0;
    if (const auto* truth = std::get_if<bool>(&argument)) return *truth;
    return std::nullopt;
}

}  // namespace

std::vector<OscMessage> ParseOscPacket(std::span<const std::byte> packet) {
    std::vector<OscMessage> messages;
    ReadPacket(packet, 0, messages);
    return messages;
}

std::string OscPacketOf(const OscMessage& message) {
    std::string types = ",";
    std::string bytes;
    for (const OscArgument& argument : message.arguments) WriteArgument(argument, types, bytes);
    return WrittenText(message.address) + WrittenText(types) + bytes;
}

std::string ControlLineOf(const OscMessage& message) {
    std::string line;
    std::string_view rest = message.address;
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::size_t length = std::min(rest.find('/'), rest.size());
        if (length > 0) line += (line.empty() ? "" : " ") + ControlWordText(rest.substr(0, length));
        rest.remove_prefix(length);
    }
    if (message.arguments.size() == 1 && IsCommand(line))
        if (const auto isPressed = IsPressed(message.arguments[0])) return *isPressed ? line : std::string();
    for (const OscArgument& argument : message.arguments) line += ' ' + ArgumentText(argument);
    return line;
}

}  // namespace kel
