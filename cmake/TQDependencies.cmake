# Everything here comes from Debian packages that scripts/deps.sh installs.
find_package(Threads REQUIRED)
# Debian's Poco PostgreSQL connector names its client library PostgreSQL::client without
# defining it; CMake's own module finds libpq.
find_package(PostgreSQL REQUIRED)
if(NOT TARGET PostgreSQL::client)
  add_library(PostgreSQL::client INTERFACE IMPORTED)
  target_link_libraries(PostgreSQL::client INTERFACE PostgreSQL::PostgreSQL)
endif()
find_package(Poco 1.11 REQUIRED COMPONENTS Foundation Data DataSQLite DataPostgreSQL JSON Encodings Net Util)
find_package(SQLite3 REQUIRED)
if(TQ_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(TQ_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()
