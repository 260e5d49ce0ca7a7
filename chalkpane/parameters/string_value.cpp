#include "chalkpane/parameters/string_value.h"

namespace chalkpane {

void StringValue::getString(std::string& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getString(out);
    out = value;
}

void LayerValue::setEnumeration(std::uint8_t index) {
    pendingLayer.reset();
    std::string name;
    if (layers != nullptr) layers->nameOfIndex(name, index);
    setString(name);
}

void LayerValue::getEnumeration(std::uint8_t& out) const {
    std::string name;
    getString(name);
    out = 0;
    if (pendingLayer == nullptr && layers != nullptr) out = layers->indexOfName(name);
}

void FileNameValue::ask(const ParameterValue& any, FileName& out) {
    if (const auto* name = dynamic_cast<const FileNameValue*>(&any)) name->getFileName(out);
}

void FileNameValue::getFileName(FileName& out) const {
    const FileNameValue* last = this;
    while (const auto* above = dynamic_cast<const FileNameValue*>(last->inheritedFrom())) last = above;
    out = last->value;
}

void PathValue::writeValue(TextOut& out) const { writeContent(out, FileName(value).relativeTo()); }

bool PathValue::readValue(TextScanner& scanner) {
    FileName path;
    if (!readContent(scanner, path)) return false;
    value = path.absolute();
    return true;
}

void FileNameValue::writeValue(TextOut& out) const {
    writeContent(out, relative ? value.relativeTo() : value.string());
}

bool FileNameValue::readValue(TextScanner& scanner) {
    if (!readContent(scanner, value)) return false;
    if (relative) value.assign(value.absolute());
    return true;
}

}  // namespace chalkpane
