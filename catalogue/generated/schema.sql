-- Initial hand-made schema; catalogue/generate.py replaces this file.
CREATE TABLE dv_bus (
  id_dv_bus INTEGER PRIMARY KEY,
  id_dv_bus_type INTEGER NOT NULL,
  name TEXT
);
CREATE TABLE bn_gw (
  id_bn_gw INTEGER PRIMARY KEY,
  id_bn_device INTEGER,
  name TEXT,
  dnet INTEGER,
  id_dv_bus INTEGER,
  enabled BOOLEAN NOT NULL DEFAULT 0,
  load_autoconfigured BOOLEAN
);
CREATE TABLE bn_device (
  id_bn_device INTEGER PRIMARY KEY,
  id_bn_gw INTEGER,
  created TEXT,
  id_dv_controller INTEGER,
  max_commit_timeout_sec INTEGER,
  enabled BOOLEAN NOT NULL DEFAULT 0,
  template BOOLEAN
);
CREATE TABLE bn_device_object (
  id_bn_device_object INTEGER PRIMARY KEY,
  id_bn_device INTEGER NOT NULL,
  id_bn_object_type INTEGER NOT NULL,
  instance_nr INTEGER NOT NULL,
  cov_enabled BOOLEAN,
  enabled BOOLEAN
);
CREATE TABLE bn_device_object_property (
  id_bn_device_object_property INTEGER PRIMARY KEY,
  id_bn_property_type INTEGER NOT NULL,
  id_bn_device_object INTEGER NOT NULL,
  id_bn_properties_in_object INTEGER,
  id_dv_port INTEGER,
  value TEXT,
  poll_rate_sec INTEGER
);
CREATE TABLE bn_device_object_property_value (
  id_bn_device_object_property_value INTEGER PRIMARY KEY,
  id_bn_device_object_property INTEGER NOT NULL,
  sort INTEGER,
  value TEXT
);
CREATE TABLE bn_property_type (
  id_bn_property_type INTEGER PRIMARY KEY,
  sort INTEGER NOT NULL
);
CREATE TABLE bn_properties_in_object (
  id_bn_properties_in_object INTEGER PRIMARY KEY,
  id_bn_object_type INTEGER NOT NULL,
  id_bn_property_type INTEGER NOT NULL,
  optional INTEGER NOT NULL,
  empty_allowed BOOLEAN NOT NULL,
  default_value TEXT,
  id_bn_datatype INTEGER NOT NULL,
  tag INTEGER NOT NULL,
  tag_structure INTEGER NOT NULL,
  list_request_types TEXT,
  description TEXT,
  managed_internally INTEGER NOT NULL
);
CREATE TABLE bn_datatype (
  id_bn_datatype INTEGER PRIMARY KEY,
  name TEXT NOT NULL
);
CREATE TABLE bn_datatype_construct (
  id_bn_datatype_construct INTEGER PRIMARY KEY,
  id_parent INTEGER,
  id_bn_datatype INTEGER NOT NULL,
  id_bn_datatype_internal INTEGER,
  context_nr INTEGER,
  id_bn_markup INTEGER,
  name TEXT,
  optional BOOLEAN NOT NULL DEFAULT 0,
  sort INTEGER NOT NULL
);
CREATE TABLE bn_datatype_enum (
  id_bn_datatype_enum INTEGER PRIMARY KEY,
  id_bn_datatype_construct INTEGER NOT NULL,
  value INTEGER NOT NULL,
  name TEXT NOT NULL
);
CREATE TABLE bn_adm_definition (
  id_bn_adm_definition INTEGER PRIMARY KEY,
  parent INTEGER,
  id_bn_datatype INTEGER,
  name TEXT,
  context_tag INTEGER
);
CREATE TABLE bn_ws_error (
  id_bn_ws_error INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  http_status INTEGER NOT NULL,
  error_text TEXT NOT NULL
);
CREATE TABLE bn_ws_metadata_query_options (
  id INTEGER PRIMARY KEY,
  catagory_enum_value INTEGER NOT NULL,
  metadata_enum_value INTEGER NOT NULL
);
CREATE TABLE bn_markup_type (
  id_bn_markup_type INTEGER PRIMARY KEY,
  name TEXT NOT NULL
);
