// Reads the named-number lists of the catalogue's ASN.1 source: for each
// `Name ::= ENUMERATED { word (n), ... }` or `Name ::= BIT STRING { word (n), ... }` the numbers
// and their words, comments and the extension marker left out. Enough ASN.1 for a cross-check,
// not a general parser.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace TQ::Consistency {

using NamedNumbers = std::map<uint32_t, std::string>;

class AsnEnumerations {
public:
    // Throws std::runtime_error when the text is not made of well-formed lists (an unclosed
    // brace, a number twice in one list, a list defined twice).
    static AsnEnumerations parse(const std::string& text);
    static AsnEnumerations load(const std::string& path);

    // The list of that name; throws std::out_of_range when the source has none.
    const NamedNumbers& get(const std::string& typeName) const;
    bool has(const std::string& typeName) const;

private:
    std::map<std::string, NamedNumbers> _lists;
};

}  // namespace TQ::Consistency
