#include "kel/workspace/picture_saver.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace kel {
namespace {

namespace fs = std::filesystem;

std::string SaveNow(const picture_io::Picture& picture, const fs::path& file) {
    try {
        picture_io::WritePicture(picture, file);
        return "Saved " + file.string();
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

std::string Numbered(const std::string& name, int number) {
    std::array<char, 16> ending{};
    std::snprintf(ending.data(), ending.size(), "-%03d.png", number);
    return name + ending.data();
}

}  // namespace

void PictureSaver::Save(picture_io::Picture picture, const std::string& name) {
    std::error_code failure;
    int number = 1;
    fs::path file;
    do {
        file = m_folder / Numbered(name, number++);
    } while (fs::exists(file, failure) || std::ranges::find(m_taken, file) != m_taken.end());
    m_taken.push_back(file);
    m_running.push_back(
        std::async(std::launch::async, [picture = std::move(picture), file] { return SaveNow(picture, file); }));
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
