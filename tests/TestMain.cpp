// main of every test program: COM is there, and the registry store that the environment names, if
// it names one, starts empty.
#include <gmock/gmock.h>

#include <windows.h>
#include <objbase.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    if (const char *store = std::getenv("HALVORA_REGISTRY_FILE"))
    {
        std::remove(store);
    }
    testing::InitGoogleMock(&argc, argv);
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const int result = RUN_ALL_TESTS();
    CoUninitialize();
    return result;
}
