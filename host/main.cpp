#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>

#include "host/commands/commands.h"
#include "host/error.h"

namespace {

constexpr int exitBadInput = 2;
constexpr int exitFailure = 1;

// Messages quote files and names, which may hold anything; a message is one line all the same.
int Complain(std::string message, int exitCode) {
    std::ranges::replace_if(
        message, [](unsigned char letter) { return letter < 0x20 || letter == 0x7F; }, ' ');
    std::fprintf(stderr, "kel: %s\n", message.c_str());
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        CLI::App program("A small renderer for telestrator modules", "kel");
        program.require_subcommand(1);
        kel::AddInfoCommand(program);
        kel::AddPlayCommand(program);
        try {
            program.parse(argc, argv);
        } catch (const CLI::Success& success) {
            return program.exit(success);  // --help
        } catch (const CLI::RuntimeError& ended) {
            return Complain(ended.what(), ended.get_exit_code());
        } catch (const CLI::ParseError& error) {
            return Complain(std::string("command line: ") + error.what() + " (kel --help tells more)", exitBadInput);
        }
    } catch (const kel::Error& error) {
        return Complain(error.what(), exitBadInput);
    } catch (const std::exception& error) {
        return Complain(error.what(), exitFailure);
    }
    return 0;
}
