// Making classes, and replacing those in a program's file.
#include "tests/programs/OwnClasses.h"

#include <DriverAutomation.h>
#include <objbase.h>

#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/kit/TemporaryFile.h"

namespace kit {
namespace {

std::string_view Bytes(const CLSID& id) {
    return {reinterpret_cast<const char*>(&id), sizeof(id)};
}

CLSID NewId() {
    CLSID id{};
    CoCreateGuid(&id);
    return id;
}

void ReplaceAll(std::string& bytes, const CLSID& served, const CLSID& own) {
    std::size_t found = bytes.find(Bytes(served));
    if (found == std::string::npos) {
        throw std::runtime_error("a program names no such class");
    }
    for (; found != std::string::npos; found = bytes.find(Bytes(served), found)) {
        bytes.replace(found, sizeof(own), Bytes(own));
    }
}

} // namespace

OwnClasses::OwnClasses() : OwnClasses(NewId()) {}

OwnClasses::OwnClasses(const CLSID& first) : automation(first), actions(first), version(first) {
    actions.Data1 += 1;
    version.Data1 += 2;
}

void OwnClasses::PutInto(const std::wstring& program) const {
    std::string bytes = ReadBytes(program);
    ReplaceAll(bytes, __uuidof(DriverAutomation), automation);
    ReplaceAll(bytes, __uuidof(DriverActions), actions);
    ReplaceAll(bytes, __uuidof(VersionInformation), version);
    WriteBytes(program, bytes);
}

std::wstring TextOf(const CLSID& id) {
    wchar_t text[40] = {};
    StringFromGUID2(id, text, static_cast<int>(std::size(text)));
    return text;
}

} // namespace kit
