#pragma once

#include <filesystem>
#include <functional>
#include <future>
#include <string>
#include <vector>

#include "picture_io/picture.h"

namespace kel {

// Writes pictures on threads of their own, so that no field waits for them.
class PictureSaver {
public:
    // folder: where they go. It need not exist before the first one is saved.
    explicit PictureSaver(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    // Saves under "NAME-001.png", or the next number that is free. Returns at once.
    void Save(picture_io::Picture picture, const std::string& name);

    // Other files are saved likewise: the next name that is free, "NAME-001ENDING", and what writes it and says what
    // was written. It may throw Error.
    [[nodiscard]] std::filesystem::path FreeName(const std::string& name, const std::string& ending);
    void Run(std::function<std::string()> save);

    // What became of those that are written by now, a line for each.
    [[nodiscard]] std::vector<std::string> TakeNews();

private:
    std::filesystem::path m_folder;
    std::vector<std::filesystem::path> m_taken;
    std::vector<std::future<std::string>> m_running;  // each waits for its end when it goes
};

}  // namespace kel
