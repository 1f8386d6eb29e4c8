#pragma once

#include <string>

namespace TQ {
namespace BACnet {
namespace WS {

/// The metadata categories a web client selected ("metadata" query option), one bit per
/// category. A plain value: each markup factory holds its own copy.
class Metadata {
public:
    /// Category numbers; the catalogue (enumeration of data type 3542) names them.
    enum METADATA_CATEGORY : unsigned int {
        METADATA_CAT_VALUE = 0,
        METADATA_CAT_EXTENSIONS = 1,
        METADATA_CAT_CHANGE = 2,
        METADATA_CAT_MUTABILITY = 3,
        METADATA_CAT_ENCODING = 4,
        METADATA_CAT_RESTRICTIONS = 5,
        METADATA_CAT_DOC = 6,
        METADATA_CAT_UI = 7,
        METADATA_CAT_LINKS = 8,
        METADATA_CAT_TAGS = 9,
        METADATA_CAT_TYPES = 10,
        METADATA_CAT_ALL = 11,
        METADATA_CAT_MAX = 12
    };

    /// Metadata item numbers (enumeration of data type 3543). Only the items the library attaches
    /// itself are named; the catalogue may hold more, which are passed around by number.
    enum METADATA : unsigned int {
        METADATA_TYPE = 403,
        METADATA_DISPLAY_NAME = 409,
        METADATA_UNITS = 410,
        METADATA_COMMENT = 412,
        METADATA_DESCRIPTION = 413,
        METADATA_ERROR = 705,
        METADATA_ERROR_TEXT = 706,
        METADATA_HREF = 801,
        METADATA_TARGET = 802,
        METADATA_MEMBER_TYPE = 1103,
        METADATA_TRUNCATED = 1310,
        METADATA_CONTEXT_TAG = 2105,
        METADATA_PROPERTY_IDENTIFIER = 2106
    };

    Metadata() = default;
    explicit Metadata(unsigned int categories) : _categories(categories) {}

    unsigned int getCategories() const { return _categories; }

    /// Numbers beyond the width of the bit set are never selected.
    bool isCategory(METADATA_CATEGORY category) const;
    void setCategory(METADATA_CATEGORY category, bool on);

    /// Adds the categories named in the comma-separated `names` (catalogue names, blanks around
    /// a name ignored); unknown names are skipped. Returns the resulting bit set.
    unsigned int setCategories(const std::string& names);

    /// The catalogue's name of a category or of a metadata item; empty when the catalogue has
    /// none.
    static std::string getCategoryName(METADATA_CATEGORY category);
    static std::string getMetadataName(METADATA metadata);

    /// Whether `category` offers `metadata` (bn_ws_metadata_query_options). Raises
    /// Poco::NotFoundException for a category without rows.
    static bool isQueryOption(METADATA_CATEGORY category, METADATA metadata);
    /// Whether any selected category offers `metadata`.
    bool isQueryOption(METADATA metadata) const;

    bool operator==(const Metadata& other) const { return _categories == other._categories; }
    bool operator!=(const Metadata& other) const { return _categories != other._categories; }

private:
    static constexpr unsigned int kBits = 32;

    unsigned int _categories = 0;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
