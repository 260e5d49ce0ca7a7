#include "kel/workspace/picture_saver.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace kel {
namespace {

namespace fs = std::filesystem;

std::string Numbered(const std::string& name, int number, const std::string& ending) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "-%03d", number);
    return name + digits.data() + ending;
}

}  // namespace

fs::path PictureSaver::FreeName(const std::string& name, const std::string& ending) {
    std::error_code failure;
    int number = 1;
    fs::path file;
    do {
        file = m_folder / Numbered(name, number++, ending);
    } while (fs::exists(file, failure) || std::ranges::find(m_taken, file) != m_taken.end());
    m_taken.push_back(file);
    return file;
}

void PictureSaver::Run(std::function<std::string()> save) {
    m_running.push_back(std::async(std::launch::async, [save = std::move(save)]() -> std::string {
        try {
            return save();
        } catch (const std::exception& failure) {
            return failure.what();
        }
    }));
}

void PictureSaver::Save(picture_io::Picture picture, const std::string& name) {
    Run([picture = std::move(picture), file = FreeName(name, ".png")] {
        picture_io::WritePicture(picture, file);
        return "Saved " + file.string();
    });
}

std::vector<std::string> PictureSaver::TakeNews() {
    std::vector<std::string> news;
    std::erase_if(m_running, [&](std::future<std::string>& saving) {
        if (saving.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return false;
        news.push_back(saving.get());
        return true;
    });
    return news;
}

}  // namespace kel
