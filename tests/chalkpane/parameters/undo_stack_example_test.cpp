#include <doctest/doctest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/undo_data.h"

namespace {

// [example]
class Steps final : public chalkpane::UndoStack {
public:
    void take(std::unique_ptr<chalkpane::UndoData> record) override { done.push_back(std::move(record)); }
    bool isRecordDiscardable() const override { return dropping; }
    void undo() { done.back()->undo(), undone.push_back(std::move(done.back())), done.pop_back(); }
    void redo() { undone.back()->redo(), done.push_back(std::move(undone.back())), undone.pop_back(); }
    void dropUndone() { dropping = true, undone.clear(), dropping = false; }

private:
    std::vector<std::unique_ptr<chalkpane::UndoData>> done, undone;
    bool dropping = false;
};
// [example]

std::string Between(const std::string& text, const std::string& start, const std::string& end) {
    const std::size_t from = text.find(start);
    REQUIRE_NE(from, std::string::npos);
    const std::size_t to = text.find(end, from + start.size());
    REQUIRE_NE(to, std::string::npos);
    return text.substr(from + start.size(), to - from - start.size());
}

std::string Contents(const std::filesystem::path& path) {
    std::ifstream file(path);
    REQUIRE(file.good());
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST_CASE("The stack of the manual undoes and redoes") {
    chalkpane::IntegerValue value(1);
    Steps steps;
    chalkpane::plugUndoStack(&steps);
    value.setInteger(2);
    value.setInteger(3);
    steps.undo();
    CHECK_EQ(value.stored(), 2);
    steps.redo();
    CHECK_EQ(value.stored(), 3);
    steps.undo();
    steps.undo();
    CHECK_EQ(value.stored(), 1);
    steps.dropUndone();
    chalkpane::plugUndoStack(nullptr);
}

TEST_CASE("The stack of the manual is the one that is tested") {
    const std::filesystem::path root(CHALKPANE_SOURCE_FOLDER);
    const std::string manual = Contents(root / "docs/parameters.md");
    const std::string test = Contents(root / "tests/chalkpane/parameters/undo_stack_example_test.cpp");
    CHECK_EQ(Between(manual, "```cpp\n", "```"), Between(test, "// [example]\n", "// [example]"));
}

}  // namespace
