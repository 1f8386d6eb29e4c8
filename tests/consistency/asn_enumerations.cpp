#include "asn_enumerations.h"

#include <cctype>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace TQ::Consistency {

namespace {

std::string withoutComments(const std::string& text) {
    std::string out;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        size_t dashes = line.find("--");
        out += line.substr(0, dashes);
        out += '\n';
    }
    return out;
}

NamedNumbers parseBody(const std::string& typeName, const std::string& body) {
    static const std::regex entry(R"(([A-Za-z][A-Za-z0-9-]*)\s*\(\s*(\d+)\s*\))");
    NamedNumbers numbers;
    for (std::sregex_iterator it(body.begin(), body.end(), entry), end; it != end; ++it) {
        uint32_t number = uint32_t(std::stoul((*it)[2].str()));
        if (!numbers.emplace(number, (*it)[1].str()).second)
            throw std::runtime_error(typeName + ": number " + std::to_string(number) + " twice");
    }
    return numbers;
}

}  // namespace

AsnEnumerations AsnEnumerations::parse(const std::string& text) {
    static const std::regex head(R"(([A-Za-z][A-Za-z0-9-]*)\s*::=\s*(ENUMERATED|BIT\s+STRING)\s*\{)");
    const std::string source = withoutComments(text);
    AsnEnumerations result;
    auto it = std::sregex_iterator(source.begin(), source.end(), head);
    for (auto end = std::sregex_iterator(); it != end; ++it) {
        const std::string typeName = (*it)[1].str();
        size_t open = size_t(it->position(0) + it->length(0));
        size_t close = source.find('}', open);
        if (close == std::string::npos) throw std::runtime_error(typeName + ": no closing brace");
        if (source.find('{', open) < close) throw std::runtime_error(typeName + ": nested brace");
        if (!result._lists.emplace(typeName, parseBody(typeName, source.substr(open, close - open))).second)
            throw std::runtime_error(typeName + ": defined twice");
    }
    return result;
}

AsnEnumerations AsnEnumerations::load(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read " + path);
    std::ostringstream text;
    text << in.rdbuf();
    return parse(text.str());
}

const NamedNumbers& AsnEnumerations::get(const std::string& typeName) const {
    return _lists.at(typeName);
}

bool AsnEnumerations::has(const std::string& typeName) const {
    return _lists.count(typeName) != 0;
}

}  // namespace TQ::Consistency
