// Diagnostic tests.
#include <quillet/DiagTest.h>

CDiagTest::~CDiagTest() = default;
