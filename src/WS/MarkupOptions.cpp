#include "TQ_BACnet/WS/MarkupOptions.h"

#include <Poco/Ascii.h>
#include <Poco/DeflatingStream.h>
#include <Poco/NumberParser.h>
#include <Poco/StringTokenizer.h>

#include <algorithm>
#include <type_traits>

namespace TQ {
namespace BACnet {
namespace WS {

const std::string MarkupOptions::METADATA_CAT_VALUE = "cat-value";
const std::string MarkupOptions::METADATA_CAT_EXTENSIONS = "cat-extensions";
const std::string MarkupOptions::METADATA_CAT_CHANGE = "cat-change";
const std::string MarkupOptions::METADATA_CAT_MUTABILITY = "cat-mutability";
const std::string MarkupOptions::METADATA_CAT_ENCODING = "cat-encoding";
const std::string MarkupOptions::METADATA_CAT_RESTRICTIONS = "cat-restrictions";
const std::string MarkupOptions::METADATA_CAT_DOC = "cat-doc";
const std::string MarkupOptions::METADATA_CAT_UI = "cat-ui";
const std::string MarkupOptions::METADATA_CAT_LINKS = "cat-links";
const std::string MarkupOptions::METADATA_CAT_TAGS = "cat-tags";
const std::string MarkupOptions::METADATA_CAT_TYPES = "cat-types";
const std::string MarkupOptions::METADATA_CAT_ALL = "cat-all";

const std::string MarkupOptions::ALT_MEDIA = "media";
const std::string MarkupOptions::ALT_PLAIN = "plain";
const std::string MarkupOptions::ALT_JSON = "json";
const std::string MarkupOptions::ALT_XML = "xml";

namespace {
// The content types as literals: contentType views them, and a literal outlives every request.
constexpr std::string_view kTypeXml = "application/xml; charset=utf-8", kTypeJson = "application/json",
                           kTypePlain = "text/plain";
}  // namespace

const std::string MarkupOptions::CONTENT_TYPE_XML(kTypeXml);
const std::string MarkupOptions::CONTENT_TYPE_JSON(kTypeJson);
const std::string MarkupOptions::CONTENT_TYPE_PLAIN(kTypePlain);

namespace {

// The options of each value kind, by key; one parse rule per kind.
struct IntOption {
    std::string_view key;
    int MarkupOptions::*field;
};
struct UnsignedOption {
    std::string_view key;
    unsigned int MarkupOptions::*field;
};
struct TextOption {
    std::string_view key;
    std::string MarkupOptions::*field;
};
struct FlagOption {
    std::string_view key;
    bool MarkupOptions::*field;
};

constexpr IntOption kIntOptions[] = {{"skip", &MarkupOptions::skip},
                                     {"max-results", &MarkupOptions::maxResults},
                                     {"depth", &MarkupOptions::depth},
                                     {"descendant-depth", &MarkupOptions::descendantDepth},
                                     {"priority", &MarkupOptions::priority}};
constexpr UnsignedOption kUnsignedOptions[] = {{"sequence-gt", &MarkupOptions::sequenceGt},
                                               {"sequence-ge", &MarkupOptions::sequenceGe},
                                               {"sequence-lt", &MarkupOptions::sequenceLt},
                                               {"sequence-le", &MarkupOptions::sequenceLe}};
constexpr TextOption kTextOptions[] = {{"select", &MarkupOptions::select},
                                       {"filter", &MarkupOptions::filter},
                                       {"published-gt", &MarkupOptions::publishedGt},
                                       {"published-ge", &MarkupOptions::publishedGe},
                                       {"published-lt", &MarkupOptions::publishedLt},
                                       {"published-le", &MarkupOptions::publishedLe},
                                       {"locale", &MarkupOptions::locale},
                                       {"error-prefix", &MarkupOptions::errorPrefix},
                                       {"error-string", &MarkupOptions::errorString},
                                       {"947-srv", &MarkupOptions::serviceName}};
constexpr FlagOption kFlagOptions[] = {{"readback", &MarkupOptions::readback},
                                       {"reverse", &MarkupOptions::reverse},
                                       {"debug", &MarkupOptions::debug},
                                       {"html-report", &MarkupOptions::htmlReport}};

template <typename Option, std::size_t N>
const Option* findOption(const Option (&options)[N], std::string_view key) {
    for (const Option& option : options)
        if (key == option.key) return &option;
    return nullptr;
}

// Up to nine digits, optionally after "-", cannot overflow and read the same as the general
// parser does; anything else (separators, signs, blanks, overflow, errors) goes to it.
template <typename T>
bool readShortNumber(std::string_view text, T& out) {
    const bool negative = std::is_signed<T>::value && !text.empty() && text[0] == '-';
    const std::size_t first = negative ? 1 : 0;
    if (text.size() <= first || text.size() - first > 9) return false;
    T value = 0;
    for (std::size_t i = first; i < text.size(); ++i) {
        const char c = text[i];
        if (c < '0' || c > '9') return false;
        value = static_cast<T>(value * 10 + static_cast<T>(c - '0'));
    }
    out = negative ? static_cast<T>(0 - value) : value;
    return true;
}

}  // namespace

std::vector<std::string> MarkupOptions::splitString(std::string text, std::string separators,
                                                    const bool& skipEmpty) {
    const int options =
        skipEmpty ? Poco::StringTokenizer::TOK_IGNORE_EMPTY | Poco::StringTokenizer::TOK_TRIM : 0;
    const Poco::StringTokenizer tokens(text, separators, options);
    return std::vector<std::string>(tokens.begin(), tokens.end());
}

void MarkupOptions::parseOptionsFromQuery(std::string_view query) {
    // The items and parts splitString(..., true) gives, found in place by a plain scan: a
    // request's options are read on every request, and are a few characters long.
    const auto isBlank = [](char c) { return Poco::Ascii::isSpace(c); };
    const std::size_t size = query.size();
    for (std::size_t start = 0; start <= size;) {
        std::size_t end = start;
        while (end < size && query[end] != '&') ++end;
        std::string_view parts[2];
        int count = 0;
        for (std::size_t from = start; from <= end && count < 2;) {
            std::size_t stop = from;
            while (stop < end && query[stop] != '=') ++stop;
            std::size_t first = from, last = stop;
            while (first < last && isBlank(query[first])) ++first;
            while (last > first && isBlank(query[last - 1])) --last;
            if (last > first) parts[count++] = query.substr(first, last - first);
            from = stop + 1;
        }
        if (count == 2) applyOption(parts[0], parts[1]);
        start = end + 1;
    }
}

void MarkupOptions::applyOption(std::string_view key, std::string_view value) {
    if (const IntOption* o = findOption(kIntOptions, key)) {
        if (!readShortNumber(value, this->*(o->field)))
            this->*(o->field) = Poco::NumberParser::parse(std::string(value), ',');
    } else if (const UnsignedOption* u = findOption(kUnsignedOptions, key)) {
        if (!readShortNumber(value, this->*(u->field)))
            this->*(u->field) = Poco::NumberParser::parseUnsigned(std::string(value), ',');
    } else if (const TextOption* t = findOption(kTextOptions, key)) {
        (this->*(t->field)).assign(value.data(), value.size());
    } else if (const FlagOption* f = findOption(kFlagOptions, key)) {
        if (value == "true" || value == "1")
            this->*(f->field) = true;
        else if (value == "false" || value == "0")
            this->*(f->field) = false;
    } else if (key == "alt") {
        alt.assign(value.data(), value.size());
        if (value == "plain")
            contentType = kTypePlain;
        else if (value == "json")
            contentType = kTypeJson;
        else if (value == "xml")
            contentType = kTypeXml;
    } else if (key == "compress") {
        if (value == "gzip")
            compression = Poco::DeflatingStreamBuf::STREAM_GZIP;
        else if (value == "zlib")
            compression = Poco::DeflatingStreamBuf::STREAM_ZLIB;
    } else if (key == "metadata") {
        metadata.setCategories(std::string(value));
    } else if (key == "947-keep-alive") {
        bool on = false;
        if (Poco::NumberParser::tryParseBool(std::string(value), on)) keepAlive = on;
    } else if (key == "random") {
        random = true;
    }
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
