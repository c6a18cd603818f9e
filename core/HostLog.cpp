#include "core/HostLog.h"

#include "core/FormatText.h"
#include "core/StringTable.h"
#include "resources/resource.h"

#include <cstdarg>

namespace
{
// The variable arguments of one wrapper, ended on every way out.
struct Arguments
{
    va_list list;
    ~Arguments() { va_end(list); }
};

void Write(IHalvoraPublishingHost *host, INT32 level, const WCHAR *format, va_list arguments)
{
    if (host == nullptr)
    {
        return;
    }
    const WideText source = LoadStringOrPlaceholder(IDS_LOG_SOURCE);
    const WideText message = format ? FormatTextV(format, arguments) : WideText(TEXT("(internal error)"));
    host->WriteLogEntry(level, source.c_str(), message.c_str());
}
} // namespace

void LogVerbose(IHalvoraPublishingHost *host, const WCHAR *format, ...)
{
    Arguments arguments;
    va_start(arguments.list, format);
    Write(host, LOG_LEVEL_VERBOSE, format, arguments.list);
}

void LogInfo(IHalvoraPublishingHost *host, const WCHAR *format, ...)
{
    Arguments arguments;
    va_start(arguments.list, format);
    Write(host, LOG_LEVEL_INFO, format, arguments.list);
}

void LogWarning(IHalvoraPublishingHost *host, const WCHAR *format, ...)
{
    Arguments arguments;
    va_start(arguments.list, format);
    Write(host, LOG_LEVEL_WARNING, format, arguments.list);
}

void LogError(IHalvoraPublishingHost *host, const WCHAR *format, ...)
{
    Arguments arguments;
    va_start(arguments.list, format);
    Write(host, LOG_LEVEL_ERROR, format, arguments.list);
}

void LogFatal(IHalvoraPublishingHost *host, const WCHAR *format, ...)
{
    Arguments arguments;
    va_start(arguments.list, format);
    Write(host, LOG_LEVEL_FATAL, format, arguments.list);
}
