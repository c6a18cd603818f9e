// Which module creates the objects of a class.
#pragma once

#include <objbase.h>

#include <filesystem>
#include <vector>

struct ClassServer
{
    CLSID clsid;
    std::filesystem::path module;
};

// The classes of a host and its plug-ins, in place of those of an earlier call. The platform's own classes (XML
// documents and requests, imaging) are known without it, their modules lie beside this library. No other class can
// be created, and no other file is loaded to create one. Any thread.
void SetClassServers(std::vector<ClassServer> servers);
