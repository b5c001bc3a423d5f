// main() of every test program: COM for the main thread, and a look for leaks after each test.
#include "LeakCheck.h"

#include <windows.h>
#include <objbase.h>

#include <cstdio>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        std::fputs("COM can not be initialised\n", stderr);
        return 2;
    }
    quillet::tests::RegisterHostLeakCounters();
    testing::UnitTest::GetInstance()->listeners().Append(new quillet::tests::LeakListener);
    const int result = RUN_ALL_TESTS();
    CoUninitialize();
    return result;
}
