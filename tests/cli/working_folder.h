#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

#include "picture_io/picture.h"
#include "tests/cli/temporary_folder.h"

namespace cli::testing {

// How a program ended.
struct Ended {
    int exitCode = -1;
    std::string output;
    std::string complaint;  // on standard error
};

// A folder of files, and a program that is run there as an operator runs it.
class WorkingFolder {
public:
    // environment: variables that the program is to see, such as "LANG=C"
    explicit WorkingFolder(std::string program, std::string environment = "")
        : m_program(std::move(program)), m_environment(std::move(environment)) {}

    void Write(const std::string& name, const std::string& text) const { WriteText(m_folder / name, text); }

    // arguments: as the shell reads them
    [[nodiscard]] Ended Run(const std::string& arguments) const { return Run(arguments, m_program); }
    // before: what the shell does first, such as "ulimit -f 8 &&"
    [[nodiscard]] Ended Run(const std::string& arguments, const std::string& program,
                            const std::string& before = "") const {
        const TemporaryFolder results;
        const std::string command = "cd '" + m_folder.Path().string() + "' && " + before + " " + m_environment + " '" +
                                    program + "' " + arguments + " >'" + (results / "out").string() + "' 2>'" +
                                    (results / "err").string() + "'";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(results / "out"), ReadText(results / "err")};
    }

    [[nodiscard]] bool Has(const std::string& name) const { return std::filesystem::exists(m_folder / name); }
    [[nodiscard]] picture_io::Picture Open(const std::string& name) const {
        return picture_io::ReadPicture(m_folder / name);
    }
    [[nodiscard]] std::ptrdiff_t Entries() const { return m_folder.Entries(); }
    [[nodiscard]] std::string Path(const std::string& name) const { return (m_folder / name).string(); }

private:
    std::string m_program;
    std::string m_environment;
    TemporaryFolder m_folder;
};

}  // namespace cli::testing
