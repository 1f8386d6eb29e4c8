#pragma once
// The entity tests' catalogue: the real schema with rows chosen for them instead of the
// generated ones, the process-wide session for the whole run (the catalogue caches live for the
// process).

#include "TQTestCatalogue.h"
#include "TQTestSupport.h"

namespace TQTest {

struct TestCatalogue {
    static TempDatabase& get();
};

}  // namespace TQTest
