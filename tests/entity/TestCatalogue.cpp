#include "TestCatalogue.h"

namespace TQTest {

namespace {

// Rows of the purpose-built catalogue. Numbers are chosen per test group so that cached
// answers of one group never stand in for another's.
const char* const kRows = R"SQL(
INSERT INTO bn_datatype (id_bn_datatype, name) VALUES
  (2, 'Unsigned'), (4, 'REAL'), (10, 'Date'), (11, 'Time'),
  (1026, 'BACnetDateTime'), (1090, 'BACnetPropertyIdentifier'), (1100, 'BACnetObjectType'),
  (2100, 'RecursiveList'), (2200, 'OnlyTop'), (2700, 'ThreadedType'),
  (3500, 'ProprietaryTrendLog'), (3513, 'ProprietaryTrendLogLastUploaded'), (3600, 'VendorThing'),
  (5001, 'FiveBits'), (5003, 'EightBits');

INSERT INTO bn_datatype_construct
  (id_bn_datatype_construct, id_parent, id_bn_datatype, id_bn_datatype_internal, context_nr, id_bn_markup, name, optional, sort)
VALUES
  (100, NULL, 1026, NULL, NULL, 22, 'BACnetDateTime', 0, 0), (101, 100, 1026, 10, NULL, 10, 'date', 0, 1),
  (102, 100, 1026, 11, NULL, 11, 'time', 0, 2), (110, 110, 10, NULL, NULL, 10, 'Date', 0, 0),
  (111, 111, 11, NULL, NULL, 11, 'Time', 0, 0), (112, 112, 2, NULL, NULL, 2, 'Unsigned', 0, 0),
  (51, 51, 1090, NULL, NULL, 9, 'BACnetPropertyIdentifier', 0, 0),
  (120, 120, 1100, NULL, NULL, 9, 'BACnetObjectType', 0, 0),
  (121, 121, 1101, NULL, NULL, 8, 'BACnetObjectTypesSupported', 0, 0),
  (130, 130, 5001, NULL, NULL, 8, 'FiveBits', 0, 0), (131, 131, 5003, NULL, NULL, 8, 'EightBits', 0, 0),
  (200, NULL, 2100, NULL, NULL, 22, 'RecursiveList', 0, 0), (203, 200, 2100, NULL, 2, 7, 'untyped', 1, 3),
  (201, 200, 2100, 2100, 0, NULL, 'next', 1, 1), (202, 200, 2100, 2, 1, NULL, NULL, 0, 2),
  (204, 200, 2100, 2999, 3, NULL, 'uncatalogued', 1, 4), (210, 210, 2200, NULL, NULL, 2, 'OnlyTop', 0, 0),
  (220, NULL, 2300, NULL, NULL, NULL, 'NoMarkup', 0, 0), (230, NULL, 2400, NULL, NULL, -1, 'BadMarkup', 0, 0),
  (240, NULL, 2500, NULL, NULL, 22, 'BrokenMember', 0, 0), (241, NULL, 2500, 2, 0, NULL, 'orphan', 0, 1),
  (250, NULL, 2600, NULL, NULL, 22, 'HoldsBroken', 0, 0), (251, 250, 2600, 2600, 0, NULL, 'self', 1, 1),
  (252, 250, 2600, 2500, 1, NULL, 'broken', 0, 2), (260, NULL, 2700, NULL, NULL, 22, 'ThreadedType', 0, 0),
  (261, 260, 2700, 1026, 0, NULL, 'stamp', 0, 1);

INSERT INTO bn_datatype_enum (id_bn_datatype_enum, id_bn_datatype_construct, value, name) VALUES
  (1, 120, 0, 'analog-input'), (2, 120, 1, 'analog-output'), (3, 120, 8, 'device'),
  (4, 120, 3, 'binary-input'),
  (10, 51, 85, 'present-value'), (11, 51, 77, 'object-name'), (12, 51, 28, 'description'),
  (13, 51, 65613, 'vendor-label'),
  (20, 130, 0, 'b-zero'), (21, 130, 1, 'b-one'), (22, 130, 2, 'b-two'), (23, 130, 3, 'b-three'),
  (24, 130, 4, 'b-four'), (30, 131, 0, 'low'), (31, 131, 7, 'high');

INSERT INTO bn_property_type (id_bn_property_type, sort) VALUES
  (371, 0), (77, 1), (85, 2), (36, 3), (28, 4), (87, 5), (104, 6), (79, 7), (111, 8);

INSERT INTO bn_properties_in_object
  (id_bn_properties_in_object, id_bn_object_type, id_bn_property_type, optional, empty_allowed, default_value,
   id_bn_datatype, tag, tag_structure, list_request_types, description, managed_internally)
VALUES
  (1, 0, 85, 1, 0, NULL, 4, 4, 0, NULL, 'present value', 1), (2, 0, 77, 1, 0, NULL, 7, 7, 0, NULL, NULL, 0),
  (3, 0, 371, 1, 0, NULL, 1090, 9, 1, NULL, NULL, 0), (4, 0, 28, 3, 1, NULL, 7, 7, 0, NULL, NULL, 0),
  (5, 0, 87, 2, 0, NULL, 4, 4, 1, NULL, NULL, 0), (6, 0, 36, 1, 0, NULL, 5002, 9, 0, NULL, NULL, 0),
  (7, 1, 104, 1, 0, NULL, 4, 4, 0, NULL, NULL, 2), (8, 1, 85, 1, 0, NULL, 4, 4, 0, NULL, NULL, 3),
  (9, 2, 79, 1, 0, NULL, 0, 0, 0, NULL, NULL, 0), (10, 0, 111, 1, 1, NULL, 5001, 8, 0, NULL, NULL, 4),
  (20, 3, 85, 1, 0, NULL, 9, 9, 0, NULL, NULL, 0), (21, 3, 77, 1, 0, NULL, 7, 7, 0, NULL, NULL, 0),
  (22, 3, 28, 3, 1, NULL, 7, 7, 0, NULL, NULL, 0), (23, 3, 111, 1, 0, NULL, 5001, 8, 0, NULL, NULL, 0),
  (24, 3, 36, 1, 0, NULL, 5002, 9, 0, NULL, NULL, 0);

INSERT INTO bn_gw (id_bn_gw, id_bn_device, name, dnet, id_dv_bus, enabled, load_autoconfigured) VALUES
  (1, 10, 'gateway one', 5, NULL, 1, NULL);
INSERT INTO bn_device (id_bn_device, id_bn_gw, created, id_dv_controller, max_commit_timeout_sec, enabled, template)
VALUES (10, 1, NULL, 3, 45, 1, NULL);
INSERT INTO bn_device_object (id_bn_device_object, id_bn_device, id_bn_object_type, instance_nr, cov_enabled, enabled)
VALUES (31, 10, 8, 1, NULL, 1), (32, 10, 0, 7, 0, 1), (33, 10, 0, 2, 1, NULL), (34, 10, 1, 0, NULL, NULL);
INSERT INTO bn_device_object_property
  (id_bn_device_object_property, id_bn_property_type, id_bn_device_object, id_bn_properties_in_object, id_dv_port,
   value, poll_rate_sec)
VALUES
  (1000, 85, 32, 1, NULL, '21.5', 10), (1001, 77, 32, 2, 4, 'AI 7', NULL),
  (1002, 85, 33, 1, NULL, NULL, NULL), (1003, 28, 32, 4, NULL, 'text', NULL),
  (1004, 85, 34, 999, NULL, 'orphan', NULL);
INSERT INTO bn_device_object_property_value
  (id_bn_device_object_property_value, id_bn_device_object_property, sort, value)
VALUES (1, 1000, 0, 'x');

INSERT INTO bn_ws_error (id_bn_ws_error, name, http_status, error_text) VALUES
  (1, 'WS_ERR_PARAMETER_OUT_OF_RANGE', 400, 'parameter out of range'), (2, 'WS_ERR_NOT_FOUND', 404, 'not found');
INSERT INTO bn_ws_metadata_query_options (id, catagory_enum_value, metadata_enum_value) VALUES
  (1, 2, 5), (2, 2, 3), (3, 2, 9), (4, 4, 1);
INSERT INTO bn_markup_type (id_bn_markup_type, name) VALUES (22, 'Sequence'), (9, 'Enumerated'), (8, 'BitString');
)SQL";

}  // namespace

TempDatabase& TestCatalogue::get() {
    static TempDatabase catalogue(kRows);
    return catalogue;
}

}  // namespace TQTest
