#include "kel/control/control_command.h"
#include "kel/control/osc_message.h"
#include "tests/fuzz/fuzz_input.h"

// A packet of Open Sound Control, and the commands that its messages are.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::TakeOrRefuse([&] {
        for (const kel::OscMessage& message : kel::ParseOscPacket(std::as_bytes(std::span(bytes, size))))
            fuzz::TakeOrRefuse([&] { (void)kel::ParseControlCommand(kel::ControlLineOf(message)); });
    });
    return 0;
}
