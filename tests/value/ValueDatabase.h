#pragma once

#include "../support/TQTestCatalogue.h"

#include <Poco/Data/Session.h>

#include <string>

namespace TQValueTest {

/// The shared catalogue database with a way to add rows. The library's catalogue caches live as
/// long as the process, so every test sees the same rows; tests add what they need with `seed`,
/// which leaves rows the catalogue already has alone.
class ValueDatabase {
public:
    static ValueDatabase& instance() {
        static ValueDatabase db;
        return db;
    }

    /// Inserts `values` into `table` unless a row matches `where`.
    void seed(const std::string& table, const std::string& where, const std::string& columns,
              const std::string& values) {
        using namespace Poco::Data::Keywords;
        int count = 0;
        _db.getSession() << "SELECT COUNT(*) FROM " + table + " WHERE " + where, into(count), now;
        if (count == 0)
            _db.getSession() << "INSERT INTO " + table + " (" + columns + ") VALUES (" + values + ")", now;
    }

    void seedConstruct(unsigned construct, unsigned datatype, const std::string& name) {
        const std::string id = std::to_string(construct);
        seed("bn_datatype_construct", "id_bn_datatype_construct=" + id,
             "id_bn_datatype_construct, id_parent, id_bn_datatype, id_bn_markup, name, optional, sort",
             id + ", NULL, " + std::to_string(datatype) + ", 9, '" + name + "', 0, 0");
    }

    void seedEnum(unsigned construct, unsigned value, const std::string& name) {
        const std::string c = std::to_string(construct), v = std::to_string(value);
        seed("bn_datatype_enum", "id_bn_datatype_construct=" + c + " AND value=" + v,
             "id_bn_datatype_construct, value, name", c + "," + v + ",'" + name + "'");
    }

    /// An object-type name in the catalogue enumeration of object types.
    void seedObjectTypeName(unsigned value, const std::string& name) {
        seedConstruct(120, 1100, "BACnetObjectType");
        seedEnum(120, value, name);
    }

    /// A property of an object type holding a primitive datatype, whose number is also its tag.
    void seedProperty(unsigned objectType, unsigned property, unsigned datatype, unsigned structure,
                      bool emptyAllowed) {
        const std::string o = std::to_string(objectType), p = std::to_string(property),
                          d = std::to_string(datatype);
        seed("bn_properties_in_object", "id_bn_object_type=" + o + " AND id_bn_property_type=" + p,
             "id_bn_object_type, id_bn_property_type, optional, empty_allowed, id_bn_datatype, tag, "
             "tag_structure, managed_internally",
             o + "," + p + ",0," + (emptyAllowed ? "1," : "0,") + d + "," + d + "," +
                 std::to_string(structure) + ",4");
    }

private:
    ValueDatabase() : _db(TQTest::Catalogue::open().db()) {}

    TQ::Utility::Data::SmoDbSession& _db;
};

}  // namespace TQValueTest
