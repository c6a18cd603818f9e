// How the program ends, for the scripts that call it.
#pragma once

enum class ExitCode
{
    Success = 0,    // of publish: every picture was published
    SomeFailed = 1, // some or all of what was asked for was not done
    Usage = 2,      // the command line was wrong; nothing was done
    Cancelled = 3
};
