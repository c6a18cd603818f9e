// page_opener FILE ADDRESS: stands in for a browser. It has no window and writes the address into the file.
#include <cstdlib>
#include <fstream>

#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    if (__argc != 3)
    {
        return 2;
    }
    std::ofstream(__argv[1]) << __argv[2] << '\n';
    return 0;
}
