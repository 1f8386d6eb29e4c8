#pragma once

#include "TQ_BACnet/WS/Metadata.h"

#include <string>
#include <string_view>
#include <vector>

namespace TQ {
namespace BACnet {
namespace WS {

/// The query options of one web-service request: output format and content type, compression,
/// paging and filtering, truncation depth, metadata categories and the gateway's own switches.
/// Built once per request from the query text, then read; only `history` and `metadata` change
/// later.
class MarkupOptions {
public:
    // Metadata category names as the "metadata" option takes them.
    static const std::string METADATA_CAT_VALUE;
    static const std::string METADATA_CAT_EXTENSIONS;
    static const std::string METADATA_CAT_CHANGE;
    static const std::string METADATA_CAT_MUTABILITY;
    static const std::string METADATA_CAT_ENCODING;
    static const std::string METADATA_CAT_RESTRICTIONS;
    static const std::string METADATA_CAT_DOC;
    static const std::string METADATA_CAT_UI;
    static const std::string METADATA_CAT_LINKS;
    static const std::string METADATA_CAT_TAGS;
    static const std::string METADATA_CAT_TYPES;
    static const std::string METADATA_CAT_ALL;

    // Output format names ("alt" option).
    static const std::string ALT_MEDIA;
    static const std::string ALT_PLAIN;
    static const std::string ALT_JSON;
    static const std::string ALT_XML;

    static const std::string CONTENT_TYPE_XML;
    static const std::string CONTENT_TYPE_JSON;
    static const std::string CONTENT_TYPE_PLAIN;

    MarkupOptions() = default;

    /// Reads the decoded query text ("key=value&..."). Unknown keys, formats, compression words
    /// and unreadable booleans are ignored; a number that does not parse raises
    /// Poco::SyntaxException.
    void parseOptionsFromQuery(std::string_view query);

    /// The tokens of `text` split at any of `separators`; with `skipEmpty` empty tokens are
    /// dropped and blanks around tokens trimmed, without it neither.
    static std::vector<std::string> splitString(std::string text, std::string separators,
                                                const bool& skipEmpty);

    int reserved0 = 0;  ///< kept for the host's layout; not used by the library
    /// -1 none, else a Poco::DeflatingStreamBuf::StreamType (0 zlib, 1 gzip).
    int compression = -1;
    // Literal defaults: a MarkupOptions may be built before the constants of another unit exist.
    std::string alt = "xml";
    /// Always one of the CONTENT_TYPE_* texts (static storage): built per request, never copied.
    std::string_view contentType = "application/xml; charset=utf-8";
    int skip = -1;
    int maxResults = 0;
    std::string select;
    std::string filter;
    int depth = -1;  ///< -1: no limit
    int descendantDepth = -1;
    Metadata metadata;
    std::string publishedGt;
    std::string publishedGe;
    std::string publishedLt;
    std::string publishedLe;
    unsigned int sequenceGt = 0;
    unsigned int sequenceGe = 0;
    unsigned int sequenceLt = 0;
    unsigned int sequenceLe = 0;
    std::string locale;
    bool readback = true;
    std::string errorPrefix = "?";
    std::string errorString;
    int priority = 16;
    bool reverse = false;
    bool history = false;  ///< set by the path parser for a history path item
    bool debug = false;
    std::string reserved1;  ///< kept for the host's layout; not used by the library
    bool htmlReport = false;
    bool keepAlive = false;
    std::string serviceName;
    bool random = false;

private:
    void applyOption(std::string_view key, std::string_view value);
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
