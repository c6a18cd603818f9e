#include "host/Commands.h"

#include "host/SafeLine.h"

#include <iostream>

void Complain(const std::string &words)
{
    std::cerr << "halvora: " << OneSafeLine(words) << std::endl;
}
