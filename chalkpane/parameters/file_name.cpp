#include "chalkpane/parameters/file_name.h"

#include <algorithm>

namespace chalkpane {

namespace {

constexpr std::string_view separators = "\\/";

std::string& baseDirectoryOfModule() {
    static auto& directory = *new std::string;  // never destroyed: values may be written while the module unloads
    return directory;
}

bool isSeparator(char c) { return separators.find(c) != std::string_view::npos; }

char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

void FileName::assign(std::string_view newName) {
    name = newName;
    std::replace(name.begin(), name.end(), '/', '\\');
}

const std::string& FileName::baseDirectory() { return baseDirectoryOfModule(); }

void FileName::setBaseDirectory(std::string_view directory) { baseDirectoryOfModule() = directory; }

SplitPath::SplitPath(std::string_view path) {
    if (path.size() >= 2 && path[1] == ':') {
        drive = path.substr(0, 2);
        path.remove_prefix(2);
    }
    const std::size_t lastSeparator = path.find_last_of(separators);
    const std::size_t nameStart = lastSeparator == std::string_view::npos ? 0 : lastSeparator + 1;
    directory = path.substr(0, nameStart);
    path.remove_prefix(nameStart);
    const std::size_t stop = std::min(path.rfind('.'), path.size());
    name = path.substr(0, stop);
    extension = path.substr(stop);
}

std::string normaliseDirectory(std::string_view directory, LeadingSeparators leading) {
    std::string result;
    result.reserve(directory.size());
    for (const char c : directory) {
        const bool repeats = isSeparator(c) && !result.empty() && result.back() == '\\';
        if (repeats && !(leading == LeadingSeparators::Keep && result.size() == 1)) continue;
        result += isSeparator(c) ? '\\' : c;
    }
    return result;
}

std::string FileName::relativeTo(std::string_view base) const {
    const SplitPath own(name);
    const SplitPath from(base);
    if (!std::ranges::equal(own.drive, from.drive, {}, toLower, toLower)) return name;
    const std::string ownDirectory = normaliseDirectory(own.directory, LeadingSeparators::Collapse);
    const std::string fromDirectory = normaliseDirectory(from.directory, LeadingSeparators::Collapse);

    std::size_t common = 0;  // just past the last separator that both have
    int matchedSeparators = 0;
    for (std::size_t i = 0; i < std::min(ownDirectory.size(), fromDirectory.size()); ++i) {
        if (toLower(ownDirectory[i]) != toLower(fromDirectory[i])) break;
        if (ownDirectory[i] != '\\') continue;
        common = i + 1;
        ++matchedSeparators;
    }
    if (matchedSeparators < 2) return name;  // only the root: a relative form would say no less

    std::string result;
    for (std::size_t i = common; i < fromDirectory.size(); ++i)
        if (fromDirectory[i] == '\\') result += "..\\";
    if (result.empty()) result = ".\\";
    return result + ownDirectory.substr(common) + own.name + own.extension;
}

std::string FileName::absolute(std::string_view base) const {
    if (name.size() < 2 || name[0] != '.' || !(isSeparator(name[1]) || name[1] == '.')) return name;
    while (!base.empty() && isSeparator(base.back())) base.remove_suffix(1);
    std::string_view rest = name;
    if (isSeparator(rest[1])) {
        rest.remove_prefix(2);
    } else {
        while (rest.size() >= 3 && rest[0] == '.' && rest[1] == '.' && isSeparator(rest[2])) {
            rest.remove_prefix(3);
            base = base.substr(0, std::min(base.find_last_of(separators), base.size()));
        }
    }
    return std::string(base) + '\\' + std::string(rest);
}

}  // namespace chalkpane
