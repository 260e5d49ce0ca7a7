#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace cli {

// The files that a command reads and writes, each told before any of them is opened, so that no output ever destroys an
// input or another output. Two names are one file when they lead to the same place, by whatever links.
class FileClaims {
public:
    // Throws Error when the file is an output.
    void Read(const std::filesystem::path& file);
    // Throws Error when the file is an input or another output.
    void Write(const std::filesystem::path& file);
    // The same, but for the one input that the output may take the place of once it has been read.
    void WriteOnto(const std::filesystem::path& file, const std::filesystem::path& input);

private:
    enum class Use : std::uint8_t { Input, Output };
    struct Claim {
        std::filesystem::path file;
        Use use;
    };

    void Enter(const std::string& identity, const std::filesystem::path& file);

    std::map<std::string, Claim> m_claims;  // by the file's identity
};

}  // namespace cli
