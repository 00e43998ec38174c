#pragma once

// A unit that Free Pascal's importer has made of a type library, in lines of text that can be
// compared with the library itself. Reading throws std::runtime_error if the file cannot be read.

#include <map>
#include <string>
#include <vector>

namespace corvina::test {

class PascalUnit {
public:
    using Lines = std::vector<std::string>;

    explicit PascalUnit(const std::wstring& path);

    // The constants of an enumeration, "NAME = value".
    [[nodiscard]] Lines enumeration(const std::string& name) const;
    // The fields of a packed record, "Name : Type".
    [[nodiscard]] Lines record(const std::string& name) const;
    // The members of an interface in the order of its vtable: "get Name(Type) Type", "put
    // Name(Type)" and "Name(Type name, var Type name) Type".
    [[nodiscard]] Lines interfaceMembers(const std::string& name) const;
    // Dispatch identifiers by name, of the interface's late-bound half or of an event interface.
    // Those of IUnknown and IDispatch are left out.
    [[nodiscard]] std::map<std::string, long> dispatchIds(const std::string& name) const;
    // The methods of an event interface, as interfaceMembers gives them.
    [[nodiscard]] Lines events(const std::string& name) const;
    // The value of a constant such as IID__cPlayer; empty if there is none.
    [[nodiscard]] std::string guid(const std::string& constant) const;

private:
    // The lines between one that reads so and the next "end;".
    [[nodiscard]] Lines block(const std::string& head) const;

    Lines lines_; // without comments, empty lines and spaces at the ends
};

} // namespace corvina::test
