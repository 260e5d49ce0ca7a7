#include "cli/run_program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/error.h"
#include "cli/interrupt_guard.h"
#include "cli/memory_end.h"

namespace cli {
namespace {

constexpr int exitBadInput = 2;
constexpr int exitFailure = 1;

// Messages quote files and names, which may hold anything; a message is one line all the same.
int Complain(const CLI::App& program, std::string message, int exitCode) {
    std::ranges::replace_if(
        message, [](unsigned char letter) { return letter < 0x20 || letter == 0x7F; }, ' ');
    std::fprintf(stderr, "%s: %s\n", program.get_name().c_str(), message.c_str());
    return exitCode;
}

int RunCommand(CLI::App& program, int argc, char** argv) {
    std::vector<std::string> words;
    try {
        program.set_version_flag("--version", program.get_name() + " " + CHALKPANE_VERSION, "Prints the version");
        words = CheckedWords(program, argc, argv);
        program.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::ExtrasError&) {
        return Complain(
            program,
            "command line: " + UnexpectedWords(program, words) + " (" + program.get_name() + " --help tells more)",
            exitBadInput);
    } catch (const CLI::Success& success) {
        return program.exit(success);  // --help, --version
    } catch (const Interrupted& ended) {
        return Complain(program, ended.what(), ended.exitCode);
    } catch (const CLI::ParseError& error) {
        return Complain(
            program, std::string("command line: ") + error.what() + " (" + program.get_name() + " --help tells more)",
            exitBadInput);
    } catch (const Error& error) {
        return Complain(program, error.what(), exitBadInput);
    } catch (const std::bad_alloc&) {
        return ComplainOfMemory();
    } catch (const std::exception& error) {
        return Complain(program, error.what(), exitFailure);
    }
    return 0;
}

}  // namespace

int RunProgram(const ProgramDescription& description, int argc, char** argv) noexcept {
    std::signal(SIGXFSZ, SIG_IGN);  // a file at its limit is told like a full disk
    try {
        CLI::App program(description.purpose, description.name);
        program.require_subcommand(1);
        description.addCommands(program);
        return RunCommand(program, argc, argv);
    } catch (const std::bad_alloc&) {
        return ComplainOfMemory();
    } catch (...) {  // what the answer to another failure has thrown
        std::fprintf(stderr, "%s: failed, and failed to say why\n", description.name);
        return exitFailure;
    }
}

}  // namespace cli
