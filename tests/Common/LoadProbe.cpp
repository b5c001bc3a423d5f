// A client that links the archive: tells what loading has done to the trace log.
#include "LumDebug.h"

int main() {
    return LumTrace().IsConfigured() ? static_cast<int>(LumTrace().GetCurrentLogLevel()) : 0;
}
