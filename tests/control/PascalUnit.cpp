#include "PascalUnit.h"

#include "support/FileBytes.h"

#include <algorithm>
#include <regex>
#include <sstream>

namespace corvina::test {

namespace {

// IUnknown's and IDispatch's own members have identifiers from here on.
constexpr long firstInherited = 0x60000000;

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string::npos
               ? std::string()
               : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

struct Parameters {
    std::string named; // "Type name, var Type name"
    std::string types; // "Type, Type"
};

// "A:Integer;var B:T" as the importer writes parameters.
Parameters parametersOf(const std::string& text) {
    static const std::regex parameter("(var |const |out )?(\\w+):([^;]+)");
    Parameters result;
    for (std::sregex_iterator at(text.begin(), text.end(), parameter), end; at != end; ++at) {
        const std::string mode = (*at)[1] == "const " ? std::string() : (*at)[1].str();
        const std::string separator = result.types.empty() ? "" : ", ";
        result.named += separator + mode + (*at)[3].str() + " " + (*at)[2].str();
        result.types += separator + (*at)[3].str();
    }
    return result;
}

// A declaration as interfaceMembers describes it; empty for a line that declares no function.
std::string memberOf(const std::string& line) {
    static const std::regex function("(?:procedure|function) (Get_|Set_)?(\\w+)(?:\\(([^)]*)\\))?"
                                     "(?: ?: ?(\\w+))? ?; ?(?:safecall|dispid -?\\d+);");
    std::smatch found;
    if (!std::regex_match(line, found, function))
        return {};
    const Parameters parameters = parametersOf(found[3]);
    const std::string name = found[2];
    if (found[1] == "Set_")
        // The importer tells the second setter, by reference, from the first by a line under its
        // name.
        return name.back() == '_'
                   ? "putref " + name.substr(0, name.size() - 1) + "(" + parameters.types + ")"
                   : "put " + name + "(" + parameters.types + ")";
    if (found[1] == "Get_")
        return "get " + name + "(" + parameters.types + ") " + found[4].str();
    return name + "(" + parameters.named + ")" +
           (found[4].matched ? " " + found[4].str() : std::string());
}

} // namespace

PascalUnit::PascalUnit(const std::wstring& path) {
    const Bytes bytes = fileBytes(path);
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    for (std::string line; std::getline(text, line);)
        if (const std::string rest = trimmed(line); !rest.empty() && !rest.starts_with("//"))
            lines_.push_back(rest);
}

PascalUnit::Lines PascalUnit::block(const std::string& head) const {
    const auto start = std::find(lines_.begin(), lines_.end(), head);
    if (start == lines_.end())
        return {};
    return Lines(start + 1, std::find(start, lines_.end(), "end;"));
}

PascalUnit::Lines PascalUnit::enumeration(const std::string& name) const {
    static const std::regex constant("(\\w+) = \\$([0-9A-Fa-f]+);");
    Lines result;
    auto at = std::find(lines_.begin(), lines_.end(), name + " =LongWord;");
    if (at == lines_.end() || ++at == lines_.end() || *at != "Const")
        return result;
    std::smatch found;
    while (++at != lines_.end() && std::regex_match(*at, found, constant))
        result.push_back(found[1].str() + " = " +
                         std::to_string(std::stoll(found[2].str(), nullptr, 16)));
    return result;
}

PascalUnit::Lines PascalUnit::record(const std::string& name) const {
    Lines result;
    for (const std::string& line : block(name + " = packed record"))
        result.push_back(line.substr(0, line.size() - 1));
    return result;
}

PascalUnit::Lines PascalUnit::interfaceMembers(const std::string& name) const {
    Lines result;
    for (const std::string& line : block(name + " = interface(IDispatch)"))
        if (const std::string member = memberOf(line); !member.empty())
            result.push_back(member);
    return result;
}

PascalUnit::Lines PascalUnit::events(const std::string& name) const {
    Lines result;
    for (const std::string& line : block(name + " = dispinterface"))
        if (const std::string member = memberOf(line); !member.empty())
            result.push_back(member);
    return result;
}

std::map<std::string, long> PascalUnit::dispatchIds(const std::string& name) const {
    static const std::regex member("(?:procedure|function|property) (\\w+).*dispid (-?\\d+);");
    std::map<std::string, long> result;
    std::smatch found;
    for (const std::string& line : block(name + " = dispinterface"))
        if (std::regex_match(line, found, member))
            if (const long id = std::stol(found[2]); id < firstInherited)
                result[found[1]] = id;
    return result;
}

std::string PascalUnit::guid(const std::string& constant) const {
    const std::string head = constant + " : TGUID = '";
    const auto found = std::find_if(lines_.begin(), lines_.end(), [&](const std::string& line) {
        return line.starts_with(head);
    });
    return found == lines_.end() ? std::string() : found->substr(head.size(), 38);
}

} // namespace corvina::test
