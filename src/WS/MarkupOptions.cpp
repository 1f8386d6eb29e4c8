#include "TQ_BACnet/WS/MarkupOptions.h"

#include <Poco/Ascii.h>
#include <Poco/DeflatingStream.h>
#include <Poco/NumberParser.h>
#include <Poco/StringTokenizer.h>

#include <algorithm>
#include <cstring>

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

const std::string MarkupOptions::CONTENT_TYPE_XML = "application/xml; charset=utf-8";
const std::string MarkupOptions::CONTENT_TYPE_JSON = "application/json";
const std::string MarkupOptions::CONTENT_TYPE_PLAIN = "text/plain";

namespace {

// The options of each value kind, by key; one parse rule per kind.
struct IntOption {
    const char* key;
    int MarkupOptions::*field;
};
struct UnsignedOption {
    const char* key;
    unsigned int MarkupOptions::*field;
};
struct TextOption {
    const char* key;
    std::string MarkupOptions::*field;
};
struct FlagOption {
    const char* key;
    bool MarkupOptions::*field;
};

const IntOption kIntOptions[] = {{"skip", &MarkupOptions::skip},
                                 {"max-results", &MarkupOptions::maxResults},
                                 {"depth", &MarkupOptions::depth},
                                 {"descendant-depth", &MarkupOptions::descendantDepth},
                                 {"priority", &MarkupOptions::priority}};
const UnsignedOption kUnsignedOptions[] = {{"sequence-gt", &MarkupOptions::sequenceGt},
                                           {"sequence-ge", &MarkupOptions::sequenceGe},
                                           {"sequence-lt", &MarkupOptions::sequenceLt},
                                           {"sequence-le", &MarkupOptions::sequenceLe}};
const TextOption kTextOptions[] = {{"select", &MarkupOptions::select},
                                   {"filter", &MarkupOptions::filter},
                                   {"published-gt", &MarkupOptions::publishedGt},
                                   {"published-ge", &MarkupOptions::publishedGe},
                                   {"published-lt", &MarkupOptions::publishedLt},
                                   {"published-le", &MarkupOptions::publishedLe},
                                   {"locale", &MarkupOptions::locale},
                                   {"error-prefix", &MarkupOptions::errorPrefix},
                                   {"error-string", &MarkupOptions::errorString},
                                   {"947-srv", &MarkupOptions::serviceName}};
const FlagOption kFlagOptions[] = {{"readback", &MarkupOptions::readback},
                                   {"reverse", &MarkupOptions::reverse},
                                   {"debug", &MarkupOptions::debug},
                                   {"html-report", &MarkupOptions::htmlReport}};

template <typename Option, std::size_t N>
const Option* findOption(const Option (&options)[N], const std::string& key) {
    // The first letter rules out most keys without a string comparison.
    for (const Option& option : options)
        if (!key.empty() && key[0] == option.key[0] && key == option.key) return &option;
    return nullptr;
}

}  // namespace

std::vector<std::string> MarkupOptions::splitString(std::string text, std::string separators,
                                                    const bool& skipEmpty) {
    const int options =
        skipEmpty ? Poco::StringTokenizer::TOK_IGNORE_EMPTY | Poco::StringTokenizer::TOK_TRIM : 0;
    const Poco::StringTokenizer tokens(text, separators, options);
    return std::vector<std::string>(tokens.begin(), tokens.end());
}

void MarkupOptions::parseOptionsFromQuery(const std::string& query) {
    // The items and parts splitString(..., true) gives, found in place: a request's options are
    // read on every request, and the tokenizers' vectors cost more than the options themselves.
    const auto isBlank = [](char c) { return Poco::Ascii::isSpace(c); };
    for (std::size_t start = 0; start <= query.size();) {
        const std::size_t end = std::min(query.find('&', start), query.size());
        std::string parts[2];
        int count = 0;
        for (std::size_t from = start; from <= end && count < 2;) {
            const void* sign = std::memchr(query.data() + from, '=', end - from);
            const std::size_t stop = sign ? static_cast<std::size_t>(static_cast<const char*>(sign) - query.data()) : end;
            std::size_t first = from, last = stop;
            while (first < last && isBlank(query[first])) ++first;
            while (last > first && isBlank(query[last - 1])) --last;
            if (last > first) parts[count++].assign(query, first, last - first);
            from = stop + 1;
        }
        if (count == 2) applyOption(parts[0], parts[1]);
        start = end + 1;
    }
}

void MarkupOptions::applyOption(const std::string& key, const std::string& value) {
    if (const IntOption* o = findOption(kIntOptions, key)) {
        this->*(o->field) = Poco::NumberParser::parse(value, ',');
    } else if (const UnsignedOption* u = findOption(kUnsignedOptions, key)) {
        this->*(u->field) = Poco::NumberParser::parseUnsigned(value, ',');
    } else if (const TextOption* t = findOption(kTextOptions, key)) {
        this->*(t->field) = value;
    } else if (const FlagOption* f = findOption(kFlagOptions, key)) {
        if (value == "true" || value == "1")
            this->*(f->field) = true;
        else if (value == "false" || value == "0")
            this->*(f->field) = false;
    } else if (key == "alt") {
        alt = value;
        if (value == ALT_PLAIN)
            contentType = CONTENT_TYPE_PLAIN;
        else if (value == ALT_JSON)
            contentType = CONTENT_TYPE_JSON;
        else if (value == ALT_XML)
            contentType = CONTENT_TYPE_XML;
    } else if (key == "compress") {
        if (value == "gzip")
            compression = Poco::DeflatingStreamBuf::STREAM_GZIP;
        else if (value == "zlib")
            compression = Poco::DeflatingStreamBuf::STREAM_ZLIB;
    } else if (key == "metadata") {
        metadata.setCategories(value);
    } else if (key == "947-keep-alive") {
        bool on = false;
        if (Poco::NumberParser::tryParseBool(value, on)) keepAlive = on;
    } else if (key == "random") {
        random = true;
    }
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
