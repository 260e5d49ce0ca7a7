#include <doctest/doctest.h>

#include <array>
#include <random>

#include "tests/address_checks.h"
#include "tests/kel/control/bare_target.h"

namespace kel {
namespace {

using testing::BareTarget;

// Lines that are almost commands: words of the language, names, numbers and noise.
class Babble {
public:
    explicit Babble(const Registration& module) {
        for (const Parameter& parameter : module.parameters) m_names.push_back(parameter.name);
        for (const Button& button : module.buttons) m_names.push_back(button.name);
        for (const std::string_view name : workspaceActionNames)
            if (!name.starts_with("save") && !name.starts_with("keep")) m_lines.emplace_back(name);
        for (const std::string& form : ControlForms()) m_verbs.push_back(form.substr(0, form.find(' ')));
    }

    std::string Line() {
        std::string line = Below(4) == 0 ? Of(m_lines) : Begun();
        // Each makes the canvas anew, so a few of them have to do.
        if (line.starts_with("undo") || line.starts_with("redo") || line.find("Stroke") != std::string::npos)
            if (Below(50) != 0) line = "get BrushWidth";
        return Spoiled(std::move(line));
    }

private:
    std::string Begun() {
        std::string line = Of(m_verbs);
        const std::size_t words = Below(6);
        for (std::size_t i = 0; i < words; ++i) line += ' ' + Word();
        return line;
    }
    std::size_t Below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_random); }
    const std::string& Of(const std::vector<std::string>& list) { return list[Below(list.size())]; }
    std::string Word() {
        static const std::vector<std::string> values = {
            "true", "false", "0",     "1",    "-3",   "7.5",   "1e300", "nan",     "#ff0000", "#00ff0080",  "Erase",
            "by",   "frame", "speed", "play", "over", "after", "\"",    "\"a b\"", "Ctrl+Z",  "2147483648", "pane"};
        return Below(2) == 0 ? Of(m_names) : Of(values);
    }
    std::string Spoiled(std::string line) {
        if (Below(5) == 0 && !line.empty()) line[Below(line.size())] = static_cast<char>(Below(256));
        return line;
    }

    std::mt19937 m_random{14};
    std::vector<std::string> m_names;
    std::vector<std::string> m_lines;
    std::vector<std::string> m_verbs;
};

}  // namespace

TEST_CASE("A hundred thousand random commands are done or refused with one line each") {
    constexpr int commands = tests::hasAddressChecks ? 10'000 : 100'000;  // a minute, there
    constexpr int perField = 500;
    BareTarget target;
    Babble babble(*target.workspace->Chosen()->registration);
    int done = 0;
    for (int i = 0; i < commands; ++i) {
        const std::string line = babble.Line();
        const ControlAnswer answer = RunControlLine(target, line);
        const nlohmann::json json = nlohmann::json::parse(answer.json, nullptr, false);
        const bool isWhole = json.is_object() && json["ok"] == answer.isDone &&
                             (answer.isDone || !json["error"].get<std::string>().empty()) &&
                             answer.json.find('\n') == std::string::npos;
        if (!isWhole) FAIL("the answer to \"" << line << "\" is " << answer.json);
        done += answer.isDone ? 1 : 0;
        if (i % perField != 0) continue;
        target.workspace->RunFields(1);
        target.workspace->FollowInk();
    }
    // A quarter of the lines are actions, of which one in five is spoiled.
    CHECK_GT(done, commands / 5);
    CHECK_LT(done, commands);
}

}  // namespace kel
