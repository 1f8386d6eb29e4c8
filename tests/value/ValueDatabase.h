#pragma once

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"

#include <Poco/Data/Session.h>
#include <Poco/File.h>
#include <Poco/Path.h>
#include <Poco/TemporaryFile.h>

#include <memory>
#include <string>

namespace TQValueTest {

/// One catalogue database for the whole test process, made the process-wide session. The
/// library's catalogue caches live as long as the process, so every test sees the same rows;
/// tests add what they need with `seed`, which leaves rows the catalogue already has alone.
class ValueDatabase {
public:
    static ValueDatabase& instance() {
        static ValueDatabase db;
        return db;
    }

    Poco::Data::Session& session() { return _db->getSession(); }

    /// Runs `insert` unless `exists` (a SELECT COUNT(*) ...) finds a row.
    void seed(const std::string& exists, const std::string& insert) {
        using Poco::Data::Keywords::into;
        using Poco::Data::Keywords::now;
        int count = 0;
        session() << exists, into(count), now;
        if (count == 0) session() << insert, now;
    }

    /// An object-type name in the catalogue enumeration of object types (construct 120, data
    /// type 1100).
    void seedObjectTypeName(unsigned value, const std::string& name) {
        seed("SELECT COUNT(*) FROM bn_datatype_construct WHERE id_bn_datatype_construct=120",
             "INSERT INTO bn_datatype_construct (id_bn_datatype_construct, id_parent, id_bn_datatype, "
             "id_bn_markup, name, optional, sort) VALUES (120, NULL, 1100, 9, 'BACnetObjectType', 0, 0)");
        seedEnum(120, value, name);
    }

    void seedEnum(unsigned construct, unsigned value, const std::string& name) {
        const std::string where = " WHERE id_bn_datatype_construct=" + std::to_string(construct) +
                                  " AND value=" + std::to_string(value);
        seed("SELECT COUNT(*) FROM bn_datatype_enum" + where,
             "INSERT INTO bn_datatype_enum (id_bn_datatype_construct, value, name) VALUES (" +
                 std::to_string(construct) + "," + std::to_string(value) + ",'" + name + "')");
    }

    /// A property of an object type with its descriptor columns.
    void seedProperty(unsigned objectType, unsigned property, unsigned datatype, unsigned tag,
                      unsigned structure, bool emptyAllowed) {
        const std::string where = " WHERE id_bn_object_type=" + std::to_string(objectType) +
                                  " AND id_bn_property_type=" + std::to_string(property);
        seed("SELECT COUNT(*) FROM bn_properties_in_object" + where,
             "INSERT INTO bn_properties_in_object (id_bn_object_type, id_bn_property_type, optional, "
             "empty_allowed, "
             "id_bn_datatype, tag, tag_structure, managed_internally) VALUES (" +
                 std::to_string(objectType) + "," + std::to_string(property) + ",0," +
                 (emptyAllowed ? "1" : "0") + "," + std::to_string(datatype) + "," + std::to_string(tag) +
                 "," + std::to_string(structure) + ",4)");
    }

private:
    ValueDatabase() : _dir(Poco::TemporaryFile::tempName()) {
        Poco::File(_dir).createDirectories();
        _db = TQ::Utility::Data::openEmbeddedDatabase(Poco::Path(_dir, "value.db").toString());
        TQ::Utility::Data::pDB = _db.get();
    }
    ~ValueDatabase() {
        TQ::Utility::Data::pDB = nullptr;
        _db.reset();
        Poco::File(_dir).remove(true);
    }

    std::string _dir;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> _db;
};

}  // namespace TQValueTest
